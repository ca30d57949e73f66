#include "Changes.h"

#include "Attributes.h"
#include "Failure.h"
#include "PrivateFile.h"

#include <langinfo.h>

namespace {

Failure attributeFailure(int code, const std::string& dn, const std::string& name, const std::string& text)
{
    Failure failure(code, text);
    failure.attribute = name;
    failure.entry = dn;
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

// A value that the file cannot hold would come back as another one, or as several.
bool isReadableValue(const std::string& value)
{
    return value.find_first_of("\r\n") == std::string::npos;
}

}  // namespace

Changes::Changes(std::string copyPath, std::string shown, std::optional<Login> wantedLogin)
    : path(std::move(copyPath)), shownName(std::move(shown)), login(std::move(wantedLogin))
{
    open();
    // What the library changes at its first write is no part of the changes that are compared later.
    opened->flush();
    open();
    if (!opened->search("", LDAP_SCOPE_BASE, "charset=*").empty())
        return;
    opened->modify("", {{LDAP_MOD_ADD, {"charset", {::nl_langinfo(CODESET)}}}});
    if (opened->search("", LDAP_SCOPE_BASE, "version=*").empty())
        opened->modify("", {{LDAP_MOD_ADD, {"version", {"1"}}}});
}

void Changes::open()
{
    opened = std::make_unique<Session>(path, shownName, login);
}

void Changes::step(const std::function<void()>& body)
{
    const std::string before = readFile(path, shownName);
    try {
        body();
    } catch (const Failure&) {
        overwriteFile(path, before);
        open();
        throw;
    }
}

void Changes::requireNameAndValues(const std::string& dn, const Attribute& attribute)
{
    const std::string& name = attribute.name;
    if (!isReadableName(name))
        throw attributeFailure(LDAP_UNDEFINED_TYPE, dn, name, "this name of an attribute could not be read back");
    if (isRootDn(dn) && !isSameName(name, "charset") && !isSameName(name, "version"))
        throw attributeFailure(LDAP_OBJECT_CLASS_VIOLATION, dn, name,
                               "the root has the attributes charset and version only");
    for (const std::string& value : attribute.values) {
        if (!isReadableValue(value))
            throw attributeFailure(LDAP_INVALID_SYNTAX, dn, name,
                                   "a value with a line end cannot be read back from the file");
        if (isPassword(name) && value == passwordMask)
            throw attributeFailure(LDAP_CONSTRAINT_VIOLATION, dn, name,
                                   std::string(passwordMask) + " stands for a password that was not shown; search "
                                                               "with --show-passwords");
    }
    usedNames.push_back(name);
}

void Changes::requireEachOnce(const std::string& dn, const Attribute& attribute) const
{
    if (opened->values(dn, attribute.name).size() != attribute.values.size())
        throw attributeFailure(LDAP_TYPE_OR_VALUE_EXISTS, dn, attribute.name, "a value is given twice");
}

void Changes::add(const Entry& entry, bool needsParent)
{
    step([&] {
        if (opened->exists(entry.dn))
            throw Failure(LDAP_ALREADY_EXISTS, "the entry " + entry.dn + " exists already");
        const std::string parent = parentOf(spelled(entry.dn));
        if (needsParent && !parent.empty() && !opened->exists(parent))
            throw Failure(LDAP_NO_SUCH_OBJECT, "the parent " + parent +
                                                   " does not exist (--no-parent-check adds the "
                                                   "entry all the same)");
        for (const Attribute& attribute : entry.attributes)
            requireNameAndValues(entry.dn, attribute);
        opened->add(entry);
        for (const Attribute& attribute : entry.attributes)
            requireEachOnce(entry.dn, attribute);
    });
}

void Changes::modify(const std::string& dn, const std::vector<Change>& changes)
{
    step([&] {
        if (!opened->exists(dn))
            throw Failure(LDAP_NO_SUCH_OBJECT, "there is no entry " + dn);
        for (const Change& change : changes) {
            requireNameAndValues(dn, change.attribute);
            applyChange(dn, change);
        }
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
        opened->modify(dn, {change});
    for (const std::string& value : attribute.values) {
        if (opened->holds(dn, attribute.name, value) == isAdded)
            throw attributeFailure(isAdded ? LDAP_TYPE_OR_VALUE_EXISTS : LDAP_NO_SUCH_ATTRIBUTE, dn, attribute.name,
                                   '"' + shownValue(attribute.name, value) +
                                       (isAdded ? "\" is there already" : "\" is not there"));
        opened->modify(dn, {{change.operation, {attribute.name, {value}}}});
    }
}

void Changes::replaceValues(const std::string& dn, const Change& change)
{
    const Attribute& attribute = change.attribute;
    const bool isThere = !opened->search(dn, LDAP_SCOPE_BASE, attribute.name + "=*", {"objectclass"}).empty();
    if (isThere || !attribute.values.empty())
        opened->modify(dn, {change});
    requireEachOnce(dn, attribute);
}

void Changes::erase(const std::string& dn, bool withChildren)
{
    if (isRootDn(dn))
        throw Failure(LDAP_UNWILLING_TO_PERFORM, "the root cannot be deleted");
    step([&] { opened->erase(dn, withChildren); });
}

void Changes::apply(const LdifRecord& record, bool needsParent)
{
    if (record.type == LdifRecord::erase)
        return erase(record.dn, false);
    if (record.type == LdifRecord::modify)
        return modify(record.dn, record.changes);
    Entry entry{record.dn, {}};
    for (const Change& change : record.changes)
        entry.attributes.push_back(change.attribute);
    add(entry, needsParent);
}
