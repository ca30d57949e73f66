#include "library/Changes.h"

#include "base/Attributes.h"
#include "base/Failure.h"
#include "base/Masking.h"
#include "base/Text.h"
#include "formats/ConfigText.h"
#include "library/Move.h"
#include "library/Outline.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

namespace {

constexpr const char* reservedNames[] = {"objectclass", "charset", "version", "dn", invalidLine};
constexpr const char* loginNames[] = {"objectclass", "zeb-slapdAdminDN", "zeb-slapdAdminPW"};

Failure attributeFailure(int code, const std::string& dn, const std::string& name, const std::string& text)
{
    Failure failure(code, text);
    failure.attribute = shownLine(name);
    failure.entry = dn;
    return failure;
}

// About the last value of the attribute.
Failure valueFailure(int code, const std::string& dn, const Attribute& attribute, const std::string& text)
{
    Failure failure = attributeFailure(code, dn, attribute.name, text);
    failure.value = shownValue(attribute.name, attribute.values.back());
    return failure;
}

// A name reaches from the begin of a line to the first colon, the line must be neither comment nor dn line, and what a
// search would strip or take for its test could not be found again.
bool isReadableName(const std::string& name)
{
    const std::string stripped = " \t\v\f()";
    return !name.empty() && name.find_first_of(":=\r\n") == std::string::npos && name.front() != '#' &&
           stripped.find(name.front()) == std::string::npos && stripped.find(name.back()) == std::string::npos &&
           !isSameName(name, "dn");
}

// What the library keeps for itself is no name of an entry.
bool canNameEntry(const std::string& name)
{
    return std::none_of(std::begin(reservedNames), std::end(reservedNames),
                        [&](const char* reserved) { return isSameName(reserved, name); });
}

// Adds the line of the input to a failure of the body.
template <typename Body>
void atLineOf(const Change& change, Body body)
try {
    body();
} catch (Failure& failure) {
    if (failure.inputLine == 0)
        failure.inputLine = lineOf(change, failure.value);
    throw;
}

// The place of the first value that an earlier one is the same as; the number of values without one.
std::size_t placeOfSecond(const std::vector<std::string>& values, bool (*isSame)(std::string_view, std::string_view))
{
    std::size_t place = 0;
    while (place < values.size() && std::none_of(values.data(), values.data() + place, [&](const std::string& earlier) {
               return isSame(earlier, values[place]);
           }))
        ++place;
    return place;
}

// The line of the input with that value. Case counts unless nothing else is the same.
int lineOfSecond(const Change& change)
{
    const auto& values = change.attribute.values;
    std::size_t place =
        placeOfSecond(values, [](std::string_view left, std::string_view right) { return left == right; });
    if (place == values.size())
        place = placeOfSecond(values, &isSameName);
    return place < change.valueLines.size() ? change.valueLines[place] : change.line;
}

// A value that the file cannot hold would come back as another one, or as several.
bool isReadableValue(const std::string& value)
{
    return value.find_first_of("\r\n") == std::string::npos;
}

// The DN with its parent written as in one of the entries.
std::string belowKnownParent(const std::string& dn, const std::vector<Entry>& entries)
{
    const std::string parent = parentOf(dn);
    const auto known = std::find_if(entries.begin(), entries.end(),
                                    [&](const Entry& entry) { return keyOf(entry.dn) == keyOf(parent); });
    return known == entries.end() ? dn : dn.substr(0, dn.size() - parent.size()) + known->dn;
}

}  // namespace

bool isLoginAttribute(const std::string& name)
{
    return std::any_of(std::begin(loginNames), std::end(loginNames),
                       [&](const char* known) { return isSameName(known, name); });
}

Changes::Changes(GuardedFile& file, std::string shown, const std::optional<Login>& login, bool force)
    : copy(file, std::move(shown), login), isForced(force)
{}

void Changes::requireNameAndValues(const std::string& dn, const Attribute& attribute)
{
    const std::string& name = attribute.name;
    if (!isReadableName(name))
        throw attributeFailure(LDAP_UNDEFINED_TYPE, dn, name, "an attribute of this name could not be read back");
    if (isRootDn(dn) && !isSameName(name, "charset") && !isSameName(name, "version"))
        throw attributeFailure(LDAP_OBJECT_CLASS_VIOLATION, dn, name,
                               "the root has the attributes charset and version only");
    for (const std::string& value : attribute.values) {
        if (!isReadableValue(value))
            throw valueFailure(LDAP_INVALID_SYNTAX, dn, {name, {value}},
                               "a value with a line end cannot be read back from the file");
        if (!isForced && holdsMask(value))
            throw valueFailure(LDAP_CONSTRAINT_VIOLATION, dn, {name, {value}},
                               std::string(passwordMask) + " stands for a password that was not shown; search "
                                                           "with --show-passwords");
    }
    usedNames.insert(lowerCase(name));
}

