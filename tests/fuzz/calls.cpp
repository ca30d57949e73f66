// Calls of the C interface on one file: the text of the file up to a line "--", then a call each line, a letter with
// arguments that are separated by "|".
#include "fuzz.h"
#include "zebldapcfg.h"

#include <list>
#include <set>
#include <utime.h>

namespace {

using Parts = std::vector<std::string>;

// One record of an update: an operation, "+", "-", "=" or one that there is not, a name, and perhaps "=" and a value.
struct Mod {
    explicit Mod(const std::string& text)
        : type(text, std::min<std::size_t>(text.size(), 1), text.find('=', 1) - 1), value(text, text.find('=', 1) + 1)
    {
        values[0] = text.find('=', 1) != std::string::npos ? value.data() : nullptr;
        record = {static_cast<int>(std::string("+-=").find(text[0]) & 3U), type.data(), {values}};
    }
    Mod(const Mod&) = delete;

    std::string type;
    std::string value;
    char* values[2] = {nullptr, nullptr};
    LDAPMod record = {};
};

// A handle bound to a file.
class Session {
public:
    explicit Session(const std::string& text)
    {
        writeText(name, text);
        cfg_set_option(cfg, CFG_OPT_CONFIG_FILE, name.c_str());
        check(cfg_bind_s(cfg, nullptr, nullptr, LDAP_AUTH_SIMPLE));
    }
    Session(const Session&) = delete;
    ~Session() { cfg_unbind(cfg); }

    void call(const std::string& line)
    {
        Parts parts = split(line, '|');
        const std::string base(parts[0], std::min<std::size_t>(parts[0].size(), 1));
        const char* const second = parts.size() > 1 ? parts[1].c_str() : nullptr;
        switch (line[0]) {
        case 'a':
            return update(parts, [&](LDAPMod** mods) { return cfg_add_s(cfg, base.c_str(), mods); });
        case 'm':
            return update(parts, [&](LDAPMod** mods) { return cfg_modify_s(cfg, base.c_str(), mods); });
        case 'd':
            return update(parts, [&](LDAPMod** /*mods*/) { return cfg_delete_s(cfg, base.c_str()); });
        case 's':
            return search(base, parts);
        case 'b':
            return check(cfg_bind_s(cfg, base.c_str(), second, LDAP_AUTH_SIMPLE));
        case 'o':
            cfg_set_option(cfg, CFG_OPT_DELETE_NON_LEAVES, second);
            cfg_set_option(cfg, CFG_OPT_BACKUP_FILE, base.empty() ? nullptr : backup.c_str());
            return;
        case 'w':
            return rewrite(base);
        default:
            cfg_tree_view(cfg, line.empty() ? 0 : 1);
        }
    }

private:
    // Requires that a code is a documented one, and that the handle holds it with what belongs to it.
    void check(int code)
    {
        static const std::set<int> codes = {0, 16, 21, 32, 34, 49, 65, 66, 89, 91, 162, 202, 203};
        const char* const dump = cfg_dump_exception(cfg);
        const std::string report = std::to_string(code) + ' ' + (dump != nullptr ? dump : "");
        const bool isBare = code == 0 || code == 49 || (code == 89 && cfg_get_exterror(cfg) == 89);
        require(codes.count(code) == 1 && code == cfg_get_errno(cfg), "the code is a documented one", report);
        require((dump == nullptr) == isBare && cfg_get_exterror(cfg) != 1000, "a failure has its report", report);
    }

    // An update that fails leaves the file, unless that had changed; one that succeeds has written all there is.
    template <typename Call>
    void update(const Parts& parts, Call call)
    {
        std::list<Mod> mods(parts.begin() + 1, parts.end());
        std::vector<LDAPMod*> records;
        for (Mod& mod : mods)
            records.push_back(&mod.record);
        records.push_back(nullptr);
        const std::string before = readText(name);
        const int code = call(records.data());
        check(code);
        const std::string after = readText(name);
        require(code == 0 || isRewritten || after == before, "a failed update leaves the file", before);
        require(code != 0 || (cfg_flush_s(cfg) == 0 && readText(name) == after), "an update is written", after);
        isRewritten = isRewritten && code != 0;
    }

    void search(const std::string& base, Parts& parts)
    {
        CFGMessage* found = nullptr;
        std::vector<char*> names;
        parts.resize(std::max<std::size_t>(parts.size(), 2));
        for (std::size_t at = 2; at < parts.size(); ++at)
            names.push_back(parts[at].data());
        names.push_back(nullptr);
        check(cfg_search_s(cfg, base.c_str(), LDAP_SCOPE_SUBTREE, parts[1].c_str(), names.data(), 0, &found));
        for (CFGMessage* entry = cfg_first_entry(cfg, found); entry != nullptr; entry = cfg_next_entry(cfg, entry)) {
            BerElement* walk = nullptr;
            int left = cfg_count_attributes(cfg, entry);
            for (char* each = cfg_first_attribute(cfg, entry, &walk); each != nullptr; --left) {
                cfg_value_free(cfg_get_values(cfg, entry, each));
                require(cfg_get_errno(cfg) == 0, "an attribute of the walk is there", each);
                cfg_memfree(each);
                each = cfg_next_attribute(cfg, entry, walk);
            }
            cfg_ber_free(walk);
            require(left == 0, "the walk meets all attributes", base);
        }
        cfg_msgfree(found);
    }

    // As another program would; "\" stands for a line end.
    void rewrite(std::string text)
    {
        std::replace(text.begin(), text.end(), '\\', '\n');
        writeText(name, text);
        const utimbuf times = {++time, time};
        utime(name.c_str(), &times);
        isRewritten = true;
    }

    static const TempDirectory directory;
    const std::string name = directory / "f";
    const std::string backup = directory / "b";
    const int utf8 = setenv("LC_ALL", "C.UTF-8", 1);
    CFG* const cfg = cfg_init();
    time_t time = 1000;
    bool isRewritten = false;
};

const TempDirectory Session::directory;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string input = textOf(data, size);
    const std::size_t end = std::min(input.find("\n--\n"), input.size());
    Session session(input.substr(0, end));
    Parts calls = split(input.substr(std::min(end + 4, input.size())), '\n');
    constexpr std::size_t most = 20;
    calls.resize(std::min(calls.size(), most));
    for (const std::string& call : calls)
        session.call(call);
    return 0;
}
