// Measures the pieces of the library through the headers of their classes.
#include "generate.h"

#include "LDIF_AttrType.h"
#include "LDIF_Attribute.h"
#include "LDIF_DN.h"
#include "LDIF_Entry.h"
#include "LDIF_Line.h"
#include "LDIF_LineSource.h"
#include "LDIF_Loader.h"
#include "LDIF_Search.h"
#include "LDIF_Value.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <map>
#include <random>
#include <stdexcept>
#include <string>

namespace {

constexpr std::size_t leaves = 3000;  // of the file whose lines and tree are used

const Input& input()
{
    static const Input made = generateInput({Shape::containers, leaves});
    return made;
}

LDIF_DN parsed(const std::string& text)
{
    return LDIF_DN(cisString(text));
}

// --- Lines ------------------------------------------------------------------------------------------------------

void readLines(benchmark::State& state)
{
    for (auto _ : state) {
        LDIF_TextSource in{std::string(input().text)};
        LDIF_Line line;
        int last = 0;
        do
            last = line.next(in, last);
        while (line.type != LDIF_Line::endOfFile);
        benchmark::DoNotOptimize(last);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(input().text.size()));
}
BENCHMARK(readLines);

// --- DNs --------------------------------------------------------------------------------------------------------

const std::string& someDn()
{
    return input().leaves[leaves / 2];
}

void parseDn(benchmark::State& state)
{
    const cisString text(someDn());
    for (auto _ : state)
        benchmark::DoNotOptimize(LDIF_DN(text));
}
BENCHMARK(parseDn);

void printDn(benchmark::State& state)
{
    const LDIF_DN dn = parsed(someDn());
    for (auto _ : state)
        benchmark::DoNotOptimize(dn.str());
}
BENCHMARK(printDn);

// Siblings: they differ in the last RDN only.
void compareDns(benchmark::State& state)
{
    const LDIF_DN left = parsed(someDn());
    const LDIF_DN right = parsed(input().leaves[leaves / 2 + 1]);
    for (auto _ : state)
        benchmark::DoNotOptimize(left.compare(right));
}
BENCHMARK(compareDns);

// --- Values and attributes --------------------------------------------------------------------------------------

// An attribute of each syntax, and a value of it.
const struct {
    const char* syntax;
    const char* attribute;
    const char* text;
} values[] = {
    {"unknown", "description", "harbor beside the granite"},
    {"ces", "zeb-slapdServerID", "server harbor and granite"},
    {"cis", "cn", "harbor beside the granite"},
    {"dc", "zeb-slapdKrbRealm", "EXAMPLE.COM"},
    {"dn", "zeb-slapdMasterDN", "cn=harbor, ou=Granite, o=Example"},
    {"enumerated", "zeb-slapdSecurity", "SSLTLS"},
    {"env", "zeb-slapdSetenv", "HARBOR=granite"},
    {"file", "zeb-slapdIncludeSchema", "/etc/zebslapd/schema/system.at"},
    {"integer", "zeb-slapdSizeLimit", "12345"},
    {"krbdn", "zeb-slapdKrbAdminDN", "cn=admin@EXAMPLE.COM"},
    {"mask", "zeb-slapdSslCipherSpecs", "12288"},
    {"oid", "zeb-slapdSupportedACIMechanisms", "1.3.77.0.2.26.1"},
    {"path", "zeb-slapdErrorLog", "/var/log/zebslapd/error.log"},
    {"plugin", "zeb-slapdPlugin", "database /usr/lib/zebslapd/libback.so backInit"},
    {"pw", "zeb-slapdMasterPW", "granite"},
    {"url", "zeb-slapdReferral", "ldap://ldap.example.com:389"},
};

void makeValue(benchmark::State& state)
{
    const auto& row = values[state.range(0)];
    const _AttrType* const type = getAttrType(row.attribute);
    for (auto _ : state)
        benchmark::DoNotOptimize(LDIF_Value(type, row.text));
    state.SetLabel(row.syntax);
}
BENCHMARK(makeValue)->DenseRange(0, std::size(values) - 1);

// The attributes of a leaf, made and put into their places: as they stand in the file, or in any order.
void insertAttributes(benchmark::State& state)
{
    const bool isSorted = state.range(0) != 0;
    std::vector<std::pair<std::string, std::string>> attributes;
    generateEntries({Shape::flat, 1}, [&](const GeneratedEntry& entry) { attributes = entry.attributes; });
    if (!isSorted)
        std::shuffle(attributes.begin(), attributes.end(), std::mt19937_64());
    for (auto _ : state) {
        LDIF_Attributes placed;
        for (const auto& [name, value] : attributes)
            placed += LDIF_Attribute(name, value);
        benchmark::DoNotOptimize(placed);
    }
    state.SetLabel(isSorted ? "sorted" : "unsorted");
}
BENCHMARK(insertAttributes)->Arg(1)->Arg(0);

// --- Entries ----------------------------------------------------------------------------------------------------

// An entry with that many children, and the DNs of these.
struct Family {
    LDIF_Entry parent{parsed(suffixDn)};
    std::vector<LDIF_DN> children;
};

Family makeFamily(std::size_t size)
{
    Family family;
    generateEntries({Shape::flat, size}, [&](const GeneratedEntry& entry) {
        if (!entry.isLeaf)
            return;
        family.children.push_back(parsed(entry.dn));
        family.parent.place(LDIF_Entry(family.children.back()));
    });
    return family;
}

// Any of the children, each time another one.
void findEntry(benchmark::State& state)
{
    const auto size = static_cast<std::size_t>(state.range(0));
    static std::map<std::size_t, Family> families;  // made once, although the function runs several times
    if (families.count(size) == 0)
        families.emplace(size, makeFamily(size));
    Family& family = families.at(size);
    std::mt19937_64 engine;
    for (auto _ : state) {
        if (family.parent.find(family.children[engine() % size]) == nullptr)
            throw std::logic_error("a child that is not found");
    }
}
BENCHMARK(findEntry)->Arg(20)->Arg(5000)->Arg(100000);

const LDIF_Entry& tree()
{
    static const LDIF_Entry loaded = [] {
        LDIF_Entry root;
        LDIF_Comment waiting;
        LDIF_Loader(root, waiting).load(std::string(input().text));
        return root;
    }();
    return loaded;
}

// One leaf against a filter that it does not match, or that the presence of an attribute matches.
void matchFilter(benchmark::State& state)
{
    const LDIF_Entry& leaf = tree().children.front().children.front().children.front();
    const std::string filters[] = {"(zeb-slapdServerID=match)", "(zeb-slapdSizeLimit=99)",
                                   "(zeb-slapdMasterDN=cn=nobody, o=Example)", "(objectclass=*)"};
    const std::string& text = filters[state.range(0)];
    const LDIF_Filter filter(text);
    for (auto _ : state)
        benchmark::DoNotOptimize(filter.match(leaf));
    state.SetLabel(text);
}
BENCHMARK(matchFilter)->DenseRange(0, 3);

void renderTree(benchmark::State& state)
{
    for (auto _ : state) {
        std::string text;
        tree().appendTreeTo(text);
        benchmark::DoNotOptimize(text);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(input().text.size()));
}
BENCHMARK(renderTree);

}  // namespace

int main(int argc, char** argv)
{
    (void)setenv("LC_ALL", "C.UTF-8", 0);
    (void)std::setlocale(LC_ALL, "");
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
