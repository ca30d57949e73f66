#include "base/Failure.h"
#include "check/Check.h"
#include "cli/Call.h"
#include "files/Backup.h"
#include "files/FileSystem.h"
#include "terminal/Question.h"
#include "update/Update.h"
#include "update/Workplace.h"

#include <algorithm>
#include <iostream>
#include <optional>
#include <utility>

namespace {

// Of the backup that is wanted.
int numberOf(const Call& call)
{
    const char* const refusal = "backups are numbered from 1";
    const int number = call.operands().empty() ? 1 : wholeNumber(call.operand(0), refusal);
    if (number < 1)
        throw Failure(0, refusal);
    return number;
}

// The backup, once it loads and takes the login: the file itself may be damaged.
LiveFile usableBackup(const Target& target, const std::string& name)
{
    LiveFile backup(name);
    const auto findings = check(backup.text(), name);
    for (const Finding& finding : findings) {
        if (finding.severity == Severity::error)
            std::cerr << toLine(finding, name) << '\n';
    }
    if (hasErrors(findings))
        throw Failure(0, "the backup does not load, so it is not restored", name);
    requireLogin(target, backup.text(), name);
    return backup;
}

void show(const Target& target, const LiveFile& file, const LiveFile& backup)
{
    if (!target.isDryRun && !target.messages.isQuiet)
        showDiff(target, file.text(), backup.text(), file.shownName());
}

// What the user has agreed to: the text of the file, and the one in its place.
using Agreement = std::pair<std::string, std::string>;

Agreement confirm(const Target& target, const LiveFile& backup)
{
    const LiveFile file(target.file);
    show(target, file, backup);
    if (ask("restore " + backup.shownName() + "? (y)es or (n)o: ", "yn") != 'y')
        throw Failure(0, "nothing is restored", target.file);
    return {file.text(), backup.text()};
}

}  // namespace

int runRestore(const Call& call)
{
    Target target = call.target();
    if (target.backup.empty())
        throw Failure(0, "there is no backup to restore under --no-backup");
    const std::string name = generationName(target.backup, numberOf(call));
    target.generations = std::max(target.generations, numberOf(call));  // the one restored goes, and no other
    if (!isThere(target.file)) {
        putInPlace(target, usableBackup(target, name));
        return 0;
    }
    std::optional<Agreement> agreement;
    if (call.mayAsk())
        agreement = confirm(target, usableBackup(target, name));
    replaceText(target, [&](const LiveFile& file) {
        const LiveFile backup = usableBackup(target, name);  // Only now the lock keeps it as it is.
        if (!agreement)
            show(target, file, backup);
        else if (*agreement != Agreement(file.text(), backup.text()))
            throw Failure(LDAP_BUSY, "the file or its backup has changed in the meantime; try again", file.shownName());
        return backup.text();
    });
    return 0;
}
