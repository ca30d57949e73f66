#include "base/Failure.h"
#include "base/Masking.h"
#include "check/Check.h"
#include "check/Section.h"
#include "cli/Call.h"
#include "files/MemoryFile.h"
#include "files/WorkFolder.h"
#include "formats/ConfigText.h"
#include "formats/Diff.h"
#include "library/Dn.h"
#include "library/Outline.h"
#include "terminal/Editor.h"
#include "terminal/Question.h"
#include "terminal/StandardStreams.h"
#include "update/Update.h"
#include "update/Workplace.h"

#include <algorithm>
#include <iostream>
#include <set>

namespace {

// The user's work on a text, up to one that can be installed.
class Work {
public:
    Work(const Call& wanted, const LiveFile& original, std::string entry)
        : call(wanted), file(original), dn(std::move(entry)), section(original.text(), dn), part(section.part())
    {}

    // Throws Failure when the user drops it. Any other failure is no reason to lose it.
    std::string finish()
    {
        for (int line = 0;;) {
            folder.write(part);
            runEditor(folder.file(), line);
            part = folder.read();
            std::string text = section.with(part);
            if ((!deletes(text) || mayDelete()) && isAccepted(text, line))
                return text;
            if (!wantsToEditAgain(unifiedDiff(file.text(), text, file.shownName(), call.hasColor(errorStream)))) {
                part = section.part();
                throw Failure(0, "the changes are discarded, and nothing is changed", file.shownName());
            }
        }
    }

    // Names the file in which work that was not installed is kept, if there is any.
    void keep(Failure& failure) const
    {
        if (part != section.part() && !isEmpty(part))
            failure.text += "; your text is kept in " + keepText(part, file.path());
    }

private:
    static bool isEmpty(const std::string& text) { return text.find_first_not_of(" \t\r\n\v\f") == std::string::npos; }

    bool deletes(const std::string& text) const
    {
        if (dn.empty() && isEmpty(text) && !isEmpty(file.text()))
            throw Failure(0, "the text is empty, and nothing is changed", file.shownName());
        return !dn.empty() && linesOf(part).empty();
    }

    bool mayDelete() const
    {
        const MemoryFile copy(file.text());
        if (below(outlineOf(Session(copy.name(), file.shownName())), dn).size() > 1)
            throw Failure(LDAP_NOT_ALLOWED_ON_NONLEAF,
                          "the text is empty, and the entry has others below it; zebcfg delete -r deletes them too",
                          file.shownName());
        if (!isTerminal(inputStream))
            throw Failure(0, "the text is empty, and nothing is changed; zebcfg delete deletes an entry",
                          file.shownName());
        return ask("delete the entry " + shownDn(dn) + "? (y)es or (n)o: ", "yn") == 'y';
    }

    // Asks until the user edits again or drops the changes. True for the former.
    static bool wantsToEditAgain(const std::string& diff)
    {
        for (;;) {
            const char answer = ask("(e)dit again, (d)iscard the changes, or (s)how them? ", "eds");
            if (answer != 's')
                return answer == 'e';
            std::cerr << diff;
        }
    }

    // Reports the errors and warnings of a text. True when it can be installed; else line is where to edit again.
    bool isAccepted(const std::string& text, int& line) const
    {
        auto findings = check(text, file.shownName());
        findings.erase(std::remove_if(findings.begin(), findings.end(),
                                      [](const Finding& finding) { return finding.severity == Severity::note; }),
                       findings.end());
        for (const Finding& finding : findings)
            std::cerr << toLine(finding, file.shownName()) << '\n';
        line = findings.empty() ? 0 : std::max(findings.front().line - section.firstLine() + 1, 0);
        if (hasErrors(findings))
            return false;
        if (call.has("force"))
            return true;
        if (text != file.text() && hasNewWarnings(findings))
            return refuse("these warnings are new");
        const std::string orphan = newOrphan(text);
        return orphan.empty() || refuse("the entry " + shownDn(orphan) + " would lose its parent");
    }

    bool refuse(const std::string& reason) const
    {
        call.messages().warn(reason + "; --force installs the text anyway");
        return false;
    }

    // Whether there are warnings that the text before does not have.
    bool hasNewWarnings(const std::vector<Finding>& warnings) const
    {
        std::multiset<std::string> added;
        for (const Finding& warning : warnings)
            added.insert(warning.text);
        if (added.empty())
            return false;
        for (const Finding& finding : check(file.text(), file.shownName())) {
            const auto known = added.find(finding.text);
            if (known != added.end())
                added.erase(known);
        }
        return !added.empty();
    }

    // The first entry whose parent goes with the change, or the empty text.
    std::string newOrphan(const std::string& text) const
    {
        if (text == file.text())
            return {};
        const auto after = orphansIn(text);
        const auto before = orphansBefore(after);
        const auto found = std::find_if(after.begin(), after.end(),
                                        [&](const std::string& orphan) { return before.count(orphan) == 0; });
        return found != after.end() ? *found : "";
    }

    // A text that does not load has no entries to compare with.
    std::set<std::string> orphansBefore(const std::set<std::string>& otherwise) const
    {
        try {
            return orphansIn(file.text());
        } catch (const Failure&) {
            return otherwise;
        }
    }

    std::set<std::string> orphansIn(const std::string& text) const
    {
        const MemoryFile copy(text);
        return orphansOf(outlineOf(Session(copy.name(), file.shownName())));
    }

    const Call& call;
    const LiveFile& file;
    const std::string dn;
    const Section section;
    WorkFolder folder{"zebslapd.conf"};
    std::string part;  // as the user has left it
};

// The lock is taken now, and not while the user types.
void install(const Target& target, const LiveFile& edited, const std::string& text)
{
    replaceText(target, [&](const LiveFile& current) {
        if (current.text() != edited.text())
            throw Failure(LDAP_BUSY, "the file was changed while it was being edited", current.shownName());
        return text;
    });
}

}  // namespace

int runEdit(const Call& call)
{
    const Target target = call.target();
    const LiveFile file(target.file);
    requireReplaceable(file, handlingOf(target));
    requireLogin(target, file.text(), file.shownName());
    Work work(call, file, call.operands().empty() ? "" : DnSpeller()(call.operand(0)));
    try {
        install(target, file, work.finish());
    } catch (Failure& failure) {
        work.keep(failure);
        throw;
    }
    return 0;
}
