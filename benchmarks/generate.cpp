#include "generate.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <random>

namespace {

constexpr std::uint64_t seed = 389;
constexpr std::size_t markEvery = 100;  // leaves
constexpr std::size_t markFirst = 37;
constexpr std::size_t commentEvery = 5;  // entries

const char* const words[] = {"amber",  "basalt",  "cedar",  "delta",   "ember",  "fjord",  "granite", "harbor",
                             "island", "juniper", "kettle", "lantern", "meadow", "nickel", "orchard", "pebble",
                             "quarry", "river",   "saddle", "tide",    "umber",  "valley", "willow",  "zinc"};

// Makes the entries of one file. The distributions are its own: those of the standard library differ between makers.
class Generator {
public:
    Generator(const Request& what, const std::function<void(const GeneratedEntry&)>& taker)
        : request(what), containers(std::max<std::size_t>(what.containers, 1)), take(taker)
    {}

    void run()
    {
        switch (request.shape) {
        case Shape::containers:
            return putTree();
        case Shape::childrenFirst:
            putLeaves();
            for (std::size_t i = 0; i < containers; ++i)
                putContainer(i);
            return putSuffix();
        case Shape::oneAttribute:
            putSuffix();
            return putList();
        default:
            putSuffix();
            return putLeaves();
        }
    }

private:
    void putTree()
    {
        putSuffix();
        for (std::size_t i = 0; i < containers; ++i) {
            putContainer(i);
            for (; leafCount < request.size * (i + 1) / containers;)
                putLeaf(containerDn(i));
        }
    }

    void putLeaves()
    {
        while (leafCount < request.size)
            putLeaf(request.shape == Shape::flat ? suffixDn : containerDn(leafCount % containers));
    }

    void putSuffix()
    {
        put({suffixDn,
             {},
             {{"cn", "Configuration"},
              {revisionAttribute, std::string(revision) + '0'},
              {"objectclass", "zeb-slapdTop"}},
             false});
    }

    void putContainer(std::size_t number)
    {
        put({containerDn(number), {}, {{"cn", containerName(number)}, {"objectclass", "zeb-slapdContainer"}}, false});
    }

    void putLeaf(const std::string& parentDn)
    {
        const std::string name = someName(leafCount);
        const bool isMarked = leafCount++ % markEvery == markFirst;
        put({"cn=" + name + ", " + parentDn,
             {},
             {{"cn", name},
              {"description", twoWords(" beside the ")},
              {"objectclass", "zeb-slapdAgreement"},
              {"zeb-slapdMasterDN", "cn=" + someWord() + ", o=Example"},
              {"zeb-slapdReplicaSubtree", "ou=" + someWord() + ", o=Example"},
              {markedAttribute, isMarked ? mark : "server " + someWord()},
              {"zeb-slapdSizeLimit", std::to_string(10000 + below(90000))},
              {"zeb-slapdTimeLimit", std::to_string(below(3600))}},
             true});
    }

    void putList()
    {
        GeneratedEntry entry{std::string("cn=List, ") + suffixDn, {}, {{"cn", "List"}, {"objectclass", "list"}}, true};
        for (std::size_t i = 0; i < request.size; ++i)
            entry.attributes.emplace_back("zeb-slapdCachedAttribute", someName(i));
        put(std::move(entry));
    }

    void put(GeneratedEntry entry)
    {
        if (entryCount++ % commentEvery == 0)
            entry.comment = "# Agreed with " + twoWords(" and ") + '.';
        take(entry);
    }

    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(engine() % limit); }
    std::string someWord() { return words[below(std::size(words))]; }

    // Two statements, for the order in which the operands of one + are drawn is not fixed.
    std::string twoWords(const char* joint)
    {
        const std::string first = someWord() + joint;
        return first + someWord();
    }

    // Unlike any other, and in no order.
    std::string someName(std::size_t number)
    {
        char digits[32];
        (void)std::snprintf(digits, sizeof digits, " %06zx", number);
        return twoWords(" ") + digits;
    }

    static std::string containerName(std::size_t number) { return "Group " + std::to_string(number); }
    static std::string containerDn(std::size_t number) { return "cn=" + containerName(number) + ", " + suffixDn; }

    const Request request;
    const std::size_t containers;
    const std::function<void(const GeneratedEntry&)>& take;
    std::mt19937_64 engine{seed};
    std::size_t leafCount = 0;
    std::size_t entryCount = 0;
};

// Takes a value at the end of the entry, or in the middle of a list.
Exchange exchangeIn(const GeneratedEntry& entry, std::size_t fromEnd)
{
    const auto& [name, value] = entry.attributes[entry.attributes.size() - 1 - fromEnd];
    Exchange exchange{entry.dn, name, value, value};
    exchange.otherValue[0] = value[0] == '9' ? '1' : '9';
    return exchange;
}

void append(Input& input, const GeneratedEntry& entry)
{
    if (!entry.comment.empty())
        input.text.append(entry.comment).append("\n");
    input.text.append("dn: ").append(entry.dn).append("\n");
    for (const auto& [name, value] : entry.attributes)
        input.text.append(name).append(": ").append(value).append("\n");
    input.text += '\n';
    input.lines += 1 + entry.attributes.size();
}

}  // namespace

const char* nameOf(Shape shape)
{
    const char* const names[] = {"containers", "flat", "childrenFirst", "missingParents", "oneAttribute"};
    return names[static_cast<std::size_t>(shape)];
}

void generateEntries(const Request& request, const std::function<void(const GeneratedEntry&)>& take)
{
    Generator(request, take).run();
}

Input generateInput(const Request& request)
{
    Input input;
    input.request = request;
    input.text = "charset: UTF-8\nversion: 1\n\n";
    input.lines = 2;
    generateEntries(request, [&](const GeneratedEntry& entry) {
        append(input, entry);
        if (!entry.isLeaf)
            return;
        input.leaves.push_back(entry.dn);
        for (const auto& [name, value] : entry.attributes)
            input.marked += static_cast<std::size_t>(name == markedAttribute && value == mark);
        if (request.shape == Shape::oneAttribute)
            input.exchange = exchangeIn(entry, request.size / 2);
        else if (input.leaves.size() == request.size / 2 + 1)
            input.exchange = exchangeIn(entry, 0);
    });
    return input;
}