void Changes::requireEachOnce(const std::string& dn, const Change& change) const
{
    const Attribute& attribute = change.attribute;
    if (session().values(dn, attribute.name).size() == attribute.values.size())
        return;
    Failure failure = attributeFailure(LDAP_TYPE_OR_VALUE_EXISTS, dn, attribute.name, "a value is given twice");
    failure.inputLine = lineOfSecond(change);
    throw failure;
}

void Changes::requireParent(const std::string& dn, const std::string& advice) const
{
    const std::string parent = parentOf(dn);
    if (!parent.empty() && !session().exists(parent))
        throw Failure(LDAP_NO_SUCH_OBJECT,
                      "the parent " + shownDn(parent) + " does not exist" +
                          nearestNote(parent, [this](const std::string& above) { return session().exists(above); }) +
                          advice);
}

void Changes::add(const std::string& dn, const std::vector<Change>& attributes, bool needsParent)
{
    copy.step([&] {
        requireNoNul(dn);
        const auto spelling = session().spellingIfMissing(dn);
        if (!spelling)
            throw Failure(LDAP_ALREADY_EXISTS, "the entry " + shownDn(dn) + " already exists");
        requireNaming(*spelling);
        if (needsParent)
            requireParent(*spelling, " (--no-parent-check adds the entry anyway)");
        for (const Change& change : attributes)
            atLineOf(change, [&] { requireNameAndValues(dn, change.attribute); });
        addEntry(dn, attributes);
        if (hasPlainly(dn, attributes))
            return;
        for (const Change& change : attributes) {
            atLineOf(change, [&] {
                requireEachOnce(dn, change);
                requireSingle(dn, change);
            });
        }
    });
}

// Whether one search shows that the entry has each value once and no single value twice, as nearly every one does.
bool Changes::hasPlainly(const std::string& dn, const std::vector<Change>& attributes) const
try {
    if (attributes.empty())
        return true;
    const auto found = session().search(dn, LDAP_SCOPE_BASE, attributes.front().attribute.name + "=*");
    return !found.empty() && std::all_of(attributes.begin(), attributes.end(), [&](const Change& change) {
        const Attribute& wanted = change.attribute;
        const AttributeType* const type = findAttributeType(wanted.name);
        const bool isPlain = wanted.values.size() < 2 || type == nullptr || !type->isSingle;
        const auto& names = found.front().attributes;
        const auto present = std::find_if(names.begin(), names.end(), [&](const Attribute& candidate) {
            return isSameName(candidate.name, wanted.name);
        });
        return isPlain && present != names.end() && present->values.size() == wanted.values.size();
    });
} catch (const Failure&) {
    return false;  // A password cannot be decoded: the search for it names the line.
}

// The failure names the attribute that the library refuses.
void Changes::addEntry(const std::string& dn, const std::vector<Change>& attributes)
{
    try {
        copy.make([dn, attributes](Session& session) { session.add(dn, attributes); });
    } catch (Failure& failure) {
        for (const Change& change : attributes) {
            if (isSameName(change.attribute.name, failure.attribute))
                failure.inputLine = lineOf(change, failure.value);
        }
        throw;
    }
}

void Changes::modify(const std::string& dn, const std::vector<Change>& changes)
{
    copy.step([&] {
        if (!session().exists(dn))
            throw session().missingEntry(spelled(dn));
        const auto loginBefore = loginAttributes(dn);
        for (const Change& change : changes) {
            atLineOf(change, [&] {
                requireNameAndValues(dn, change.attribute);
                applyChange(dn, change);
            });
        }
        for (auto change = changes.rbegin(); change != changes.rend(); ++change)
            atLineOf(*change, [&] { requireSingle(dn, *change); });
        requireLogin(dn, loginBefore, changes);
    });
}

