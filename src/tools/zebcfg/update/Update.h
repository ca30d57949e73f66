// The frame of every command that changes the configuration: all or nothing.
#ifndef ZEBCFG_UPDATE_H
#define ZEBCFG_UPDATE_H

#include "files/LiveFile.h"
#include "library/Changes.h"
#include "update/Target.h"

#include <functional>
#include <string>

// Runs body on a private copy, loads the result again, compares it with what was asked for, and puts it in the place
// of the file; under --dry-run it is only shown as a diff. Throws Failure, and then the old file stands.
// addInputPlace says where the input had what could not be read back.
void update(
    const Target& target, const std::function<void(Changes& changes)>& body,
    const std::function<void(Failure& failure)>& addInputPlace = [](Failure& /*failure*/) {});

// Puts the text that newText gives in the place of the file, just as it is: the caller has checked it. The file may be
// damaged. Throws Failure as update() does.
void replaceText(const Target& target, const std::function<std::string(const LiveFile& file)>& newText);

// The login, if any, against a text: update() does so by itself. Throws Failure.
void requireLogin(const Target& target, const std::string& text, const std::string& shownName);

// Puts a copy of another file where the configuration file is missing.
void putInPlace(const Target& target, const LiveFile& other);

#endif
