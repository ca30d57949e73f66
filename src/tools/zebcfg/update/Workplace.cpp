#include "update/Workplace.h"

#include "base/Failure.h"
#include "files/Descriptor.h"
#include "files/MemoryFile.h"
#include "formats/Diff.h"
#include "formats/Json.h"

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

    MemoryFile result() override
    {
        writeOnce();
        return MemoryFile(replacement.copy().openName(), file().shownName());
    }

    void finish() override
    {
        const bool isChanged = !holdsText(working.name(), file().text(), file().shownName());
        if (isChanged) {
            writeOnce();
            replacement.install();
        }
        if (target.messages.isVerbose)
            target.messages.say(file().shownName() + (isChanged ? " is replaced" + backupNote() : " is as it was"));
    }

private:
    void writeOnce()
    {
        if (!isWritten)
            replacement.copy().take(working.name());
        isWritten = true;
    }

    std::string backupNote() const
    {
        return target.backup.empty() ? "" : ", and " + target.backup + " keeps the old text";
    }

    const Target& target;
    Replacement replacement;
    GuardedFile working;
    bool isWritten = false;
};

// The copy in memory, which nothing becomes of but a diff.
class Rehearsal : public Workplace {
public:
    explicit Rehearsal(const Target& wanted) : target(wanted), live(wanted.file), working(live.text())
    {
        requireReplaceable(live, handlingOf(wanted));
    }

    const LiveFile& file() const override { return live; }
    GuardedFile& copy() override { return working; }
    MemoryFile result() override { return MemoryFile(working.name(), live.shownName()); }
    void finish() override
    {
        showDiff(target, live.text(), readFile(working.name(), live.shownName()), live.shownName());
    }

private:
    const Target& target;
    const LiveFile live;
    GuardedFile working;
};

}  // namespace

Handling handlingOf(const Target& target)
{
    return {target.backup, target.wait, target.isForced,
            [messages = target.messages](const std::string& text) { messages.warn(text); }};
}

std::unique_ptr<Workplace> openWorkplace(const Target& target)
{
    if (target.isDryRun)
        return std::make_unique<Rehearsal>(target);
    return std::make_unique<Installation>(target);
}

void showDiff(const Target& target, const std::string& before, const std::string& after, const std::string& shownName)
{
    const bool isJson = target.messages.isJson;
    const std::string diff = unifiedDiff(before, after, shownName, target.hasColor && !isJson);
    std::cout << (isJson ? diffToJson(diff) + '\n' : diff);
    if (!std::cout.flush())
        throw systemFailure(0, "cannot write the output, and nothing is changed");
}
