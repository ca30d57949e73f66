#include "base/Failure.h"
#include "check/Check.h"
#include "cli/Call.h"
#include "update/Update.h"
#include "update/Workplace.h"

#include <iostream>

#include <unistd.h>

namespace {

// The backup, once it loads and takes the login: the file itself may be damaged.
LiveFile usableBackup(const Target& target)
{
    const std::string& name = target.backup;
    LiveFile backup(name);
    const auto findings = check(backup.text(), name);
    for (const Finding& finding : findings) {
        if (finding.severity == Severity::error)
            std::cerr << toLine(finding, name) << '\n';
    }
    if (hasErrors(findings))
        throw Failure(0, "the backup does not load as it is, so it is not restored", name);
    requireLogin(target, backup.text(), name);
    return backup;
}

}  // namespace

int runRestore(const Call& call)
{
    const Target target = call.target();
    if (target.backup.empty())
        throw Failure(0, "there is no backup to restore under --no-backup");
    if (::access(target.file.c_str(), F_OK) != 0) {
        putInPlace(target, usableBackup(target));
        return 0;
    }
    replaceText(target, [&](const LiveFile& file) {
        const LiveFile backup = usableBackup(target);  // Only now the lock keeps it as it is.
        if (!target.isDryRun && !target.messages.isQuiet)
            showDiff(target, file.text(), backup.text(), file.shownName());
        return backup.text();
    });
    return 0;
}
