#include "library/Session.h"

#include "base/Attributes.h"
#include "base/Locale.h"
#include "base/Masking.h"
#include "base/Text.h"
#include "base/Wipe.h"
#include "library/Dn.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <set>
#include <utility>

namespace {

std::string textOf(const char* text)
{
    return text != nullptr ? text : "";
}

// The library's records for changes. They point into the changes, which have to outlive them.
class Mods {
public:
    explicit Mods(const std::vector<Change>& changes)
    {
        for (const Change& change : changes) {
            auto& row = values.emplace_back();
            for (const std::string& value : change.attribute.values)
                row.push_back(const_cast<char*>(value.c_str()));  // The library only reads it.
            row.push_back(nullptr);
            LDAPMod& record = records.emplace_back();
            record.mod_op = change.operation;
            record.mod_type = const_cast<char*>(change.attribute.name.c_str());
        }
        for (std::size_t i = 0; i < records.size(); ++i) {
            records[i].mod_values = values[i].data();
            pointers.push_back(&records[i]);
        }
        pointers.push_back(nullptr);
    }

    LDAPMod** data() { return pointers.data(); }

private:
    std::vector<std::vector<char*>> values;
    std::vector<LDAPMod> records;
    std::vector<LDAPMod*> pointers;
};

std::size_t countOf(const CFGMessage* record)
{
    std::size_t count = 0;
    for (; record != nullptr; record = record->next)
        ++count;
    return count;
}

Entry entryOf(const CFGMessage& record)
{
    Entry entry{textOf(record.text), {}};
    entry.attributes.reserve(countOf(record.child));
    for (const CFGMessage* attribute = record.child; attribute != nullptr; attribute = attribute->next) {
        Attribute& added = entry.attributes.emplace_back(Attribute{textOf(attribute->text), {}});
        added.values.reserve(countOf(attribute->child));
        for (const CFGMessage* value = attribute->child; value != nullptr; value = value->next)
            added.values.push_back(textOf(value->text));
    }
    return entry;
}

// Each record is released when it has been taken over, so that the memory does not hold the entries twice.
std::vector<Entry> entriesOf(SearchResult result)
{
    std::vector<Entry> entries;
    entries.reserve(countOf(result.get()));
    while (result != nullptr) {
        SearchResult rest(std::exchange(result->next, nullptr));
        entries.push_back(entryOf(*result));
        result = std::move(rest);
    }
    return entries;
}

std::string listOf(const char* const* words)
{
    std::string list;
    for (; words != nullptr && *words != nullptr; ++words)
        list += (list.empty() ? "" : ", ") + std::string(*words);
    return list;
}

}  // namespace

void ResultRelease::operator()(CFGMessage* result) const noexcept
{
    for (const CFGMessage* entry = result; entry != nullptr; entry = entry->next) {
        for (const CFGMessage* attribute = entry->child; attribute != nullptr; attribute = attribute->next) {
            for (const CFGMessage* value = attribute->child; value != nullptr; value = value->next) {
                if (value->text != nullptr)
                    wipeMemory(value->text, std::strlen(value->text));
            }
        }
    }
    cfg_msgfree(result);
}

bool isTextFailure(int code)
{
    constexpr int fromBytes = 162;
    constexpr int toBytes = 163;
    return code == fromBytes || code == toBytes;
}

std::string escapedForFilter(const std::string& value)
{
    std::string escaped;
    for (const char character : value) {
        const auto byte = static_cast<unsigned char>(character);
        if (std::isalnum(byte) != 0 && byte < 0x80)
            escaped += character;
        else
            escaped += '\\' + hexOf(byte);
    }
    return escaped;
}

Session::Session(const std::string& fileName, const std::string& shown, const std::optional<Login>& login)
    : cfg(cfg_init()), path(fileName), shownName(shown)
{
    if (cfg == nullptr)
        throw Failure(CFG_NO_MEMORY, cfg_err2string(CFG_NO_MEMORY));
    reuseLocale();
    require(cfg_set_option(cfg.get(), CFG_OPT_CONFIG_FILE, path.c_str()));
    const char* const dn = login ? login->dn.c_str() : nullptr;
    const char* const password = login ? login->password.c_str() : nullptr;
    const int code = cfg_bind_s(cfg.get(), dn, password, static_cast<int>(LDAP_AUTH_SIMPLE));
    if (code == LDAP_INVALID_CREDENTIALS)
        throw Failure(code,
                      "the login as " + shownDn(login->dn) + " is refused: the DN and password must match " +
                          "zeb-slapdAdminDN and zeb-slapdAdminPW of cn=Configuration",
                      shownName);
    require(code);
}

