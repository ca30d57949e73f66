#include "generate.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <iterator>
#include <random>
#include <utility>

namespace {

constexpr std::uint64_t seed = 389;
constexpr std::uint64_t spellingSeed = 1213;
constexpr std::size_t markEvery = 100;  // leaves
constexpr std::size_t markFirst = 37;
constexpr std::size_t commentEvery = 5;  // entries

const char* const words[] = {"amber",  "basalt",  "cedar",  "delta",   "ember",  "fjord",  "granite", "harbor",
                             "island", "juniper", "kettle", "lantern", "meadow", "nickel", "orchard", "pebble",
                             "quarry", "river",   "saddle", "tide",    "umber",  "valley", "willow",  "zinc"};

const char* const wordsBeyondAscii[] = {"Zürich",  "Müller", "Åse",    "Genève", "Łódź",    "Málaga",
                                        "Øresund", "Žižkov", "Köln",   "Brontë", "Curaçao", "Þór",
                                        "Σοφία",   "Αθήνα",  "Ελπίδα", "Нева",   "東京",    "設定",
                                        "日本",    "서울",   "naïve",  "Gdańsk", "Tromsø",  "Đakovo"};
static_assert(std::size(words) == std::size(wordsBeyondAscii));

constexpr char masterAttribute[] = "zeb-slapdMasterDN";
constexpr char subtreeAttribute[] = "zeb-slapdReplicaSubtree";

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
        case Shape::rearranged:
        case Shape::beyondAscii:
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
              {masterAttribute, "cn=" + someWord() + ", o=Example"},
              {subtreeAttribute, "ou=" + someWord() + ", o=Example"},
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
    std::string someWord()
    {
        return (request.shape == Shape::beyondAscii ? wordsBeyondAscii : words)[below(std::size(words))];
    }

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

void append(std::string& text, const GeneratedEntry& entry)
{
    text.append("dn: ").append(entry.dn).append("\n");
    for (const auto& [name, value] : entry.attributes)
        text.append(name).append(": ").append(value).append("\n");
    text += '\n';
}

// Spells entries as the library never does. The draws are its own, so that the entries stay those of containers.
class Rearranger {
public:
    void append(std::string& text, GeneratedEntry entry)
    {
        for (std::size_t i = entry.attributes.size(); i > 1; --i)
            std::swap(entry.attributes[i - 1], entry.attributes[static_cast<std::size_t>(engine() % i)]);
        appendLine(text, "dn", spelledDn(entry.dn));
        for (const auto& [name, value] : entry.attributes)
            appendLine(text, name, name == masterAttribute || name == subtreeAttribute ? spelledDn(value) : value);
        text += '\n';
    }

private:
    void appendLine(std::string& text, const std::string& name, const std::string& value)
    {
        text.append(name).append(oneOf({":", ":  ", ":\t", ": "})).append(value).append(oneOf({"", "", " "})) += '\n';
    }

    // Of a DN without escapes.
    std::string spelledDn(const std::string& dn)
    {
        std::string spelled;
        for (std::size_t pos = 0; pos < dn.size(); ++pos) {
            const bool isJoint = dn.compare(pos, 2, ", ") == 0;
            if (isJoint)
                spelled += oneOf({",", ";", " , ", " ; "});
            else if (dn[pos] == '=')
                spelled += oneOf({"=", " = ", "= "});
            else
                spelled += dn[pos];
            pos += isJoint ? 1 : 0;
        }
        return spelled;
    }

    const char* oneOf(std::initializer_list<const char*> texts) { return texts.begin()[engine() % texts.size()]; }

    std::mt19937_64 engine{spellingSeed};
};

}  // namespace

const char* nameOf(Shape shape)
{
    const char* const names[] = {"containers",  "flat",          "missingParents", "rearranged",
                                 "beyondAscii", "childrenFirst", "oneAttribute"};
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
    Rearranger rearranger;
    generateEntries(request, [&](const GeneratedEntry& entry) {
        if (!entry.comment.empty())
            input.text.append(entry.comment).append("\n");
        if (request.shape == Shape::rearranged)
            rearranger.append(input.text, entry);
        else
            append(input.text, entry);
        input.lines += 1 + entry.attributes.size();
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