void Changes::applyChange(const std::string& dn, const Change& change)
{
    if (change.operation == LDAP_MOD_REPLACE)
        return replaceValues(dn, change);
    const Attribute& attribute = change.attribute;
    const bool isAdded = change.operation == LDAP_MOD_ADD;
    if (attribute.values.empty() && isAdded)
        throw attributeFailure(0, dn, attribute.name, "there is no value to add");
    if (attribute.values.empty())
        copy.make([dn, change](Session& session) { session.modify(dn, {change}); });
    for (const std::string& value : attribute.values) {
        if (session().holds(dn, attribute.name, value) == isAdded)
            throw valueFailure(
                isAdded ? LDAP_TYPE_OR_VALUE_EXISTS : LDAP_NO_SUCH_ATTRIBUTE, dn, {attribute.name, {value}},
                '"' + shownValue(attribute.name, value) + (isAdded ? "\" is already there" : "\" is not there"));
        const Change single{change.operation, {attribute.name, {value}}};
        copy.make([dn, single](Session& session) { session.modify(dn, {single}); });
    }
}

void Changes::replaceValues(const std::string& dn, const Change& change)
{
    const Attribute& attribute = change.attribute;
    const bool isThere = !session().search(dn, LDAP_SCOPE_BASE, attribute.name + "=*", {"objectclass"}).empty();
    if (isThere || !attribute.values.empty())
        copy.make([dn, change](Session& session) { session.modify(dn, {change}); });
    requireEachOnce(dn, change);
}

// A file that has several values already keeps them.
void Changes::requireSingle(const std::string& dn, const Change& change) const
{
    const AttributeType* const type = findAttributeType(change.attribute.name);
    if (isForced || type == nullptr || !type->isSingle || change.operation == LDAP_MOD_DELETE ||
        change.attribute.values.empty())
        return;
    const std::size_t count = session().values(dn, type->name).size();
    if (count < 2)
        return;
    Failure failure = valueFailure(LDAP_CONSTRAINT_VIOLATION, dn, change.attribute,
                                   "takes one value, and would have " + std::to_string(count) + "; --force allows it");
    failure.extended = CFG_ERR_SINGLE_VALUED;
    throw failure;
}

// What the login stands on, as far as the entry has it.
std::vector<std::string> Changes::loginAttributes(const std::string& dn) const
{
    std::vector<std::string> found;
    if (!isSameName(spelled.orNothing(dn), configurationDn))
        return found;
    for (const char* const name : loginNames) {
        if (session().has(dn, name))
            found.emplace_back(name);
    }
    return found;
}

void Changes::requireLogin(const std::string& dn, const std::vector<std::string>& before,
                           const std::vector<Change>& changes) const
{
    if (isForced)
        return;
    for (const std::string& name : before) {
        if (session().has(dn, name))
            continue;
        Failure failure =
            attributeFailure(LDAP_OBJECT_CLASS_VIOLATION, dn, name, "without it nobody can log in; --force removes it");
        for (const Change& change : changes) {
            if (isSameName(change.attribute.name, name))
                failure.inputLine = change.line;
        }
        throw failure;
    }
}

void Changes::erase(const std::string& dn, bool withChildren)
{
    if (isRootDn(dn))
        throw Failure(LDAP_UNWILLING_TO_PERFORM, "the root cannot be deleted");
    if (!isForced && !loginAttributes(dn).empty())
        throw Failure(LDAP_OBJECT_CLASS_VIOLATION, "without cn=Configuration nobody can log in; --force deletes it");
    copy.step([&] { copy.make([dn, withChildren](Session& session) { session.erase(dn, withChildren); }); });
}

// Only RDNs that are new count: an entry may have been added below others by any means.
void Changes::requireNaming(const std::string& dn) const
{
    for (std::string rest = dn; !rest.empty(); rest = parentOf(rest)) {
        for (const Attribute& attribute : rdnOf(rest)) {
            const bool isName = canNameEntry(attribute.name);
            if ((isName && (isForced || !isSecret(attribute.name))) || session().exists(rest))
                continue;
            throw attributeFailure(LDAP_NAMING_VIOLATION, dn, attribute.name,
                                   isName ? "a DN is no place for a password; --force allows it"
                                          : "cannot name an entry; use another attribute, such as cn");
        }
    }
}

