// The updates of the tree: modify, add and erase.
#include "LDIF_Exception.h"
#include "LDIF_File.h"
#include "LDIF_Util.h"
#include "zebldapcfg.h"

#include <algorithm>
#include <vector>

namespace {

// One record of an update, as the library reads it.
class Modification {
public:
    explicit Modification(const LDAPMod& record)
        : operation(record.mod_op & ~LDAP_MOD_BVALUES), isBinary((record.mod_op & LDAP_MOD_BVALUES) != 0),
          type(record.mod_type)
    {
        if (isBinary)
            take(record.mod_bvalues,
                 [](berval* value) { return value->bv_val != nullptr ? value->bv_val : empty_str; });
        else
            take(record.mod_values, [](char* value) { return value; });
    }

    Modification(const Modification&) = delete;
    Modification& operator=(const Modification&) = delete;
    ~Modification()
    {
        std::for_each(values.begin(), values.end(), [](std::string& value) { wipe(value); });
    }

    // Throws std::invalid_argument for a record without a name.
    cisString name() const { return cisString(requireText(type)); }

    // A new attribute with the values, each once. Throws LDIF_Exception for one that the syntax refuses.
    LDIF_Attribute attribute() const
    {
        LDIF_Attribute made(name(), std::string());
        for (const std::string& value : values)
            made += value;
        return made;
    }

    // What the report of a failure shows of the values.
    std::string shownValue() const
    {
        if (values.empty())
            return "<NULL>";
        return isBinary ? "<binary>" : values.front();
    }

    const int operation;  // without LDAP_MOD_BVALUES
    const bool isBinary;
    std::vector<std::string> values;  // a binary value up to its first NUL

private:
    // Makes room first, for a text that moves would leave its former place as it is.
    template <typename Value, typename TextOf>
    void take(Value** given, TextOf textOf)
    {
        std::size_t count = 0;
        while (given != nullptr && given[count] != nullptr)
            ++count;
        values.reserve(count);
        std::for_each(given, given + count, [&](Value* value) { values.emplace_back(textOf(value)); });
    }

    const char* type;
};

// What a failed update knows. The report of a DN that cannot be printed does without it.
auto fieldsOf(const LDIF_DN& dn, const std::string& fileName)
{
    return [&](LDIF_Exception& failure) {
        failure.entryDn = printable(dn);
        failure.configFile = fileName;
    };
}

LDIF_Exception notFound(SourcePos pos = SourcePos::here())
{
    return {LDAP_NO_SUCH_OBJECT, LDAP_NO_SUCH_OBJECT, "Entry not found", pos};
}

void removeAttribute(LDIF_Attributes& attributes, const LDIF_Attribute* attribute)
{
    attributes.erase(attributes.begin() + (attribute - attributes.data()));
}

void addValues(LDIF_Entry& entry, const Modification& mod)
{
    if (!mod.values.empty())
        entry.attributes += mod.attribute();
}

// The new values are checked before the old ones are given up.
void replaceValues(LDIF_Entry& entry, const Modification& mod)
{
    LDIF_Attributes& attributes = entry.attributes;
    LDIF_Attribute* const present = attributes.find(mod.name());
    if (present == attributes.data() + attributes.size())
        return addValues(entry, mod);
    if (mod.values.empty())
        return removeAttribute(attributes, present);
    LDIF_Values replacement = mod.attribute().values;
    replacement.attrName = present->values.attrName;
    present->values = std::move(replacement);
}

void deleteValues(LDIF_Entry& entry, const Modification& mod)
{
    LDIF_Attributes& attributes = entry.attributes;
    LDIF_Attribute* const present = attributes.find(mod.name());
    if (present == attributes.data() + attributes.size()) {
        LDIF_Exception failure(LDAP_NO_SUCH_ATTRIBUTE, LDAP_NO_SUCH_ATTRIBUTE,
                               "Target attribute of MOD_DELETE not found");
        failure.attribute = mod.name();
        failure.value = mod.shownValue();
        throw failure;
    }
    present->values -= mod.values;
    if (mod.values.empty() || present->values.empty())
        removeAttribute(attributes, present);
}

void apply(LDIF_Entry& entry, const LDAPMod& record)
{
    const Modification mod(record);
    switch (mod.operation) {
    case LDAP_MOD_ADD:
        return addValues(entry, mod);
    case LDAP_MOD_DELETE:
        return deleteValues(entry, mod);
    case LDAP_MOD_REPLACE:
        return replaceValues(entry, mod);
    default:
        throw LDIF_Exception(CFG_PARAM_ERROR, CFG_ERR_MOD_OP,
                             "Unknown mod_op: " + std::to_string(static_cast<unsigned int>(record.mod_op)));
    }
}

}  // namespace

void LDIF_File::modify(const LDIF_DN& dn, LDAPMod** mods)
try {
    if (mods == nullptr || *mods == nullptr)
        return;
    const LDIF_Tree::Number number = tree.find(dn);
    if (number == LDIF_Tree::none)
        throw notFound();
    const LDIF_Tree::Opened entry(tree, number);
    for (; *mods != nullptr; ++mods)
        apply(*entry, **mods);
} catch (...) {
    wrapAndThrow("System error in LDIF_File::modify()", fieldsOf(dn, fileName));
}

void LDIF_File::add(const LDIF_DN& dn, LDAPMod** mods)
try {
    LDIF_Entry entry(dn);
    for (; mods != nullptr && *mods != nullptr; ++mods)
        addValues(entry, Modification(**mods));
    tree.add(std::move(entry));
} catch (...) {
    wrapAndThrow("System error in LDIF_File::add()", fieldsOf(dn, fileName));
}

void LDIF_File::erase(const LDIF_DN& dn, bool deleteNonLeaves)
try {
    const LDIF_Tree::Number entry = tree.find(dn);
    if (entry == LDIF_Tree::none || entry == LDIF_Tree::root)
        throw notFound();
    if (tree.firstChild(entry) != LDIF_Tree::none && !deleteNonLeaves)
        throw LDIF_Exception(LDAP_NOT_ALLOWED_ON_NONLEAF, LDAP_NOT_ALLOWED_ON_NONLEAF,
                             "Use CFG_OPT_DELETE_NON_LEAVES to enable subtree delete");
    tree.erase(entry);
} catch (...) {
    wrapAndThrow("System error in LDIF_File::erase()", fieldsOf(dn, fileName));
}
