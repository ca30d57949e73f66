#include "cfg.h"

#include "LDIF_AttrType.h"
#include "LDIF_Syntax.h"
#include "LDIF_Util.h"
#include "PasswordCodec.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace {

char outOfMemory[] = "OUT OF MEMORY!";

struct ChainDeleter {
    void operator()(CFGMessage* message) const noexcept { cfg_msgfree(message); }
};
using Chain = std::unique_ptr<CFGMessage, ChainDeleter>;

// The record of an entry with those of its attributes and values and all their texts, in one block of the C heap. The
// records come in the order in which a walk meets them.
class RecordBlock {
public:
    RecordBlock() = default;
    RecordBlock(const RecordBlock&) = delete;
    RecordBlock& operator=(const RecordBlock&) = delete;
    ~RecordBlock() { clear(); }

    // Makes room for that many more bytes of texts.
    void reserve(std::size_t bytes)
    {
        constexpr std::size_t usualText = 16;
        texts.reserve(texts.size() + bytes);
        records.reserve(records.size() + bytes / usualText);
    }
    void clear() noexcept
    {
        if (hasSecret)
            wipe(texts);
        hasSecret = false;
        texts.clear();
        records.clear();
    }
    // A clear password, which leaves no other copy than that of the result.
    void addSecret(std::string_view text)
    {
        hasSecret = true;  // first, so that a growing text is wiped where it stood
        add(CFG_MSG_VALUE, text);
    }
    void add(int type, std::string_view text)
    {
        records.push_back({type, texts.size()});
        if (hasSecret)
            reserveWiping(texts, texts.size() + text.size() + 1);
        texts.append(text).push_back('\0');
    }
    // A value without a text.
    void addNull() { records.push_back({CFG_MSG_VALUE, noText}); }

    CFGMessage* make() const
    {
        void* const block = std::malloc(records.size() * sizeof(CFGMessage) + texts.size());
        if (block == nullptr)
            throw static_cast<char*>(outOfMemory);
        auto* const made = static_cast<CFGMessage*>(block);
        char* const text = reinterpret_cast<char*>(made + records.size());
        std::memcpy(text, texts.data(), texts.size());
        CFGMessage** ends[] = {nullptr, nullptr, nullptr};  // where the next record of a level is linked
        for (std::size_t at = 0; at < records.size(); ++at) {
            const auto& [type, offset] = records[at];
            made[at] = {type, offset == noText ? nullptr : text + offset, nullptr, nullptr};
            if (type != CFG_MSG_ENTRY)
                *ends[type] = &made[at];
            ends[type] = &made[at].next;
            if (type != CFG_MSG_VALUE)
                ends[type + 1] = &made[at].child;
        }
        return made;
    }

private:
    static constexpr std::size_t noText = static_cast<std::size_t>(-1);

    struct Record {
        int type;
        std::size_t offset;  // of its text
    };

    std::vector<Record> records;
    std::string texts;
    bool hasSecret = false;
};

// Turns the entries that a search has found into the records of a result.
class ChainBuilder {
public:
    ChainBuilder(const LDIF_File& file, const LDIF_AttrFilter& wanted)
        : tree(file.entries()), selection(wanted), isDecoding(file.getAuthentication() != LDIF_File::noAccess)
    {}

    Chain build(const std::vector<LDIF_Tree::Number>& found)
    {
        Chain chain;
        CFGMessage* last = nullptr;
        for (const LDIF_Tree::Number entry : found) {
            block.clear();
            add(entry);
            CFGMessage* const record = block.make();
            if (last == nullptr)
                chain.reset(record);
            else
                last->next = record;
            last = record;
        }
        return chain;
    }

private:
    struct Name {
        std::string_view text;
        bool isWanted = false;
        const _AttrType* type = nullptr;
    };

    void add(LDIF_Tree::Number entry)
    {
        place = 0;
        const LDIF_Entry* const object = tree.object(entry);
        if (object == nullptr)
            return addText(tree.text(entry));
        const std::string dn = object->dn.str();
        block.add(CFG_MSG_ENTRY, dn);
        for (const LDIF_Attribute& attribute : object->attributes) {
            if (!addAttribute(attribute.name))
                continue;
            for (const LDIF_Value& value : attribute.values)
                addValue(value.str(), attribute.name, dn);
        }
    }

    void addText(const LDIF_EntryText& entry)
    {
        block.reserve(selection.empty() ? entry.text.size() : 0);
        block.add(CFG_MSG_ENTRY, entry.dn());
        bool isWanted = false;
        std::string_view name;
        for (std::string_view lines = entry.attributes(); !lines.empty();) {
            const LDIF_TextLine line = takeLine(lines);
            if (line.name.empty())
                continue;  // a comment
            if (line.name != name)
                isWanted = addAttribute(name = line.name);
            if (isWanted)
                addValue(line.value, name, entry.dn());
        }
    }

    // Says whether it is wanted.
    bool addAttribute(std::string_view name)
    {
        const Name& known = knownName(name);
        if (!known.isWanted)
            return false;
        block.add(CFG_MSG_ATTRIBUTE, name);
        type = known.type;
        isPassword = isDecoding && &syntaxOf(*type) == &syntax::pw;
        return true;
    }

    // What is known of the next name; most entries have the names of the one before, in the same order.
    const Name& knownName(std::string_view name)
    {
        constexpr std::size_t usualNames = 16;
        if (place == names.size())
            names.resize(place + usualNames);
        Name& known = names[place++];
        if (known.type == nullptr || known.text != name)
            known = {name, selection.selects(name), getAttrType(name)};
        return known;
    }

    void addValue(std::string_view text, std::string_view name, std::string_view dn)
    {
        if (!isPassword)
            return block.add(CFG_MSG_VALUE, text);
        ClearText clear;
        const int status = decodePassword(std::string(text), clear);
        if (status != 0)
            throw undecodable(status, text, name, dn);
        if (clear != nullptr)
            block.addSecret(clear.get());
        else
            block.addNull();
    }

    LDIF_Exception undecodable(int status, std::string_view text, std::string_view name, std::string_view dn,
                               SourcePos pos = SourcePos::here()) const
    {
        LDIF_Exception failure(status, status, "_pwcodec_decode_buffer();", pos);
        failure.value = text;
        failure.attrType = type;
        failure.entryDn = dn;
        failure.attribute = name;
        return failure;
    }

    const LDIF_Tree& tree;
    const LDIF_AttrFilter& selection;
    const bool isDecoding;
    RecordBlock block;
    std::vector<Name> names;
    std::size_t place = 0;            // of the next name
    const _AttrType* type = nullptr;  // of the attribute at hand
    bool isPassword = false;
};

// Whatever but an LDIF_Exception happens while the chain is built counts as exhausted memory.
int buildChain(ChainBuilder&& builder, const std::vector<LDIF_Tree::Number>& found, CFGMessage*& result)
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

LDIF_Scope scopeOf(int scope)
{
    if (scope == LDAP_SCOPE_ONELEVEL)
        return LDIF_Scope::oneLevel;
    return scope == LDAP_SCOPE_SUBTREE ? LDIF_Scope::subtree : LDIF_Scope::base;
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
        LDIF_DnKey key;
        key.parse(requireText(base));
        std::string filterText = requireText(filter);
        const Wiper wiper(filterText);
        const LDIF_Filter test(filterText);
        const LDIF_AttrFilter selection = selectionOf(attrs);
        return buildChain(ChainBuilder(file, selection), file.findEntries(key, scopeOf(scope), test), *result);
    };
    return framed(*cfg, "System error in cfg_search_s()", run, SourcePos::here());
}
