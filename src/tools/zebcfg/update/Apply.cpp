#include "update/Apply.h"

#include "base/Attributes.h"
#include "base/Failure.h"
#include "base/Masking.h"
#include "base/Text.h"
#include "files/Input.h"
#include "formats/LdifReader.h"
#include "library/Dn.h"
#include "library/Outline.h"
#include "terminal/Progress.h"
#include "update/LdifInput.h"
#include "update/Update.h"

#include <algorithm>
#include <map>
#include <set>
#include <vector>

namespace {

// A text that is cut off at the end of a line may end with an entry that has none of its attributes yet.
void requireEntry(const LdifRecord& record)
{
    if (record.type != LdifRecord::add)
        throw Failure(LDAP_UNWILLING_TO_PERFORM, "apply takes entries, not changes; see zebcfg modify");
    if (record.changes.empty())
        throw Failure(LDAP_OBJECT_CLASS_VIOLATION, "the entry has no attributes; the input may be cut off");
}

bool isSameSet(std::vector<std::string> left, std::vector<std::string> right)
{
    std::sort(left.begin(), left.end());
    std::sort(right.begin(), right.end());
    return left == right;
}

bool hasExactly(const std::vector<Attribute>& present, const Attribute& wanted)
{
    return std::any_of(present.begin(), present.end(), [&](const Attribute& attribute) {
        return isSameName(attribute.name, wanted.name) && isSameSet(attribute.values, wanted.values);
    });
}

// A password that cannot be decoded is another one.
bool holdsExactly(const Session& session, const std::string& dn, const Attribute& attribute)
try {
    return isSameSet(session.values(dn, attribute.name), attribute.values);
} catch (const Failure&) {
    return false;
}

// What the entry has of the attributes of the record, as far as one search shows it.
std::vector<Attribute> presentIn(const Session& session, const LdifRecord& record)
try {
    std::vector<std::string> names;
    for (const Change& change : record.changes)
        names.push_back(change.attribute.name);
    auto found = session.search(record.dn, LDAP_SCOPE_BASE, names.front() + "=*", names);
    return found.empty() ? std::vector<Attribute>() : std::move(found.front().attributes);
} catch (const Failure&) {
    return {};
}

bool isKept(const std::string& dn, const std::string& attribute)
{
    return isRootDn(dn) || (isSameName(dn, configurationDn) && isLoginAttribute(attribute));
}

// The entries of the input, with DNs in the library's spelling.
class State {
public:
    State(const Messages& messages, const WantedState& what) : wanted(what), shownName(shownInput(what.file))
    {
        read(readInput(wanted.file));
        std::set<std::string> names;
        for (const LdifRecord& record : records) {
            for (const Change& change : record.changes)
                names.insert(change.attribute.name);
        }
        for (const std::string& name : names)
            messages.hintAtName(name);
    }

    void apply(Changes& changes) const
    {
        Progress progress("Applying entries", records.size());
        for (const LdifRecord* const record : parentsFirst()) {
            atRecord(*record, [&] { makeSo(changes, *record); });
            progress.step();
        }
        if (wanted.isWhole)
            removeEntries(changes);
    }

    void addPlace(Failure& failure) const { addRecordPlace(failure, records, shownName); }

private:
    template <typename Body>
    void atRecord(const LdifRecord& record, Body body) const
    try {
        body();
    } catch (Failure& failure) {
        failure.file = shownName;
        failure.fileLine = failure.inputLine != 0 ? failure.inputLine : record.line;
        throw;
    }

    void read(const std::string& text)
    {
        if (!text.empty() && text.back() != '\n')
            throw Failure(0, "the last line of the input is incomplete, and nothing is changed", shownName);
        std::set<std::string> known;
        LdifReader reader(text, shownName);
        for (LdifRecord record; reader.next(record, LdifRecord::add); record = {}) {
            atRecord(record, [&] {
                requireEntry(record);
                record.dn = spelled(record.dn);
                if (!known.insert(lowerCase(record.dn)).second)
                    throw Failure(LDAP_ALREADY_EXISTS, "the entry " + shownDn(record.dn) + " is given twice");
            });
            records.push_back(std::move(record));
        }
        if (records.empty())
            throw Failure(0, "the input has no entry, and nothing is changed", shownName);
    }

