#include "LdifInput.h"

#include "Assignment.h"
#include "ConfigText.h"
#include "Failure.h"
#include "PrivateFile.h"
#include "Update.h"

#include <iostream>
#include <iterator>
#include <optional>

#include <fcntl.h>

namespace {

constexpr char standardInput[] = "standard input";

std::string readInput(const std::string& name)
{
    if (name != "-")
        return readFile(name, name);
    return {std::istreambuf_iterator<char>(std::cin), {}};
}

// Reads and applies records up to the end.
class Run {
public:
    Run(const Call& wanted, LdifRecord::Type recordType)
        : call(wanted), type(recordType),
          shownName(call.value("file", "-") == "-" ? standardInput : call.value("file")),
          reader(readInput(call.value("file", "-")), shownName)
    {}

    void apply(Changes& changes)
    {
        for (LdifRecord record; readRecord(record);) {
            for (const Change& change : record.changes)
                hintAtName(call, change.attribute.name);
            try {
                changes.apply(record, !call.has("no-parent-check"));
            } catch (Failure& failure) {
                failure.file = shownName;
                failure.fileLine = record.line;
                skip(failure, record.text);
            }
        }
    }

    int exitStatus() const { return firstFailure ? firstFailure->exitStatus() : 0; }
    const std::string& skipped() const { return skippedText; }

private:
    // False at the end. A record that is no LDIF is left out like one that fails.
    bool readRecord(LdifRecord& record)
    {
        for (;;) {
            try {
                return reader.next(record, type);
            } catch (Failure& failure) {
                skip(failure, reader.record());
            }
        }
    }

    // Goes on only where that is wanted.
    void skip(Failure& failure, const std::string& text)
    {
        if (!call.has("continue"))
            throw Failure(failure);
        report(failure, call.telling());
        skippedText += "# " + failure.line() + '\n' + text + '\n';
        if (!firstFailure)
            firstFailure = failure;
    }

    const Call& call;
    const LdifRecord::Type type;
    const std::string shownName;
    LdifReader reader;
    std::optional<Failure> firstFailure;
    std::string skippedText;
};

// Makes the file for the records that are left out, which may hold passwords: what cannot be written is told before the
// configuration is changed.
void makeSkippedFile(const Call& call)
{
    const std::string name = call.value("skipped");
    if (resolvedName(name) == resolvedName(call.fileName()))
        throw Failure(0, "the records that are left out cannot go into the configuration file", name);
    const Descriptor made(::open(name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    if (!made.isOpen())
        throw systemFailure(0, "cannot write " + name);
}

}  // namespace

int applyLdif(const Call& call, LdifRecord::Type type)
{
    Run run(call, type);
    if (call.has("skipped"))
        makeSkippedFile(call);
    update(call, [&](Changes& changes) { run.apply(changes); });
    if (call.has("skipped"))
        overwriteFile(call.value("skipped"), run.skipped());
    return run.exitStatus();
}
