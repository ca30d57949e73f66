#include "Check.h"
#include "Diff.h"
#include "Dn.h"
#include "Editor.h"
#include "Failure.h"
#include "Question.h"
#include "Section.h"
#include "Update.h"

#include <iostream>

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

// Tells the errors and warnings of a text. True when it can be installed.
bool isAccepted(const std::string& text, const std::string& shownName)
{
    const auto findings = check(text, shownName);
    for (const Finding& finding : findings) {
        if (finding.severity != Severity::note)
            std::cerr << toLine(finding, shownName) << '\n';
    }
    return !hasErrors(findings);
}

std::string editedText(const Call& call, const LiveFile& file)
{
    const Section section(file.text(), call.operands().empty() ? "" : DnSpeller()(call.operand(0)));
    Editor editor("zebslapd.conf");
    for (std::string part = section.part();;) {
        part = editor.edit(part);
        std::string text = section.with(part);
        if (text.empty() && !file.text().empty())
            throw Failure(0, "the text is empty, and nothing is changed", file.shownName());
        if (isAccepted(text, file.shownName()))
            return text;
        if (!wantsToEditAgain(unifiedDiff(file.text(), text, file.shownName(), call.hasColor(STDERR_FILENO))))
            throw Failure(0, "the changes are dropped, and nothing is changed", file.shownName());
    }
}

}  // namespace

int runEdit(const Call& call)
{
    replaceText(call, [&](const LiveFile& file) {
        requireLogin(call, file.text(), file.shownName());
        return editedText(call, file);
    });
    return 0;
}
