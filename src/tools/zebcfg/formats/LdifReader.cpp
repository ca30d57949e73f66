#include "formats/LdifReader.h"

#include "base/Attributes.h"
#include "base/Failure.h"
#include "base/Masking.h"
#include "base/Text.h"

#include <unordered_map>
#include <utility>

namespace {

// Takes one record apart. Lines are read only forwards.
class Parser {
public:
    Parser(LdifLines& from, LdifRecord& result) : lines(from), record(result) {}

    // False for a record that holds nothing but the version of LDIF.
    bool parse(LdifRecord::Type type)
    {
        record = {};
        record.type = type;
        record.text = lines.record();
        advance();
        if (isNamed("version"))
            readVersion();
        if (!hasLine)
            return false;
        if (isNamed("include"))
            throw lines.failure(LDAP_UNWILLING_TO_PERFORM, "other files are not included");
        if (!isNamed("dn"))
            throw lines.failure(0, "a record must begin with its dn");
        record.dn = current.value;
        record.line = lines.lineNumber();
        advance();
        readType();
        if (record.type == LdifRecord::add)
            readAttributes();
        else if (record.type == LdifRecord::modify)
            readModifications();
        else if (record.type == LdifRecord::move)
            readMove();
        else if (hasLine)
            throw lines.failure(0, "a delete takes no further lines");
        return true;
    }

private:
    void advance() { hasLine = lines.next(current); }

    bool isNamed(const char* name) const { return isSameName(current.name, name); }

    void readVersion()
    {
        if (current.value != "1")
            throw lines.failure(LDAP_UNWILLING_TO_PERFORM,
                                "only version 1 of LDIF can be read, not " + shownLine(current.value));
        advance();
    }

    void readType()
    {
        if (isNamed("control"))
            throw lines.failure(LDAP_UNWILLING_TO_PERFORM, "controls are not supported");
        if (!isNamed("changetype"))
            return;
        const std::string& type = current.value;
        if (isSameName(type, "add"))
            record.type = LdifRecord::add;
        else if (isSameName(type, "modify"))
            record.type = LdifRecord::modify;
        else if (isSameName(type, "delete"))
            record.type = LdifRecord::erase;
        else if (isSameName(type, "modrdn") || isSameName(type, "moddn"))
            record.type = LdifRecord::move;
        else
            throw lines.failure(0, "unknown changetype " + shownLine(type));
        advance();
    }

    void readAttributes()
    {
        std::unordered_map<std::string, std::size_t> places;  // of the changes, by names in lower case
        for (; hasLine; advance()) {
            if (current.isSeparator)
                throw lines.failure(0, "a line \"-\" ends a modification, and there is none");
            const auto [place, isNew] = places.emplace(lowerCase(current.name), record.changes.size());
            if (isNew)
                record.changes.push_back({LDAP_MOD_ADD, {current.name, {}}, lines.lineNumber()});
            addValue(record.changes[place->second]);
        }
    }

    void readModifications()
    {
        while (hasLine) {
            Change& change = record.changes.emplace_back(Change{operation(), {current.value, {}}, lines.lineNumber()});
            for (advance(); hasLine && !current.isSeparator; advance()) {
                if (!isSameName(current.name, change.attribute.name))
                    throw lines.failure(0, shownLine(current.name) + " is found where values of " +
                                               shownLine(change.attribute.name) + " or a line \"-\" are expected");
                addValue(change);
            }
            if (hasLine)
                advance();
        }
    }

    void readMove()
    {
        requireLine("newrdn");
        record.newRdn = current.value;
        advance();
        requireLine("deleteoldrdn");
        record.keepsOldRdn = current.value == "0";
        if (!record.keepsOldRdn && current.value != "1")
            throw lines.failure(0, "deleteoldrdn is 0 or 1");
        advance();
        if (!hasLine)
            return;
        requireLine("newsuperior");
        record.newSuperior = current.value;
        advance();
        if (hasLine)
            throw lines.failure(0, "a modrdn takes no further lines");
    }

    void requireLine(const char* name) const
    {
        if (!isNamed(name))
            throw lines.failure(0, "a modrdn has the lines newrdn, deleteoldrdn and, to move the entry elsewhere, "
                                   "newsuperior");
    }

    void addValue(Change& change)
    {
        change.attribute.values.push_back(std::move(current.value));
        change.valueLines.push_back(lines.lineNumber());
    }

    int operation() const
    {
        if (isNamed("add"))
            return LDAP_MOD_ADD;
        if (isNamed("delete"))
            return LDAP_MOD_DELETE;
        if (isNamed("replace"))
            return LDAP_MOD_REPLACE;
        throw lines.failure(0, "a modification begins with add:, delete: or replace: and the name of an attribute");
    }

    LdifLines& lines;
    LdifRecord& record;
    bool hasLine = false;
    LdifLine current;  // empty after the last one
};

}  // namespace

LdifReader::LdifReader(std::string ldif, std::string shown) : lines(std::move(ldif), std::move(shown)) {}

bool LdifReader::next(LdifRecord& record, LdifRecord::Type type)
{
    while (lines.nextRecord()) {
        if (Parser(lines, record).parse(type))
            return true;
    }
    return false;
}
