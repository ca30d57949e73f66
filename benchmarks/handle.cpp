#include "handle.h"

#include "measure.h"

namespace {

// The array of records that an update takes; borrows the texts of the changes.
class Records {
public:
    explicit Records(const std::vector<Change>& changes) : values(2 * changes.size()), records(changes.size())
    {
        for (std::size_t i = 0; i < changes.size(); ++i) {
            values[2 * i] = const_cast<char*>(changes[i].value.c_str());
            records[i].mod_op = changes[i].operation;
            records[i].mod_type = const_cast<char*>(changes[i].attribute.c_str());
            records[i].mod_values = &values[2 * i];
            array.push_back(&records[i]);
        }
        array.push_back(nullptr);
    }
    LDAPMod** get() noexcept { return array.data(); }

private:
    std::vector<char*> values;  // of each record the value and a null
    std::vector<LDAPMod> records;
    std::vector<LDAPMod*> array;
};

}  // namespace

Handle::Handle(const std::string& file) : cfg(cfg_init())
{
    require(cfg != nullptr, "cfg_init");
    check(cfg_set_option(cfg, CFG_OPT_CONFIG_FILE, file.c_str()), "cfg_set_option");
}

void Handle::check(int code, const char* call)
{
    if (code != LDAP_SUCCESS)
        fail(std::string(call) + ": " + cfg_err2string(cfg_get_exterror(cfg)));
}

void Handle::bind()
{
    check(cfg_bind_s(cfg, nullptr, nullptr, static_cast<int>(LDAP_AUTH_SIMPLE)), "cfg_bind_s");
}

Result Handle::search(const std::string& base, int scope, const char* filter, const char* attribute)
{
    char* wanted[] = {const_cast<char*>(attribute), nullptr};
    CFGMessage* found = nullptr;
    const int code = cfg_search_s(cfg, base.c_str(), scope, filter, wanted, 0, &found);
    Result result(found);
    check(code, "cfg_search_s");
    require(result != nullptr, "a search that finds something");
    return result;
}

void Handle::modify(const std::string& dn, const std::vector<Change>& changes)
{
    check(cfg_modify_s(cfg, dn.c_str(), Records(changes).get()), "cfg_modify_s");
}

void Handle::add(const std::string& dn, const std::vector<Change>& attributes)
{
    check(cfg_add_s(cfg, dn.c_str(), Records(attributes).get()), "cfg_add_s");
}

void Handle::erase(const std::string& dn)
{
    check(cfg_delete_s(cfg, dn.c_str()), "cfg_delete_s");
}

void Handle::flush()
{
    check(cfg_flush_s(cfg), "cfg_flush_s");
}

void Handle::release() noexcept
{
    if (cfg != nullptr)
        (void)cfg_unbind(cfg);
    cfg = nullptr;
}