void Session::require(int code) const
{
    if (code == LDAP_SUCCESS)
        return;
    CFG* const handle = cfg.get();
    Failure failure(code, explain(code), shownName);
    failure.extended = cfg_get_exterror(handle);
    failure.attribute = shownLine(textOf(cfg_get_attribute(handle)));
    failure.entry = textOf(cfg_get_entry(handle));
    failure.fileLine = cfg_get_file_line(handle);
    const std::string value = textOf(cfg_get_value(handle));
    failure.value = shownLine(shownValue(failure.attribute, value));
    failure.dump = replaced(textOf(cfg_dump_exception(handle)), path, shownName);
    failure.dump = shownText(replaced(failure.dump, value, failure.value));
    if (code == LDAP_NO_SUCH_OBJECT)
        failure.text += nearestNote(failure.entry, [this](const std::string& dn) { return exists(dn); });
    throw failure;
}

void Session::requireMade(int code) const
{
    const bool isRefused = code == LDAP_INSUFFICIENT_ACCESS && cfg_get_exterror(cfg.get()) == CFG_ERR_CONFIG_OPEN;
    if (!isDeferring || !isRefused)
        require(code);
}

std::string Session::explain(int code) const
{
    CFG* const handle = cfg.get();
    const std::string attribute = textOf(cfg_get_attribute(handle));
    const std::string value = textOf(cfg_get_value(handle));
    const std::string shown = shownLine(shownValue(attribute, value));
    const std::string range =
        std::to_string(cfg_get_minimum(handle)) + " to " + std::to_string(cfg_get_maximum(handle));
    const int known = cfg_get_exterror(handle);
    const int extended = known != 0 ? known : code;  // The option calls leave nothing in the handle.
    if (isTextFailure(extended))
        return "there are bytes that are not text in the locale's encoding, " + localeEncoding();
    if (isPassword(attribute) && extended == code && code > LDAP_OTHER && code < CFG_ERR_UNEXPECTED)
        return "the encoded password cannot be decoded; set a new one with zebcfg passwd";
    switch (extended) {
    case CFG_ERR_INT_RANGE:
        return shown + " is not in the range " + range;
    case CFG_ERR_INT_SYNTAX:
        return '"' + shown + "\" is not a whole number";
    case CFG_ERR_ENUM:
        return '"' + shown + "\" is not one of " + listOf(cfg_get_enum(handle));
    case CFG_ERR_LENGTH:
        return "the value is " + std::to_string(value.size()) + " bytes long, and " + range + " are allowed";
    case CFG_ERR_BITMASK:
        return shown + " has bits outside " + std::to_string(cfg_get_bitmask(handle));
    case CFG_ERR_NOT_IN_CLASS:
        return "is outside of all entries, where only charset and version are allowed";
    case CFG_ERR_SINGLE_VALUED:
        return "occurs a second time in the head, where one is allowed";
    default:
        break;
    }
    std::string text = cfg_err2string(extended);
    if (!text.empty() && text.back() == '.')
        text.pop_back();
    const std::string entry = shownDn(textOf(cfg_get_entry(handle)));
    const std::string& object = value.empty() || value.front() == '<' ? entry : shown;
    return object.empty() || object == "<root>" ? text : text + ": " + object;
}

SearchResult Session::records(const std::string& base, int scope, const std::string& filter,
                              const std::vector<std::string>& names) const
{
    std::vector<char*> wanted;
    wanted.reserve(names.size() + 1);
    for (const std::string& name : names)
        wanted.push_back(const_cast<char*>(name.c_str()));  // The library only reads it.
    wanted.push_back(nullptr);
    CFGMessage* result = nullptr;
    const int code = cfg_search_s(cfg.get(), base.c_str(), scope, filter.c_str(), wanted.data(), 0, &result);
    SearchResult owner(result);
    require(code);
    return owner;
}

