#include "update/LdifInput.h"

#include "base/Attributes.h"
#include "base/Failure.h"
#include "files/Descriptor.h"
#include "files/FileSystem.h"
#include "files/Input.h"
#include "files/Replacement.h"
#include "formats/LdifReader.h"
#include "library/Dn.h"
#include "terminal/Progress.h"
#include "update/Update.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace {

// Reads and applies records up to the end.
class Run {
public:
    Run(const Messages& how, const LdifInput& what)
        : messages(how), input(what), shownName(shownInput(what.file)), reader(readInput(what.file), shownName)
    {}

    void apply(Changes& changes)
    {
        Progress progress("Applying records");
        for (LdifRecord record; readRecord(record); progress.step()) {
            messages.hintAtNames(record.changes);
            try {
                changes.apply(record, input.needsParent);
            } catch (Failure& failure) {
                failure.file = shownName;
                failure.fileLine = failure.inputLine != 0 ? failure.inputLine : record.line;
                skip(failure, record.text);
                continue;
            }
            record.text.clear();
            applied.push_back(std::move(record));
            record = {};
        }
    }

    void addPlace(Failure& failure) const { addRecordPlace(failure, applied, shownName); }

    int exitStatus() const { return firstFailure ? firstFailure->exitStatus() : 0; }
    const std::string& skipped() const { return skippedText; }

private:
    // False at the end. A record that is no LDIF is left out like one that fails.
    bool readRecord(LdifRecord& record)
    {
        for (;;) {
            try {
                return reader.next(record, input.type);
            } catch (Failure& failure) {
                skip(failure, reader.record());
            }
        }
    }

    // Goes on only where that is wanted.
    void skip(Failure& failure, const std::string& text)
    {
        if (!input.goesOn)
            throw Failure(failure);
        messages.report(failure);
        skippedText += "# " + failure.line() + '\n' + text + '\n';
        if (!firstFailure)
            firstFailure = failure;
    }

    const Messages& messages;
    const LdifInput& input;
    const std::string shownName;
    LdifReader reader;
    std::vector<LdifRecord> applied;
    std::optional<Failure> firstFailure;
    std::string skippedText;
};

// Makes the file for the records that are left out, which may hold passwords: what cannot be written is reported before
// the configuration is changed.
void makeSkippedFile(const std::string& name, const Target& target)
{
    if (isPartOfUpdate(name, target.file, target.backup, target.generations))
        throw Failure(0, "the update itself needs this file; name another one with -S", name);
    const Descriptor made(openOrCreate(name));
    if (!made.isOpen())
        throw systemFailure(0, "cannot write " + name);
}

}  // namespace

int applyLdif(const Target& target, const LdifInput& input)
{
    Run run(target.messages, input);
    const bool keepsSkipped = !input.skippedFile.empty();
    if (keepsSkipped)
        makeSkippedFile(input.skippedFile, target);
    update(
        target, [&](Changes& changes) { run.apply(changes); }, [&](Failure& failure) { run.addPlace(failure); });
    if (keepsSkipped)
        overwriteFile(input.skippedFile, run.skipped());
    return run.exitStatus();
}

void addRecordPlace(Failure& failure, const std::vector<LdifRecord>& records, const std::string& shownName)
{
    const DnSpeller spelled;
    const auto record = std::find_if(records.rbegin(), records.rend(), [&](const LdifRecord& candidate) {
        return isSameName(spelled.orNothing(candidate.dn), spelled.orNothing(failure.entry));
    });
    if (record == records.rend())
        return;
    failure.file = shownName;
    failure.fileLine = record->line;
    for (const Change& change : record->changes) {
        if (isSameName(change.attribute.name, failure.attribute))
            failure.fileLine = lineOf(change, failure.value);
    }
}
