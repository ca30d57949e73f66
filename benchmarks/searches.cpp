#include "case.h"
#include "handle.h"
#include "references.h"

#include <algorithm>
#include <cstdint>
#include <random>

namespace {

constexpr std::uint64_t drawSeed = 1823;
constexpr std::size_t lookUpsPerRound = 200;
constexpr std::size_t mostInLdb = 200000;  // filling its index takes time with the square of the size

std::vector<std::string> draw(const std::vector<std::string>& names, std::mt19937_64& engine)
{
    std::vector<std::string> drawn(lookUpsPerRound);
    for (std::string& name : drawn)
        name = names[static_cast<std::size_t>(engine() % names.size())];
    return drawn;
}

// The time for one of the names.
template <typename LookUp>
double timePerName(const std::vector<std::string>& names, LookUp lookUp)
{
    return cpuTimeOf([&] { std::for_each(names.begin(), names.end(), lookUp); }) / static_cast<double>(names.size());
}

void measureOwnSearches(Case& each, Handle& handle, const std::vector<std::string>& names)
{
    const auto lookUp = [&](const std::string& dn) { (void)handle.search(dn, LDAP_SCOPE_BASE, anyEntry); };
    each.figures.lookUp.add(timePerName(names, lookUp));
    each.figures.subtree.add(cpuTimeOf([&] { (void)handle.search(suffixDn, LDAP_SCOPE_SUBTREE, markedFilter); }));
}

void measureLdb(Case& each, Database& plain, Database& indexed, const std::vector<std::string>& names)
{
    const auto search = [](Database& database, const std::string& base, int scope, const char* filter,
                           std::size_t count) {
        require(database.search(base, scope, filter) == count, "the number of entries that ldb finds");
    };
    const auto lookUp = [&](const std::string& dn) { search(plain, dn, LDAP_SCOPE_BASE, anyEntry, 1); };
    const auto timeIn = [&](Database& database) {
        return cpuTimeOf([&] { search(database, suffixDn, LDAP_SCOPE_SUBTREE, markedFilter, each.input.marked); });
    };
    each.figures.ldbLookUp.add(timePerName(names, lookUp));
    each.figures.ldbSubtree.add(timeIn(plain));
    each.figures.ldbIndexed.add(timeIn(indexed));
}

}  // namespace

void measureSearches(Case& each, const Effort& effort)
{
    const Shape shape = each.figures.shape;
    const bool hasReference = (shape == Shape::containers || shape == Shape::flat) && each.figures.size <= mostInLdb;
    const auto make = [&](const char* name, const char* indexed) {
        return hasReference ? makeLdb(each.directory / name, each.input.request, indexed) : nullptr;
    };
    const auto plain = make("plain", nullptr);
    const auto indexed = make("indexed", markedAttribute);
    Handle handle(each.file);
    handle.bind();
    const Result marked = handle.search(suffixDn, LDAP_SCOPE_SUBTREE, markedFilter);
    require(handle.count(marked) == static_cast<int>(each.input.marked), "the number of marked entries");
    std::mt19937_64 engine(drawSeed);
    repeat(effort, [&] {
        const auto names = draw(each.input.leaves, engine);
        measureOwnSearches(each, handle, names);
        if (plain != nullptr)
            measureLdb(each, *plain, *indexed, names);
    });
}