std::vector<Entry> Session::search(const std::string& base, int scope, const std::string& filter,
                                   const std::vector<std::string>& names) const
{
    return entriesOf(records(base, scope, filter, names));
}

bool Session::exists(const std::string& dn) const
{
    std::string nothing = "1.1";  // a name that no attribute has: no password is decoded
    char* names[] = {nothing.data(), nullptr};
    CFGMessage* result = nullptr;
    const int code = cfg_search_s(cfg.get(), dn.c_str(), LDAP_SCOPE_BASE, "", names, 0, &result);
    cfg_msgfree(result);
    if (code != LDAP_NO_SUCH_OBJECT)
        require(code);
    return code == LDAP_SUCCESS;
}

bool Session::has(const std::string& dn, const std::string& attribute) const
{
    if (isPassword(attribute))
        return !search(dn, LDAP_SCOPE_BASE, attribute + "=*", {"1.1"}).empty();
    const auto found = values(dn, attribute);
    return std::any_of(found.begin(), found.end(), [](const std::string& value) { return !value.empty(); });
}

Failure Session::missingEntry(const std::string& dn) const
{
    return {LDAP_NO_SUCH_OBJECT, "there is no entry " + shownDn(dn) +
                                     nearestNote(dn, [this](const std::string& above) { return exists(above); })};
}

// The report of the failed search holds it.
std::optional<std::string> Session::spellingIfMissing(const std::string& dn) const
{
    return exists(dn) ? std::nullopt : std::optional<std::string>(textOf(cfg_get_entry(cfg.get())));
}

std::vector<std::string> Session::values(const std::string& dn, const std::string& attribute) const
{
    const auto found = search(dn, LDAP_SCOPE_BASE, attribute + "=*", {attribute});
    const bool isThere = !found.empty() && !found.front().attributes.empty();
    return isThere ? found.front().attributes.front().values : std::vector<std::string>();
}

// A filter cannot tell an empty value from any value.
bool Session::holds(const std::string& dn, const std::string& attribute, const std::string& value) const
{
    if (!value.empty())
        return !search(dn, LDAP_SCOPE_BASE, attribute + '=' + escapedForFilter(value), {attribute}).empty();
    const auto found = values(dn, attribute);
    return std::find(found.begin(), found.end(), value) != found.end();
}

std::vector<Entry> Session::entriesWith(const std::vector<std::string>& names, std::size_t count) const
{
    std::vector<Entry> entries = search("", LDAP_SCOPE_SUBTREE);
    std::set<std::string> seen;
    for (const Entry& entry : entries)
        seen.insert(entry.dn);
    for (auto name = names.begin(); name != names.end() && entries.size() < count; ++name) {
        for (Entry& entry : search("", LDAP_SCOPE_SUBTREE, *name + "=*")) {
            if (!entry.dn.empty() && seen.insert(entry.dn).second)
                entries.push_back(std::move(entry));
        }
    }
    const auto root = search("", LDAP_SCOPE_BASE, "charset=*");
    entries.insert(entries.end(), root.begin(), root.end());
    return entries;
}

void Session::add(const std::string& dn, const std::vector<Change>& attributes)
{
    requireMade(cfg_add_s(cfg.get(), dn.c_str(), Mods(attributes).data()));
}

void Session::modify(const std::string& dn, const std::vector<Change>& changes)
{
    requireMade(cfg_modify_s(cfg.get(), dn.c_str(), Mods(changes).data()));
}

void Session::erase(const std::string& dn, bool withChildren)
{
    require(cfg_set_option(cfg.get(), CFG_OPT_DELETE_NON_LEAVES, withChildren ? cfg.get() : nullptr));
    requireMade(cfg_delete_s(cfg.get(), dn.c_str()));
}

void Session::flush()
{
    require(cfg_flush_s(cfg.get()));
}

std::string defaultFileName()
{
    return textOf(getDefaultConfigFilename());
}

std::string Session::outline() const
{
    return textOf(cfg_tree_view(cfg.get(), 0));
}
