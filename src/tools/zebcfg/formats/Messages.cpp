#include "formats/Messages.h"

#include "base/Attributes.h"
#include "base/Entry.h"
#include "base/Failure.h"
#include "base/Masking.h"
#include "base/Text.h"
#include "formats/Json.h"
#include "terminal/Progress.h"

#include <iostream>

void Messages::report(const Failure& failure) const
{
    const PausedProgress pause;
    std::cout.flush();
    if (isJson)
        std::cerr << toJson(failure, isVerbose) << '\n';
    else
        std::cerr << "zebcfg: " << failure.line() << '\n' << (isVerbose ? eachLine(failure.dump, visible) : "");
}

void Messages::say(const std::string& text) const
{
    if (!isQuiet)
        warn(text);
}

void Messages::warn(const std::string& text) const
{
    const PausedProgress pause;
    std::cout.flush();
    std::cerr << (isJson ? noteToJson(text) : "zebcfg: " + visible(text)) << '\n';
}

void Messages::hintAtName(const std::string& name) const
{
    const std::string hint = attributeHint(name);
    if (!hint.empty())
        say(shownLine(name) + " is not a known attribute" + hint);
}

void Messages::hintAtNames(const std::vector<Change>& changes) const
{
    for (const Change& change : changes)
        hintAtName(change.attribute.name);
}