std::string Changes::newDnOf(const LdifRecord& record) const
{
    if (!parentOf(spelled(record.newRdn)).empty())
        throw Failure(LDAP_INVALID_DN_SYNTAX, "newrdn takes one RDN; newsuperior moves an entry elsewhere");
    const std::string parent = record.newSuperior ? spelled(*record.newSuperior) : parentOf(spelled(record.dn));
    return parent.empty() ? record.newRdn : record.newRdn + ", " + parent;
}

void Changes::requireMovable(const Move& move) const
{
    if (move.from().empty() || move.to().empty())
        throw Failure(LDAP_UNWILLING_TO_PERFORM, "the root can neither be moved nor replaced");
    if (!session().exists(move.from()))
        throw session().missingEntry(move.from());
    if (!isForced && !move.isSpelling() && !loginAttributes(move.from()).empty())
        throw Failure(LDAP_OBJECT_CLASS_VIOLATION, "without cn=Configuration nobody can log in; --force moves it");
    if (move.isIntoItself())
        throw Failure(LDAP_UNWILLING_TO_PERFORM, "an entry cannot be moved below itself");
    if (!move.isSpelling() && session().exists(move.to()))
        throw Failure(LDAP_ALREADY_EXISTS, "the entry " + shownDn(move.to()) + " already exists");
    requireNaming(move.to());
    requireParent(move.to(), {});
}

// The same entries, but for the DNs of those that are moved.
void Changes::requireMoved(const Move& move, const std::vector<Entry>& before, const std::vector<Entry>& after)
{
    std::map<std::string, std::vector<Attribute>> wanted;
    std::map<std::string, std::vector<Attribute>> found;
    for (const Entry& entry : before)
        wanted[keyOf(move.moved(entry.dn))] = entry.attributes;
    for (const Entry& entry : after)
        found[keyOf(entry.dn)] = entry.attributes;
    if (wanted != found)
        throw Failure(LDAP_INVALID_SYNTAX,
                      "the entries below " + shownDn(move.to()) +
                          " would be read back from the file as different ones; nothing is changed");
}

void Changes::followRdn(const Move& move, bool keepsOld)
{
    std::vector<Attribute> named = rdnOf(move.to());
    for (const Attribute& old : rdnOf(move.from()))
        named.push_back({old.name, {}});
    for (const Attribute& attribute : named) {
        requireNameAndValues(move.to(), attribute);
        const auto before = session().values(move.to(), attribute.name);
        const auto after = move.movedValues(attribute.name, before, keepsOld);
        if (after == before)
            continue;
        const Change change{after.empty() ? LDAP_MOD_DELETE : LDAP_MOD_REPLACE, {attribute.name, after}};
        copy.make([dn = move.to(), change](Session& session) { session.modify(dn, {change}); });
        if (after.size() > before.size())
            requireSingle(move.to(), change);
    }
}

void Changes::noteReferences(const Move& move, const std::vector<Entry>& before)
{
    const auto mayHoldDns = [](const Attribute& attribute) {
        const AttributeType* const type = findAttributeType(attribute.name);
        return type == nullptr || type->syntax == Syntax::dn || type->syntax == Syntax::text;
    };
    for (const Entry& entry : before) {
        for (const Attribute& attribute : entry.attributes) {
            for (const std::string& value : attribute.values) {
                if (mayHoldDns(attribute) && value.find('=') != std::string::npos && move.affects(value))
                    noted.push_back(attribute.name + " of " + shownDn(move.moved(entry.dn)) + " still refers to " +
                                    shownValue(attribute.name, value));
            }
        }
    }
}

void Changes::move(const std::string& dn, const std::string& newDn, bool keepsOldRdn)
{
    const std::string text = copy.text();
    const auto names = namesIn(text);
    const auto entries = [&] { return session().entriesWith(names, outlineOf(session()).size()); };
    const auto before = entries();
    const Move move(spelled(dn), belowKnownParent(spelled(newDn), before), spelled);
    requireMovable(move);
    copy.replaceText(move.movedText(text), [&] {
        requireMoved(move, before, entries());
        followRdn(move, keepsOldRdn);
    });
    if (!move.isSpelling())
        noteReferences(move, before);
}

void Changes::apply(const LdifRecord& record, bool needsParent)
{
    if (record.type == LdifRecord::erase)
        return erase(record.dn, false);
    if (record.type == LdifRecord::modify)
        return modify(record.dn, record.changes);
    if (record.type == LdifRecord::move)
        return move(record.dn, newDnOf(record), record.keepsOldRdn);
    add(record.dn, record.changes, needsParent);
}
