#include "Check.h"
#include "Failure.h"
#include "Update.h"

#include <iostream>

#include <unistd.h>

namespace {

void requireLoadable(const std::string& text, const std::string& name)
{
    const auto findings = check(text, name);
    for (const Finding& finding : findings) {
        if (finding.severity == Severity::error)
            std::cerr << toLine(finding, name) << '\n';
    }
    if (hasErrors(findings))
        throw Failure(0, "the backup does not load as it is, so it is not restored", name);
}

}  // namespace

int runRestore(const Call& call)
{
    const std::string name = call.backupName();
    if (name.empty())
        throw Failure(0, "there is no backup to restore under --no-backup");
    const LiveFile backup(name);
    requireLoadable(backup.text(), name);
    requireLogin(call, backup.text(), name);  // The file itself may be damaged.
    if (::access(call.fileName().c_str(), F_OK) != 0) {
        putInPlace(call, backup);
        return 0;
    }
    replaceText(call, [&](const LiveFile& file) {
        if (!call.isDryRun() && !call.isQuiet())
            showDiff(call, file.text(), backup.text(), file.shownName());
        return backup.text();
    });
    return 0;
}
