#include "check/Check.h"
#include "cli/Call.h"
#include "files/Input.h"
#include "files/LiveFile.h"

#include <algorithm>
#include <iostream>

namespace {

std::vector<Finding> findingsOf(const Call& call, const std::string& name)
{
    if (name == "-")
        return check(readInput(name), shownInput(name));
    const LiveFile file(name);
    std::vector<Finding> findings = checkFile(file, call.operands().empty() ? call.backupName() : name + ".bak");
    const std::vector<Finding> more = check(file.text(), name);
    findings.insert(findings.end(), more.begin(), more.end());
    return findings;
}

}  // namespace

int runCheck(const Call& call)
{
    const std::string name = call.operands().empty() ? call.fileName() : call.operands().front();
    const std::string shownName = shownInput(name);
    std::vector<Finding> findings = findingsOf(call, name);
    if (call.isQuiet())
        findings.erase(std::remove_if(findings.begin(), findings.end(),
                                      [](const Finding& finding) { return finding.severity == Severity::note; }),
                       findings.end());
    if (call.isJson()) {
        std::cout << toJson(findings, shownName) << '\n';
    } else {
        for (const Finding& finding : findings)
            std::cout << toLine(finding, shownName) << '\n';
    }
    const auto count = std::count_if(findings.begin(), findings.end(),
                                     [](const Finding& finding) { return finding.severity != Severity::note; });
    if (count == 0)
        call.messages().say(shownName + " is clean");
    return count == 0 ? 0 : 1;
}
