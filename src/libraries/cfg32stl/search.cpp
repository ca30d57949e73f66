#include "cfg.h"

#include "LDIF_Syntax.h"
#include "LDIF_Util.h"
#include "PasswordCodec.h"

#include <cstdlib>
#include <memory>
#include <vector>

namespace {

char outOfMemory[] = "OUT OF MEMORY!";

struct ChainDeleter {
    void operator()(CFGMessage* message) const noexcept { cfg_msgfree(message); }
};
using Chain = std::unique_ptr<CFGMessage, ChainDeleter>;

char* copyText(const std::string& text)
{
    char* const copy = _strdup(text.c_str());
    if (copy == nullptr)
        throw static_cast<char*>(outOfMemory);
    return copy;
}

// One level of a result. A record is linked before it is filled in, so that the chain is whole at every moment.
class RecordList {
public:
    RecordList(CFGMessage*& head, int recordType) : end(&head), type(recordType) {}

    CFGMessage& append()
    {
        auto* const record = static_cast<CFGMessage*>(std::malloc(sizeof(CFGMessage)));
        if (record == nullptr)
            throw static_cast<char*>(outOfMemory);
        *record = {type, nullptr, nullptr, nullptr};
        *end = record;
        end = &record->next;
        return *record;
    }

private:
    CFGMessage** end;
    const int type;
};

// Turns the entries that a search has found into the records of a result.
class ChainBuilder {
public:
    ChainBuilder(const LDIF_File& file, const LDIF_AttrFilter& wanted)
        : selection(wanted), isDecoding(file.getAuthentication() != LDIF_File::noAccess)
    {}

    Chain build(const std::vector<const LDIF_Entry*>& found) const
    {
        CFGMessage* first = nullptr;
        RecordList list(first, CFG_MSG_ENTRY);
        Chain chain;
        for (const LDIF_Entry* entry : found) {
            CFGMessage& record = list.append();
            if (chain == nullptr)
                chain.reset(first);
            record.text = copyText(entry->dn.str());
            addAttributes(record, *entry);
        }
        return chain;
    }

private:
    void addAttributes(CFGMessage& parent, const LDIF_Entry& entry) const
    {
        RecordList list(parent.child, CFG_MSG_ATTRIBUTE);
        for (const LDIF_Attribute& attribute : entry.attributes) {
            if (!selection.selects(attribute))
                continue;
            CFGMessage& record = list.append();
            record.text = copyText(attribute.name);
            addValues(record, entry, attribute);
        }
    }

    void addValues(CFGMessage& parent, const LDIF_Entry& entry, const LDIF_Attribute& attribute) const
    {
        const _AttrType* const type = attribute.values.attrType;
        const bool isPassword = isDecoding && type != nullptr && &syntaxOf(*type) == &syntax::pw;
        RecordList list(parent.child, CFG_MSG_VALUE);
        std::string buffer;
        for (const LDIF_Value& value : attribute.values) {
            CFGMessage& record = list.append();
            record.text = isPassword ? decoded(value, entry, attribute) : copyText(value.text(buffer));
        }
    }

    // The clear text as the codec gives it, on the C heap; it may be null.
    static char* decoded(const LDIF_Value& value, const LDIF_Entry& entry, const LDIF_Attribute& attribute)
    {
        ClearText clear;
        const int status = decodePassword(value.str(), clear);
        if (status == 0)
            return clear.release();
        LDIF_Exception failure(status, status, "_pwcodec_decode_buffer();");
        failure.value = value.str();
        failure.attrType = value.attrType;
        failure.entryDn = printable(entry.dn);
        failure.attribute = attribute.name;
        throw failure;
    }

    const LDIF_AttrFilter& selection;
    const bool isDecoding;
};

// Whatever but an LDIF_Exception happens while the chain is built counts as exhausted memory.
int buildChain(const ChainBuilder& builder, const std::vector<const LDIF_Entry*>& found, CFGMessage*& result)
{
    try {
        result = builder.build(found).release();
        return LDAP_SUCCESS;
    } catch (const LDIF_Exception&) {
        throw;
    } catch (...) {
        return CFG_NO_MEMORY;
    }
}

LDIF_Search_Results::Scope scopeOf(int scope)
{
    if (scope == LDAP_SCOPE_ONELEVEL)
        return LDIF_Search_Results::oneLevel;
    return scope == LDAP_SCOPE_SUBTREE ? LDIF_Search_Results::subtree : LDIF_Search_Results::base;
}

LDIF_AttrFilter selectionOf(char** names)
{
    LDIF_AttrFilter selection;
    for (; names != nullptr && *names != nullptr; ++names)
        selection.insert(cisString(*names));
    return selection;
}

}  // namespace

int cfg_search_s(CFG* cfg, const char* base, int scope, const char* filter, char** attrs, int /*attrsonly*/,
                 CFGMessage** result)
{
    if (cfg_reset(cfg) != 0)
        return CFG_PARAM_ERROR;
    if (!isBound(*cfg) || result == nullptr)
        return cfg->lastError = CFG_PARAM_ERROR;
    const auto run = [&] {
        *result = nullptr;
        LDIF_File& file = *cfg->file;
        file.refresh();
        const LDIF_DN dn = dnOf(base);
        std::string filterText = requireText(filter);
        const Wiper wiper(filterText);
        const LDIF_Filter test(filterText);
        const LDIF_AttrFilter selection = selectionOf(attrs);
        return buildChain(ChainBuilder(file, selection), file.findEntries(dn, scopeOf(scope), test), *result);
    };
    return framed(*cfg, "System error in cfg_search_s()", run, SourcePos::here());
}
