// The frame of every command that changes the configuration: all or nothing.
#ifndef ZEBCFG_UPDATE_H
#define ZEBCFG_UPDATE_H

#include "Call.h"
#include "Changes.h"
#include "LiveFile.h"

#include <functional>
#include <string>

// Runs body on a private copy, loads the result again, compares it with what was asked for, and puts it in the place
// of the file; under --dry-run it is only shown as a diff. Throws Failure, and then the old file stands.
void update(const Call& call, const std::function<void(Changes& changes)>& body);

// Puts the text that newText gives in the place of the file, just as it is: the caller has checked it. The file may be
// damaged. Throws Failure as update() does.
void replaceText(const Call& call, const std::function<std::string(const LiveFile& file)>& newText);

// Writes what changes to standard output. Throws Failure when it cannot be written.
void showDiff(const Call& call, const std::string& before, const std::string& after, const std::string& shownName);

// The login of the call, if any, against a text: update() does so by itself. Throws Failure.
void requireLogin(const Call& call, const std::string& text, const std::string& shownName);

// Puts a copy of another file where the configuration file is missing.
void putInPlace(const Call& call, const LiveFile& other);

#endif
