#include "check/Check.h"

#include "base/Attributes.h"
#include "base/Failure.h"
#include "base/Masking.h"
#include "base/Text.h"
#include "check/LoadableText.h"
#include "files/Descriptor.h"
#include "files/LiveFile.h"
#include "files/MemoryFile.h"
#include "formats/ConfigText.h"
#include "library/Dn.h"
#include "library/Session.h"
#include "terminal/Progress.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>

#include <zebldapcfg.h>

namespace {

constexpr char loginAdvice[] = "add it: without it nobody can log in";

std::string allowedFor(const std::string& name)
{
    const AttributeType* const type = findAttributeType(name);
    return type != nullptr ? "it takes " + describeValues(*type) : "";
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
               "in one take a backslash";
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
        : text(original), shownName(shown), loadable(original, shown), session(loadable.loaded().session()),
          emptyFile(""), scratch(emptyFile.name(), shown), lines(loadable.text())
    {}

    std::vector<Finding> run()
    {
        for (const int line : linesWithNul(text))
            findings.push_back(Finding(Severity::error, line, "there is a NUL byte in the line")
                                   .coded(LDAP_INVALID_SYNTAX)
                                   .advise("remove it, for the next write drops the rest of the line"));
        for (const Failure& failure : loadable.failures())
            findings.push_back(findingOf(failure, failure.fileLine, adviceFor(failure)));
        findQuarantined();
        findSeveralValues();
        findUndecodable();
        findMisspelt();
        findMissingLogin();
        if (loadable.failures().empty())
            findChangesOfFirstWrite();
        std::stable_sort(findings.begin(), findings.end(),
                         [](const Finding& left, const Finding& right) { return left.line < right.line; });
        return std::move(findings);
    }

private:
    // The DN of the entry that the line is in, as the library spells it; empty for none. It is asked for where it
    // counts: the library takes longer over the DNs of a file than over its lines.
    std::string dnOf(const ConfigLine& line) const
    {
        const auto entry =
            std::lower_bound(lines.begin(), lines.end(), line.entry,
                             [](const ConfigLine& candidate, int number) { return candidate.first < number; });
        return line.entry != 0 ? spelled.orNothing(std::string(entry->value)) : "";
    }

    // The load has moved the lines that it could not take in into an attribute, each with its name and value.
    void findQuarantined()
    {
        std::map<std::string, std::set<std::string>> dnsOfMoved;
        for (const Entry& entry :
             session.search("", LDAP_SCOPE_SUBTREE, std::string(invalidLine) + "=*", {invalidLine}))
            for (const std::string& value : entry.attributes.front().values)
                dnsOfMoved[std::string(trimmedValue(value))].insert(entry.dn);
        for (const ConfigLine& line : lines) {
            if (isSameName(line.name, invalidLine))
                findings.push_back(quarantineOf(line));
            else if (!dnsOfMoved.empty() && isIn(dnsOfMoved, line))
                findings.push_back(refusalOf(line));
        }
    }

    bool isIn(const std::map<std::string, std::set<std::string>>& dnsOfMoved, const ConfigLine& line) const
    {
        const std::string whole = std::string(line.name).append(": ").append(line.value);
        const auto found = dnsOfMoved.find(std::string(trimmedValue(whole)));
        return found != dnsOfMoved.end() && found->second.count(dnOf(line)) != 0;
    }

    static Finding quarantineOf(const ConfigLine& line)
    {
        return Finding(Severity::warning, line.first,
                       "a line that was refused: " + shownValue(invalidLine, std::string(line.value)))
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
                scratch.add("cn=line", {{LDAP_MOD_ADD, {std::string(line.name), {std::string(line.value)}}}});
        } catch (const Failure& failure) {
            const bool isAllowedKnown = failure.extended != CFG_ERR_INT_SYNTAX;  // The text of the others tells it.
            return findingOf(failure, line.first,
                             isAllowedKnown ? next : allowedFor(std::string(line.name)) + "; " + next);
        }
        const std::string reason =
            line.hasColon ? shownLine(std::string(line.name)) + ": the value is refused after an earlier one"
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

    // The first line of each attribute of an entry that is meant to have one value; 0 once that is reported.
    using FirstLines = std::map<const AttributeType*, int>;

    // Whether an entry may come in parts. None does where each dn line gives an entry that a search finds.
    bool mayHaveParts() const
    {
        const auto dnLines =
            std::count_if(lines.begin(), lines.end(), [](const ConfigLine& line) { return line.isDn; });
        return static_cast<std::size_t>(dnLines) > session.search("", LDAP_SCOPE_SUBTREE, "", {"1.1"}).size();
    }

    void findSeveralValues()
    {
        const bool isByDn = mayHaveParts();
        std::map<std::string, FirstLines> known;  // of entries in parts; else of one entry after the other
        FirstLines* ofEntry = nullptr;
        int entry = -1;
        for (const ConfigLine& line : lines) {
            if (line.entry != entry) {
                ofEntry = &known[isByDn ? dnOf(line) : ""];
                if (!isByDn)
                    ofEntry->clear();
                entry = line.entry;
            }
            const AttributeType* const type = line.isDn ? nullptr : findAttributeType(line.name);
            if (type != nullptr && type->isSingle)
                takeSingle(*type, line, *ofEntry);
        }
    }

    void takeSingle(const AttributeType& type, const ConfigLine& line, FirstLines& known)
    {
        int& first = known.emplace(&type, line.first).first->second;
        if (first == 0 || first == line.first)
            return;
        if (countOf(dnOf(line), type.name) > 1)
            findings.push_back(severalOf(type, first, line.first));
        first = 0;
    }

    static Finding severalOf(const AttributeType& type, int firstLine, int secondLine)
    {
        return Finding(Severity::warning, secondLine, type.name + ": it should have only one value")
            .coded(LDAP_CONSTRAINT_VIOLATION, CFG_ERR_SINGLE_VALUED)
            .advise("the first one is on line " + std::to_string(firstLine) + "; remove one")
            .about(type.name);
    }

    // An encoded password is taken as it is, and every search that meets it fails.
    void findUndecodable()
    {
        std::map<std::string, bool> decodes;  // all of the attribute
        for (const ConfigLine& line : lines) {
            if (line.value.empty() || line.value.front() != '>' || !isPassword(line.name))
                continue;
            const std::string name(line.name);
            const auto known = decodes.find(name);
            if (known != decodes.end() ? known->second : (decodes[name] = !failureOfSearch(session, "", name)))
                continue;
            const MemoryFile file("dn: cn=line\n" + name + ": " + std::string(line.value) + '\n');
            if (const auto failure = failureOfSearch(Session(file.name(), shownName), "cn=line", name))
                findings.push_back(findingOf(*failure, line.first, ""));
        }
    }

    static std::optional<Failure> failureOfSearch(const Session& searched, const std::string& base,
                                                  const std::string& name)
    try {
        (void)searched.search(base, LDAP_SCOPE_SUBTREE, name + "=*", {name});
        return std::nullopt;
    } catch (const Failure& failure) {
        return failure;
    }

    void findMisspelt()
    {
        for (const ConfigLine& line : lines) {
            const std::string hint = line.isDn || !line.hasColon ? "" : attributeHint(line.name);
            if (!hint.empty() && !isSameName(line.name, invalidLine))
                findings.push_back(Finding(Severity::note, line.first,
                                           shownLine(std::string(line.name)) + ": this is not a known attribute" + hint)
                                       .coded(LDAP_UNDEFINED_TYPE)
                                       .advise("its value is not checked")
                                       .about(shownLine(std::string(line.name))));
        }
    }

    void findMissingLogin()
    {
        const bool isThere = session.exists(configurationDn);
        if (!isThere || session.search(configurationDn, LDAP_SCOPE_BASE, "", {"objectclass"}).empty()) {
            findings.push_back(
                Finding(Severity::warning, isThere ? lineOfLogin() : 0,
                        isThere ? "cn=Configuration has no objectclass" : "there is no entry cn=Configuration")
                    .coded(LDAP_NO_SUCH_OBJECT)
                    .advise(loginAdvice));
            return;
        }
        for (const char* const name : {"zeb-slapdAdminDN", "zeb-slapdAdminPW"}) {
            if (!session.has(configurationDn, name))
                findings.push_back(
                    Finding(Severity::warning, lineOfLogin(), std::string(name) + ": cn=Configuration has none")
                        .coded(LDAP_NO_SUCH_ATTRIBUTE)
                        .advise(loginAdvice)
                        .about(name));
        }
    }

    int lineOfLogin() const
    {
        const auto line = std::find_if(lines.begin(), lines.end(), [&](const ConfigLine& candidate) {
            return candidate.isDn && isSameName(dnOf(candidate), configurationDn);
        });
        return line != lines.end() ? line->first : 0;
    }

    void findChangesOfFirstWrite()
    {
        if (!holdsText(loadable.loaded().file().name(), text, shownName))
            findings.push_back(Finding(Severity::note, 0, "the first write changes the layout of this file")
                                   .advise("zebcfg -n set with any change shows how"));
    }

    const Progress progress{"Checking"};
    const std::string& text;
    const std::string& shownName;
    const LoadableText loadable;
    const Session& session;
    const MemoryFile emptyFile;
    Session scratch;
    const DnSpeller spelled;
    const ConfigLines lines;
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
    if (isPublic(file.info().protection))
        findings.push_back(Finding(Severity::note, 0, "every user can read this file, which contains passwords")
                               .advise(privacyAdvice));
    return findings;
}
