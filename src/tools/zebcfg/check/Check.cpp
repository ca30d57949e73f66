#include "check/Check.h"

#include "base/Attributes.h"
#include "base/Failure.h"
#include "base/Masking.h"
#include "base/Text.h"
#include "check/LoadableText.h"
#include "files/LiveFile.h"
#include "files/MemoryFile.h"
#include "formats/ConfigText.h"
#include "library/Dn.h"
#include "library/Session.h"
#include "terminal/Progress.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>

#include <zebldapcfg.h>

namespace {

constexpr char loginAdvice[] = "add it: without it nobody can log in";

std::string allowedFor(const std::string& name)
{
    const AttributeType* const type = findAttributeType(name);
    return type != nullptr ? "allowed is " + describeValues(*type) : "";
}

Finding findingOf(const Failure& failure, int line, const std::string& advice)
{
    if (isSameName(failure.attribute, invalidLine))
        return Finding(Severity::error, line, failure.value + ": is not allowed in the head")
            .coded(failure.code, failure.extended)
            .advise(advice);
    const std::string text = failure.attribute.empty() ? failure.text : failure.attribute + ": " + failure.text;
    return Finding(Severity::error, line, text)
        .coded(failure.code, failure.extended)
        .advise(advice)
        .about(failure.attribute);
}

std::string adviceFor(const Failure& failure)
{
    if (failure.code == LDAP_INVALID_DN_SYNTAX)
        return "a DN consists of NAME=VALUE pairs separated by commas, where no VALUE is empty, and , + \" \\ < > ; # "
               "in one "
               "take "
               "a backslash";
    if (isSameName(failure.attribute, invalidLine))
        return "the head holds charset and version, each once, and version is 1";
    if (failure.extended == CFG_ERR_NOT_IN_CLASS)
        return "move it below the dn line of an entry, without an empty line in between";
    return isTextFailure(failure.code) ? "convert the text to the encoding of the locale, or set the locale" : "";
}

// The checks of a text that loads, or of what is left of one that does not.
class Checker {
public:
    Checker(const std::string& original, const std::string& shown)
        : text(original), shownName(shown), loadable(original, shown), copy(loadable.text()),
          session(copy.name(), shown), emptyFile(""), scratch(emptyFile.name(), shown)
    {
        for (const ConfigLine& line : linesOf(loadable.text())) {
            if (line.isDn)
                dnOfEntry[line.entry] = spelled.orNothing(line.value);
            else
                linesOfName[{dnOfEntry[line.entry], lower(line.name)}].push_back(line.first);
            lines.push_back(line);
        }
    }

    std::vector<Finding> run()
    {
        for (const int line : linesWithNul(text))
            findings.push_back(Finding(Severity::error, line, "there is a NUL byte in the line")
                                   .coded(LDAP_INVALID_SYNTAX)
                                   .advise("remove it, for the next write drops the rest of the line"));
        for (const Failure& failure : loadable.failures())
            findings.push_back(findingOf(failure, failure.fileLine, adviceFor(failure)));
        for (const auto find : {&Checker::findQuarantined, &Checker::findSeveralValues, &Checker::findUndecodable,
                                &Checker::findMisspelt, &Checker::findMissingLogin}) {
            progress.step();
            (this->*find)();
        }
        progress.step();
        if (loadable.failures().empty())
            findChangesOfFirstWrite();
        std::stable_sort(findings.begin(), findings.end(),
                         [](const Finding& left, const Finding& right) { return left.line < right.line; });
        return std::move(findings);
    }

private:
    static constexpr std::size_t stages = 7;  // the first one is the load

    static std::string lower(std::string name)
    {
        std::transform(name.begin(), name.end(), name.begin(), lowered);
        return name;
    }

    // The load has moved the lines that it could not take in into an attribute, each with its name and value.
    void findQuarantined()
    {
        std::set<std::pair<std::string, std::string>> moved;
        for (const Entry& entry :
             session.search("", LDAP_SCOPE_SUBTREE, std::string(invalidLine) + "=*", {invalidLine}))
            for (const std::string& value : entry.attributes.front().values)
                moved.insert({entry.dn, trimmedValue(value)});
        for (const ConfigLine& line : lines) {
            if (isSameName(line.name, invalidLine))
                findings.push_back(quarantineOf(line));
            else if (moved.count({dnOfEntry[line.entry], trimmedValue(line.name + ": " + line.value)}) != 0)
                findings.push_back(refusalOf(line));
        }
    }

    static Finding quarantineOf(const ConfigLine& line)
    {
        return Finding(Severity::warning, line.first, "a line that was refused: " + shownValue(invalidLine, line.value))
            .coded(LDAP_INVALID_SYNTAX)
            .advise("correct it, and remove " + std::string(invalidLine) + ": in front of it")
            .about(invalidLine);
    }

    // Asks the library once more, for the reason.
    Finding refusalOf(const ConfigLine& line)
    {
        const std::string next = std::string("correct it, or the next load moves it to ") + invalidLine;
        try {
            if (line.hasColon)
                scratch.add({"cn=line", {{line.name, {line.value}}}});
        } catch (const Failure& failure) {
            const bool isAllowedKnown = failure.extended != CFG_ERR_INT_SYNTAX;  // The text of the others tells it.
            return findingOf(failure, line.first, isAllowedKnown ? next : allowedFor(line.name) + "; " + next);
        }
        const std::string reason = line.hasColon ? shownLine(line.name) + ": the value is refused after an earlier one"
                                                 : "the line does not begin with a name and a colon";
        return Finding(Severity::error, line.first, reason).coded(LDAP_INVALID_SYNTAX).advise(next);
    }

