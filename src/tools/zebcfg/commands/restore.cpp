#include "base/Failure.h"
#include "check/Check.h"
#include "cli/Call.h"
#include "update/Update.h"
#include "update/Workplace.h"

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
    const Target target = call.target();
    const std::string& name = target.backup;
    if (name.empty())
        throw Failure(0, "there is no backup to restore under --no-backup");
    const LiveFile backup(name);
    requireLoadable(backup.text(), name);
    requireLogin(target, backup.text(), name);  // The file itself may be damaged.
    if (::access(target.file.c_str(), F_OK) != 0) {
        putInPlace(target, backup);
        return 0;
    }
    replaceText(target, [&](const LiveFile& file) {
        if (!target.isDryRun && !target.messages.isQuiet)
            showDiff(target, file.text(), backup.text(), file.shownName());
        return backup.text();
    });
    return 0;
}
