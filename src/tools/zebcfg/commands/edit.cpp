#include "base/Failure.h"
#include "check/Check.h"
#include "check/Section.h"
#include "cli/Call.h"
#include "files/WorkFolder.h"
#include "formats/Diff.h"
#include "library/Dn.h"
#include "terminal/Editor.h"
#include "terminal/Question.h"
#include "update/Update.h"

#include <iostream>
#include <set>

#include <unistd.h>

namespace {

// Asks until the user edits again or drops the changes. True for the former.
bool wantsToEditAgain(const std::string& diff)
{
    for (;;) {
        const char answer = ask("(e)dit again, (d)rop the changes, or (s)how them? ", "eds");
        if (answer != 's')
            return answer == 'e';
        std::cerr << diff;
    }
}

// Whether the text has warnings that the one before did not have.
bool hasNewWarnings(const std::vector<Finding>& findings, const LiveFile& file)
{
    std::multiset<std::string> added;
    for (const Finding& finding : findings) {
        if (finding.severity == Severity::warning)
            added.insert(finding.text);
    }
    if (added.empty())
        return false;
    for (const Finding& finding : check(file.text(), file.shownName())) {
        const auto known = added.find(finding.text);
        if (known != added.end())
            added.erase(known);
    }
    return !added.empty();
}

// Reports the errors and warnings of a text. True when it can be installed.
bool isAccepted(const Call& call, const std::string& text, const LiveFile& file)
{
    const auto findings = check(text, file.shownName());
    for (const Finding& finding : findings) {
        if (finding.severity != Severity::note)
            std::cerr << toLine(finding, file.shownName()) << '\n';
    }
    if (hasErrors(findings))
        return false;
    if (call.has("force") || !hasNewWarnings(findings, file))
        return true;
    call.messages().warn("the warnings are new with this text; --force installs it");
    return false;
}

std::string editedText(const Call& call, const LiveFile& file)
{
    const Section section(file.text(), call.operands().empty() ? "" : DnSpeller()(call.operand(0)));
    WorkFolder folder("zebslapd.conf");
    for (std::string part = section.part();;) {
        folder.write(part);
        runEditor(folder.file());
        part = folder.read();
        std::string text = section.with(part);
        if (text.empty() && !file.text().empty())
            throw Failure(0, "the text is empty, and nothing is changed", file.shownName());
        if (isAccepted(call, text, file))
            return text;
        if (!wantsToEditAgain(unifiedDiff(file.text(), text, file.shownName(), call.hasColor(STDERR_FILENO))))
            throw Failure(0, "the changes are dropped, and nothing is changed", file.shownName());
    }
}

}  // namespace

int runEdit(const Call& call)
{
    const Target target = call.target();
    replaceText(target, [&](const LiveFile& file) {
        requireLogin(target, file.text(), file.shownName());
        return editedText(call, file);
    });
    return 0;
}
