// Calls of the C interface on one file: the text of the file up to a line "--", then a call each line, a letter with
// arguments that are separated by "|".
#include "client.h"
#include "fuzz.h"

#include <set>

namespace {

using Parts = std::vector<std::string>;

const TempDirectory directory;
const std::string name = directory / "f";
const std::string backupName = directory / "b";

// One record of an update: an operation, "+", "-", "=" or one that there is not, a name, and perhaps "=" and a value.
Mod modOf(const std::string& text)
{
    const auto equals = std::min(text.find('=', 1), text.size());
    const auto operation = static_cast<decltype(Mod::operation)>(std::string("+-=").find(text[0]) & 3U);
    const std::string type(text, std::min<std::size_t>(text.size(), 1), equals - 1);
    return {operation, type, equals == text.size() ? Parts() : Parts{text.substr(equals + 1)}};
}

// A handle bound to a file.
class Session : Client {
public:
    explicit Session(const std::string& text) : Client(name.c_str())
    {
        writeText(name, text);
        check(open());
    }

    void call(const std::string& line)
    {
        Parts parts = split(line, '|');
        const std::string base(parts[0], std::min<std::size_t>(parts[0].size(), 1));
        const char* const second = parts.size() > 1 ? parts[1].c_str() : nullptr;
        switch (line[0]) {
        case 'a':
            return change(parts, [&](const auto& mods) { return update(cfg_add_s, base.c_str(), mods); });
        case 'm':
            return change(parts, [&](const auto& mods) { return update(cfg_modify_s, base.c_str(), mods); });
        case 'd':
            return change(parts, [&](const auto& /*mods*/) { return cfg_delete_s(cfg, base.c_str()); });
        case 's':
            return searchAndWalk(base, parts);
        case 'b':
            return check(bind(base.c_str(), second));
        case 'o':
            cfg_set_option(cfg, CFG_OPT_DELETE_NON_LEAVES, second);
            cfg_set_option(cfg, CFG_OPT_BACKUP_FILE, base.empty() ? nullptr : backupName.c_str());
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
        require(codes.count(code) == 1, "the code is a documented one", report);
        require(code == cfg_get_errno(cfg), "the handle holds the code", report);
        require((dump == nullptr) == isBare, "a failure has its report", report);
        require(cfg_get_exterror(cfg) != 1000, "no failure comes from inside the library", report);
    }

    // An update that fails leaves the file, unless that had changed; one that succeeds has written all there is.
    template <typename Call>
    void change(const Parts& parts, Call call)
    {
        std::vector<Mod> mods;
        std::transform(parts.begin() + 1, parts.end(), std::back_inserter(mods), modOf);
        const std::string before = readText(name);
        const int code = call(mods);
        check(code);
        const std::string after = readText(name);
        require(code == 0 || isRewritten || after == before, "a failed update leaves the file", before);
        if (code != 0)
            return;
        require(cfg_flush_s(cfg) == 0, "what was updated can be written", after);
        require(readText(name) == after, "an update is written", after);
        isRewritten = false;
    }

    void searchAndWalk(const std::string& base, Parts& parts)
    {
        std::vector<char*> names;
        parts.resize(std::max<std::size_t>(parts.size(), 2));
        for (std::size_t at = 2; at < parts.size(); ++at)
            names.push_back(parts[at].data());
        names.push_back(nullptr);
        check(search(base.c_str(), LDAP_SCOPE_SUBTREE, parts[1].c_str(), names.data()));
        for (CFGMessage* entry = cfg_first_entry(cfg, found); entry != nullptr; entry = cfg_next_entry(cfg, entry)) {
            BerElement* state = nullptr;
            int left = cfg_count_attributes(cfg, entry);
            for (char* each = cfg_first_attribute(cfg, entry, &state); each != nullptr; --left) {
                cfg_value_free(cfg_get_values(cfg, entry, each));
                require(cfg_get_errno(cfg) == 0, "an attribute of the walk is there", each);
                cfg_memfree(each);
                each = cfg_next_attribute(cfg, entry, state);
            }
            cfg_ber_free(state);
            require(left == 0, "the walk meets all attributes", base);
        }
    }

    // As another program would; "\" stands for a line end.
    void rewrite(std::string text)
    {
        std::replace(text.begin(), text.end(), '\\', '\n');
        writeText(name, text);
        setTime(name, ++time);
        isRewritten = true;
    }

    time_t time = 1000;
    bool isRewritten = false;
};

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
