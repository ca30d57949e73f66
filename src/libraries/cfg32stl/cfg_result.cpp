// The walk over a search result. It makes no exceptions: a failure is a code in the handle, if there is one.
#include "cfg.h"

#include "LDIF_Util.h"

#include <cstddef>
#include <cstdlib>

namespace {

// The state of a walk over the attributes of an entry. Callers see it as a BerElement.
struct Walk {
    CFGMessage* current;  // the attribute reached so far; null at the end
};

// Null, with the code in the handle.
std::nullptr_t failed(CFG* cfg, int code)
{
    if (cfg != nullptr)
        cfg->lastError = code;
    return nullptr;
}

// A copy of a text; null with the code in the handle when memory is exhausted.
char* copyOf(CFG* cfg, const char* text)
{
    char* const copy = copyText(text);
    return copy != nullptr ? copy : failed(cfg, CFG_NO_MEMORY);
}

int countRecords(const CFGMessage* record)
{
    int count = 0;
    for (; record != nullptr; record = record->next)
        ++count;
    return count;
}

const CFGMessage* findAttribute(const CFGMessage& entry, const char* name)
{
    const CFGMessage* attribute = entry.child;
    while (attribute != nullptr && (attribute->text == nullptr || compareFoldedText(attribute->text, name) != 0))
        attribute = attribute->next;
    return attribute;
}

bool hasText(const CFGMessage* record)
{
    return record != nullptr && record->text != nullptr;
}

}  // namespace

CFGMessage* cfg_first_entry(CFG* cfg, CFGMessage* result)
{
    cfg_reset(cfg);
    return result;
}

CFGMessage* cfg_next_entry(CFG* cfg, CFGMessage* entry)
{
    cfg_reset(cfg);
    return entry != nullptr ? entry->next : nullptr;
}

int cfg_count_entries(CFG* cfg, CFGMessage* result)
{
    return cfg_reset(cfg) != 0 ? CFG_PARAM_ERROR : countRecords(result);
}

int cfg_count_attributes(CFG* cfg, CFGMessage* entry)
{
    if (cfg_reset(cfg) != 0)
        return CFG_PARAM_ERROR;
    return entry != nullptr ? countRecords(entry->child) : 0;
}

char* cfg_get_dn(CFG* cfg, CFGMessage* entry)
{
    cfg_reset(cfg);
    if (!hasText(entry) || entry->type != CFG_MSG_ENTRY)
        return failed(cfg, CFG_PARAM_ERROR);
    return copyOf(cfg, entry->text);
}

char* cfg_first_attribute(CFG* cfg, CFGMessage* entry, BerElement** ber)
{
    cfg_reset(cfg);
    if (ber == nullptr)
        return failed(cfg, CFG_PARAM_ERROR);
    *ber = nullptr;
    if (entry == nullptr)
        return failed(cfg, CFG_PARAM_ERROR);
    auto* const walk = static_cast<Walk*>(std::calloc(1, sizeof(Walk)));
    if (walk == nullptr)
        return failed(cfg, CFG_NO_MEMORY);
    walk->current = entry->child;
    *ber = reinterpret_cast<BerElement*>(walk);
    if (!hasText(entry->child))
        return nullptr;
    char* const name = copyOf(cfg, entry->child->text);
    if (name == nullptr) {
        cfg_ber_free(*ber);
        *ber = nullptr;
    }
    return name;
}

char* cfg_next_attribute(CFG* cfg, CFGMessage* /*entry*/, BerElement* ber)
{
    cfg_reset(cfg);
    if (ber == nullptr)
        return failed(cfg, CFG_PARAM_ERROR);
    CFGMessage*& current = reinterpret_cast<Walk*>(ber)->current;
    if (current != nullptr)
        current = current->next;
    return hasText(current) ? copyOf(cfg, current->text) : nullptr;
}

char** cfg_get_values(CFG* cfg, CFGMessage* entry, const char* attribute)
{
    if (cfg_reset(cfg) != 0)
        return nullptr;
    if (entry == nullptr || attribute == nullptr)
        return failed(cfg, CFG_PARAM_ERROR);
    const CFGMessage* const found = findAttribute(*entry, attribute);
    if (found == nullptr)
        return failed(cfg, LDAP_NO_SUCH_ATTRIBUTE);
    const int count = countRecords(found->child);
    if (count == 0)
        return nullptr;
    auto** const values = static_cast<char**>(std::calloc(static_cast<std::size_t>(count) + 1, sizeof(char*)));
    if (values == nullptr)
        return failed(cfg, CFG_NO_MEMORY);
    char** end = values;
    for (const CFGMessage* value = found->child; value != nullptr; value = value->next) {
        *end = copyOf(cfg, value->text != nullptr ? value->text : empty_str);
        if (*end++ == nullptr) {
            cfg_value_free(values);
            return nullptr;
        }
    }
    return values;
}

int cfg_count_values(char** values)
{
    int count = 0;
    while (values != nullptr && values[count] != nullptr)
        ++count;
    return count;
}

void cfg_value_free(char** values)
{
    for (char** value = values; value != nullptr && *value != nullptr; ++value) {
        std::free(*value);
        *value = nullptr;
    }
    std::free(values);
}

// An entry is one block with all below it. Records of attributes and values belong to their entry.
int cfg_msgfree(CFGMessage* message)
{
    while (message != nullptr && message->type == CFG_MSG_ENTRY) {
        CFGMessage* const next = message->next;
        std::free(message);
        message = next;
    }
    return LDAP_SUCCESS;
}

void cfg_ber_free(BerElement* ber)
{
    cfg_memfree(ber);
}

void cfg_memfree(void* memory)
{
    std::free(memory);
}
