// The frame of every command that changes the configuration: all or nothing.
#ifndef ZEBCFG_UPDATE_H
#define ZEBCFG_UPDATE_H

#include "Call.h"
#include "Changes.h"

#include <functional>
#include <string>

// Runs body on a private copy, loads the result again, compares it with what was asked for, and puts it in the place
// of the file; under --dry-run it is only shown as a diff. Throws Failure, and then the old file stands.
void update(const Call& call, const std::function<void(Changes& changes)>& body);

// Puts the text in the place of the file in the same way, once it loads without a finding.
void install(const Call& call, const std::string& text);

#endif