    // Values that differ; 0 where a password among them cannot be decoded, which is a finding of its own.
    std::size_t countOf(const std::string& dn, const std::string& name) const
    {
        try {
            return session.values(dn, name).size();
        } catch (const Failure&) {
            return 0;
        }
    }

    void findSeveralValues()
    {
        for (const auto& [key, numbers] : linesOfName) {
            const AttributeType* const type = findAttributeType(key.second);
            if (numbers.size() < 2 || type == nullptr || !type->isSingle)
                continue;
            if (countOf(key.first, key.second) > 1)
                findings.push_back(
                    Finding(Severity::warning, numbers[1], type->name + ": it should have only one value")
                        .coded(LDAP_CONSTRAINT_VIOLATION, CFG_ERR_SINGLE_VALUED)
                        .advise("the first one is on line " + std::to_string(numbers[0]) + "; remove one")
                        .about(type->name));
        }
    }

    // An encoded password is taken as it is, and every search that meets it fails.
    void findUndecodable()
    {
        for (const ConfigLine& line : lines) {
            if (!isPassword(line.name) || line.value.empty() || line.value.front() != '>')
                continue;
            const MemoryFile file("dn: cn=line\n" + line.name + ": " + line.value + '\n');
            try {
                const Session single(file.name(), shownName);
                (void)single.search("cn=line", LDAP_SCOPE_BASE, line.name + "=*");
            } catch (const Failure& failure) {
                findings.push_back(findingOf(failure, line.first, ""));
            }
        }
    }

    void findMisspelt()
    {
        for (const ConfigLine& line : lines) {
            const std::string hint = line.isDn || !line.hasColon ? "" : attributeHint(line.name);
            if (!hint.empty() && !isSameName(line.name, invalidLine))
                findings.push_back(
                    Finding(Severity::note, line.first, shownLine(line.name) + ": this is not a known attribute" + hint)
                        .coded(LDAP_UNDEFINED_TYPE)
                        .advise("its value is not checked")
                        .about(shownLine(line.name)));
        }
    }

    void findMissingLogin()
    {
        const auto line = std::find_if(lines.begin(), lines.end(), [&](const ConfigLine& candidate) {
            return candidate.isDn && isSameName(dnOfEntry[candidate.entry], configurationDn);
        });
        if (line == lines.end() || session.search(configurationDn, LDAP_SCOPE_BASE, "", {"objectclass"}).empty()) {
            const bool isThere = line != lines.end();
            findings.push_back(
                Finding(Severity::warning, isThere ? line->first : 0,
                        isThere ? "cn=Configuration has no objectclass" : "there is no entry cn=Configuration")
                    .coded(LDAP_NO_SUCH_OBJECT)
                    .advise(loginAdvice));
            return;
        }
        for (const char* const name : {"zeb-slapdAdminDN", "zeb-slapdAdminPW"}) {
            if (!session.has(configurationDn, name))
                findings.push_back(
                    Finding(Severity::warning, line->first, std::string(name) + ": cn=Configuration has none")
                        .coded(LDAP_NO_SUCH_ATTRIBUTE)
                        .advise(loginAdvice)
                        .about(name));
        }
    }

    void findChangesOfFirstWrite()
    {
        session.flush();
        if (readFile(copy.name(), shownName) != text)
            findings.push_back(Finding(Severity::note, 0, "the first write changes the layout of this file")
                                   .advise("zebcfg -n set with any change shows how"));
    }

    Progress progress{"Checking", stages};
    const std::string& text;
    const std::string& shownName;
    const LoadableText loadable;
    const MemoryFile copy;
    Session session;
    const MemoryFile emptyFile;
    Session scratch;
    const DnSpeller spelled;
    std::vector<ConfigLine> lines;
    std::map<int, std::string> dnOfEntry;
    std::map<std::pair<std::string, std::string>, std::vector<int>> linesOfName;
    std::vector<Finding> findings;
};

}  // namespace

std::vector<Finding> check(const std::string& text, const std::string& shownName)
{
    if (!hasByteOrderMark(text))
        return Checker(text, shownName).run();
    const std::string rest = text.substr(sizeof byteOrderMark - 1);
    auto findings = Checker(rest, shownName).run();
    findings.insert(findings.begin(), Finding(Severity::error, 1, "the text begins with a byte order mark")
                                          .coded(LDAP_INVALID_SYNTAX)
                                          .advise("save the file without it"));
    return findings;
}

std::vector<Finding> checkFile(const LiveFile& file, const std::string& backupName)
{
    std::vector<Finding> findings;
    const std::string damage = file.damage(backupName);
    if (!damage.empty())
        findings.push_back(Finding(Severity::error, 0, damage).coded(CFG_CONNECT_ERROR));
    if ((file.status().st_mode & S_IROTH) != 0)
        findings.push_back(Finding(Severity::note, 0, "every user can read this file, which contains passwords")
                               .advise("chmod o-r keeps others out"));
    return findings;
}
