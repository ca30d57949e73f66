#include "library/Comparison.h"

#include "library/Session.h"

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace {

// The entries of a subtree that are looked at in one search. A record of the library takes several times its text.
constexpr std::size_t mostAtOnce = 8192;

// Records with all below them. An entry has attributes, and those have values: the calls are three deep.
bool isSame(const CFGMessage* left, const CFGMessage* right)
{
    for (; left != nullptr && right != nullptr; left = left->next, right = right->next) {
        const bool hasText = left->text != nullptr;
        if (hasText != (right->text != nullptr) || (hasText && std::strcmp(left->text, right->text) != 0) ||
            !isSame(left->child, right->child))
            return false;
    }
    return left == right;
}

// Whether the DN ends with the other one, as that of an entry below it does.
bool looksBelow(std::string_view dn, std::string_view above)
{
    return dn.size() > above.size() + 2 && dn.substr(dn.size() - above.size()) == above &&
           dn.substr(dn.size() - above.size() - 2, 2) == ", ";
}

// For each entry the number of entries of its subtree, itself included, by the order and the text of the DNs.
std::vector<std::size_t> sizesOf(const std::vector<std::string_view>& dns)
{
    std::vector<std::size_t> sizes(dns.size(), 1);
    std::vector<std::size_t> above;
    const auto leave = [&] {
        const std::size_t left = above.back();
        above.pop_back();
        if (!above.empty())
            sizes[above.back()] += sizes[left];
    };
    for (std::size_t i = 0; i < dns.size(); ++i) {
        while (!above.empty() && !looksBelow(dns[i], dns[above.back()]))
            leave();
        above.push_back(i);
    }
    while (!above.empty())
        leave();
    return sizes;
}

class Comparison {
public:
    Comparison(const Session& one, const Session& other) : left(one), right(other) {}

    std::optional<std::size_t> count() const
    {
        const SearchResult names = left.records("", LDAP_SCOPE_SUBTREE, "", {"1.1"});
        if (!isSame(names.get(), right.records("", LDAP_SCOPE_SUBTREE, "", {"1.1"}).get()) || !isSameRoot())
            return std::nullopt;
        std::vector<std::string_view> dns;
        for (const CFGMessage* entry = names.get(); entry != nullptr; entry = entry->next)
            dns.emplace_back(entry->text);
        const auto sizes = sizesOf(dns);
        std::size_t done = 0;
        for (std::size_t i = 0; i < dns.size();) {
            const bool isPart = sizes[i] <= mostAtOnce;
            const auto same = countIn(std::string(dns[i]), isPart ? LDAP_SCOPE_SUBTREE : LDAP_SCOPE_BASE);
            if (!same)
                return std::nullopt;
            done += *same;
            i += isPart ? sizes[i] : 1;
        }
        return done == dns.size() ? std::optional(done) : std::nullopt;  // DNs may look like what they are not.
    }

private:
    bool isSameRoot() const
    {
        return isSame(left.records("", LDAP_SCOPE_BASE, "charset=*").get(),
                      right.records("", LDAP_SCOPE_BASE, "charset=*").get());
    }

    std::optional<std::size_t> countIn(const std::string& base, int scope) const
    {
        const SearchResult one = left.records(base, scope);
        if (!isSame(one.get(), right.records(base, scope).get()))
            return std::nullopt;
        std::size_t count = 0;
        for (const CFGMessage* entry = one.get(); entry != nullptr; entry = entry->next)
            ++count;
        return count;
    }

    const Session& left;
    const Session& right;
};

}  // namespace

std::optional<std::size_t> countSameEntries(const Session& left, const Session& right)
{
    return Comparison(left, right).count();
}
