// Measures the pieces of the library through the headers of their classes.
#include "generate.h"

#include "LDIF_AttrType.h"
#include "LDIF_Attribute.h"
#include "LDIF_DN.h"
#include "LDIF_EntryReader.h"
#include "LDIF_Line.h"
#include "LDIF_LineSource.h"
#include "LDIF_Loader.h"
#include "LDIF_Search.h"
#include "LDIF_Tree.h"
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
        LDIF_TextSource in(input().text);
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

// A tree of that many leaves below one parent, and their DNs.
struct Family {
    LDIF_Tree tree;
    std::vector<LDIF_DN> leaves;
};

Family loaded(const Request& request)
{
    const Input made = generateInput(request);
    TextBuffer text(made.text.size());
    std::copy(made.text.begin(), made.text.end(), text.data());
    Family family{LDIF_Tree(std::move(text), made.text.size()), {}};
    LDIF_Comment waiting;
    LDIF_Loader(family.tree, waiting).load();
    std::transform(made.leaves.begin(), made.leaves.end(), std::back_inserter(family.leaves), parsed);
    return family;
}

// Any of the leaves, each time another one.
void findEntry(benchmark::State& state)
{
    const auto size = static_cast<std::size_t>(state.range(0));
    static std::map<std::size_t, Family> families;  // made once, although the function runs several times
    if (families.count(size) == 0)
        families.emplace(size, loaded({Shape::flat, size}));
    Family& family = families.at(size);
    std::mt19937_64 engine;
    for (auto _ : state) {
        if (family.tree.find(family.leaves[engine() % size]) == LDIF_Tree::none)
            throw std::logic_error("a leaf that is not found");
    }
}
BENCHMARK(findEntry)->Arg(20)->Arg(5000)->Arg(100000);

// A whole text, as it is written.
void readEntries(benchmark::State& state)
{
    LDIF_EntryReader reader;
    const std::string_view text = input().text;
    const std::size_t start = text.find("\n\n") + 1;
    for (auto _ : state) {
        for (std::size_t at = start; at < text.size(); at += reader.length()) {
            if (reader.read(text.substr(at)) != LDIF_EntryReader::asWritten)
                throw std::logic_error("an entry that is not as it would be written");
        }
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(readEntries);

// One leaf against a filter that it does not match, or that the presence of an attribute matches.
void matchFilter(benchmark::State& state)
{
    static Family family = loaded({Shape::flat, 1});
    const LDIF_Entry leaf = family.tree.entry(family.tree.find(family.leaves.front()));
    const std::string filters[] = {"(zeb-slapdServerID=match)", "(zeb-slapdSizeLimit=99)",
                                   "(zeb-slapdMasterDN=cn=nobody, o=Example)", "(objectclass=*)"};
    const std::string& text = filters[state.range(0)];
    const LDIF_Filter filter(text);
    for (auto _ : state)
        benchmark::DoNotOptimize(filter.match(leaf));
    state.SetLabel(text);
}
BENCHMARK(matchFilter)->DenseRange(0, 3);

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
