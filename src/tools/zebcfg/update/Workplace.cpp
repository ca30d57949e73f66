#include "update/Workplace.h"

#include "base/Failure.h"
#include "files/Descriptor.h"
#include "formats/Diff.h"
#include "formats/Json.h"
#include "terminal/Progress.h"

#include <iostream>

namespace {

// A private copy beside the file, which takes its place. It is written once, from the copy in memory.
class Installation : public Workplace {
public:
    explicit Installation(const Target& wanted)
        : target(wanted), replacement(wanted.file, handlingOf(wanted)), working(replacement.live().text())
    {}

    const LiveFile& file() const override { return replacement.live(); }
    GuardedFile& copy() override { return working; }

    std::string result() override
    {
        if (!isWritten)
            replacement.copy().write(readFile(working.name(), file().shownName()));
        isWritten = true;
        return replacement.copy().text();
    }

    void finish() override
    {
        const std::string text = result();
        const bool isChanged = text != file().text();
        if (target.isState && target.messages.isJson)
            showDiff(target, file().text(), text, file().shownName());
        if (isChanged)
            replacement.install();
        if (target.messages.isVerbose)
            target.messages.say(file().shownName() + (isChanged ? doneNote() : asItWas()));
    }

private:
    const char* asItWas() const
    {
        return file().isMissing() ? " is not created, for there is nothing to add" : " is unchanged";
    }

    std::string doneNote() const
    {
        if (file().isMissing())
            return " has been created";
        return " is replaced" + (target.backup.empty() ? "" : ", and " + target.backup + " keeps the old text");
    }

    const Target& target;
    Replacement replacement;
    GuardedFile working;
    bool isWritten = false;
};

// Only the copy in memory: all that comes of it is a diff.
class Rehearsal : public Workplace {
public:
    explicit Rehearsal(const Target& wanted) : target(wanted), live(wanted.file, wanted.presence), working(live.text())
    {
        requireReplaceable(live, handlingOf(wanted));
    }

    const LiveFile& file() const override { return live; }
    GuardedFile& copy() override { return working; }
    std::string result() override { return readFile(working.name(), live.shownName()); }
    void finish() override { showDiff(target, live.text(), result(), live.shownName()); }

private:
    const Target& target;
    const LiveFile live;
    GuardedFile working;
};

}  // namespace

Handling handlingOf(const Target& target)
{
    return {target.backup,   target.generations,
            target.wait,     target.presence,
            target.isForced, [messages = target.messages](const std::string& text) { messages.warn(text); }};
}

std::unique_ptr<Workplace> openWorkplace(const Target& target)
{
    if (target.isDryRun)
        return std::make_unique<Rehearsal>(target);
    return std::make_unique<Installation>(target);
}

void showDiff(const Target& target, const std::string& before, const std::string& after, const std::string& shownName)
{
    const Progress progress("Comparing");
    const bool isJson = target.messages.isJson;
    const std::string diff = unifiedDiff(before, after, shownName, target.hasColor && !isJson);
    const std::string json = target.isState ? changeToJson(before != after, diff) : diffToJson(diff);
    const PausedProgress pause;
    std::cout << (isJson ? json + '\n' : diff);
    if (!std::cout.flush())
        throw systemFailure(0, "cannot write the output, and nothing is changed");
}