    // A state has no order.
    std::vector<const LdifRecord*> parentsFirst() const
    {
        std::map<std::size_t, std::vector<const LdifRecord*>> byDepth;
        for (const LdifRecord& record : records)
            byDepth[ancestorsOf(record.dn).size()].push_back(&record);
        std::vector<const LdifRecord*> sorted;
        for (const auto& [depth, those] : byDepth)
            sorted.insert(sorted.end(), those.begin(), those.end());
        return sorted;
    }

    void makeSo(Changes& changes, const LdifRecord& record) const
    {
        if (!changes.session().exists(record.dn))
            return changes.add(record.dn, record.changes, wanted.needsParent);
        const auto present = presentIn(changes.session(), record);
        std::vector<Change> differing;
        for (const Change& change : record.changes) {
            if (!hasExactly(present, change.attribute) && !holdsExactly(changes.session(), record.dn, change.attribute))
                differing.emplace_back(change).operation = LDAP_MOD_REPLACE;
        }
        if (!differing.empty())
            changes.modify(record.dn, differing);
        if (wanted.isWhole)
            removeAttributes(changes, record);
    }

    // The entry is found by an attribute that it has by now.
    static void removeAttributes(Changes& changes, const LdifRecord& record)
    {
        std::vector<Change> removals;
        const std::string filter = record.changes.front().attribute.name + "=*";
        for (const Entry& entry : changes.session().search(record.dn, LDAP_SCOPE_BASE, filter)) {
            for (const Attribute& attribute : entry.attributes) {
                const bool isNamed =
                    std::any_of(record.changes.begin(), record.changes.end(), [&](const Change& change) {
                        return isSameName(change.attribute.name, attribute.name);
                    });
                if (!isNamed && !isKept(record.dn, attribute.name))
                    removals.push_back({LDAP_MOD_DELETE, {attribute.name, {}}, record.line});
            }
        }
        if (!removals.empty())
            changes.modify(record.dn, removals);
    }

    // Entries that are named, those above them, and the one with the login.
    std::set<std::string> keptDns() const
    {
        std::set<std::string> kept = {lowerCase(configurationDn)};
        for (const LdifRecord& record : records) {
            kept.insert(lowerCase(record.dn));
            for (const std::string& above : ancestorsOf(record.dn))
                kept.insert(lowerCase(above));
        }
        return kept;
    }

    void removeEntries(Changes& changes) const
    {
        const std::string base = spelled(wanted.base);
        const auto nodes = outlineOf(changes.session());
        const auto part = base.empty() ? nodes : below(nodes, base);
        if (part.empty() && !base.empty())
            throw changes.session().missingEntry(base);
        const auto kept = keptDns();
        if (std::none_of(part.begin(), part.end(),
                         [&](const Node& node) { return kept.count(lowerCase(node.dn)) != 0; }))
            throw Failure(LDAP_UNWILLING_TO_PERFORM, "the input has no entry below " + shownDn(wanted.base), shownName);
        for (auto node = part.rbegin(); node != part.rend(); ++node) {
            if (kept.count(lowerCase(node->dn)) == 0 && !isSameName(node->dn, base))
                changes.erase(node->dn, false);
        }
    }

    const WantedState& wanted;
    const std::string shownName;
    const DnSpeller spelled;
    std::vector<LdifRecord> records;
};

}  // namespace

void applyState(Target target, const WantedState& wanted)
{
    const State state(target.messages, wanted);
    target.isState = true;
    update(
        target, [&](Changes& changes) { state.apply(changes); }, [&](Failure& failure) { state.addPlace(failure); });
}
