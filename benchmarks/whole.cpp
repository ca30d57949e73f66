// Measures the library as its callers see it, through the shared library, beside what else handles the same bytes.
#include "generate.h"
#include "handle.h"
#include "measure.h"
#include "references.h"
#include "report.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char usage[] = R"(usage: benchmark_whole [OPTION]...

  --sizes N,...      numbers of leaves (300,3000,30000,100000)
  --shapes NAME,...  of containers, flat, childrenFirst, missingParents, oneAttribute (all)
  --containers N     how many containers the leaves are spread over (20)
  --quick            few repetitions, and the sizes 300 and 3000

The files lie in TMPDIR. The locale is C.UTF-8 unless LC_ALL says otherwise.
)";

constexpr char childOption[] = "--child";
constexpr std::uint64_t drawSeed = 1823;
constexpr std::size_t lookUpsPerRound = 200;
constexpr char newDn[] = "cn=Newcomer, cn=Configuration";

struct Options {
    std::vector<std::size_t> sizes{300, 3000, 30000, 100000};
    std::vector<Shape> shapes{std::begin(allShapes), std::end(allShapes)};
    std::size_t containers = 20;
    Effort effort;
};

// One generated file and what is found with it.
struct Case {
    Input input;
    std::string file;
    Figures figures;
    int revisionDigit = 0;  // the one in the file
};

// --- Load, reload and release -----------------------------------------------------------------------------------

time_t modificationTime(const std::string& file)
{
    struct stat status = {};
    require(stat(file.c_str(), &status) == 0, "stat");
    return status.st_mtime;
}

// In seconds, as the library tells a change.
void setModificationTime(const std::string& file, time_t time)
{
    const std::array<timespec, 2> times{{{0, UTIME_OMIT}, {time, 0}}};
    require(utimensat(AT_FDCWD, file.c_str(), times.data(), 0) == 0, "utimensat");
}

// Changes one byte of the file in place, as another process would.
void changeOutside(Case& each)
{
    const time_t before = modificationTime(each.file);
    each.revisionDigit = (each.revisionDigit + 1) % 10;
    std::fstream file(each.file, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(static_cast<std::streamoff>(each.input.text.find(revision) + std::strlen(revision)));
    require(static_cast<bool>(file << each.revisionDigit << std::flush), "a change of the file");
    file.close();
    setModificationTime(each.file, before + 1);
}

// The base search that meets the change.
Result searchRevision(Handle& handle)
{
    return handle.search(suffixDn, LDAP_SCOPE_BASE, anyEntry, revisionAttribute);
}

// The handle that is released has been reloaded, which leaves the same tree.
void loadOnce(Case& each)
{
    Figures& samples = each.figures;
    Handle handle(each.file);
    samples.load.add(cpuTimeOf([&] { handle.bind(); }));

    changeOutside(each);
    Result result;
    samples.reload.add(cpuTimeOf([&] { result = searchRevision(handle); }));
    const std::string found = result->child->child->text;
    require(found == revision + std::to_string(each.revisionDigit), "a reload that takes in the change");

    samples.release.add(cpuTimeOf([&] { handle.release(); }));

    std::size_t lines = 0;
    samples.reader.add(cpuTimeOf([&] { lines = countLdifLines(each.file); }));
    require(lines == each.input.lines, "the number of lines that libldap reads");

    std::string buffer(each.input.text.size(), '\0');
    samples.read.add(cpuTimeOf([&] { readBytes(each.file, buffer); }));
}

// All shapes in one loop, for their loads are compared with each other.
void measureLoads(std::vector<Case>& cases, const Effort& effort)
{
    repeat(effort, [&] { std::for_each(cases.begin(), cases.end(), loadOnce); });
    const auto first = std::find_if(cases.begin(), cases.end(),
                                    [](const Case& each) { return each.figures.shape == Shape::containers; });
    if (first == cases.end())
        return;
    for (Case& each : cases)
        each.figures.firstLoad = first->figures.load.median();
}

// --- Memory -----------------------------------------------------------------------------------------------------

// What a child process does before it reports its peak: nothing, a load, or a load and a reload.
void runChild(const std::string& work, const std::string& file)
{
    Handle handle(file);
    if (work != "nothing")
        handle.bind();
    if (work == "reload") {
        setModificationTime(file, modificationTime(file) + 1);
        (void)searchRevision(handle);
    }
    std::printf("%.0f\n", peakMemory());
}

void measureMemory(Case& each)
{
    const auto peakOf = [&](const char* work) { return resultOfChild({childOption, work, each.file}); };
    const double nothing = peakOf("nothing");
    each.figures.peak = peakOf("load") - nothing;
    each.figures.reloadPeak = peakOf("reload") - nothing;
}

// --- Searches ---------------------------------------------------------------------------------------------------

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

void measureSearches(Case& each, const TempDirectory& directory, const Effort& effort)
{
    const bool hasReference = each.figures.shape == Shape::containers || each.figures.shape == Shape::flat;
    const auto make = [&](const char* name, const char* indexed) {
        return hasReference ? makeLdb(directory / name + nameOf(each.figures.shape), each.input.request, indexed)
                            : nullptr;
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

// --- Updates ----------------------------------------------------------------------------------------------------

// What the library has written is what the next one to load it sees.
void requireWritten(const std::string& file, const Exchange& last)
{
    Handle handle(file);
    handle.bind();
    const std::string filter = '(' + last.attribute + '=' + last.value + ')';
    (void)handle.search(last.dn, LDAP_SCOPE_BASE, filter.c_str());
}

// One value gives way to another of the same length, so that the size of the file stays.
void modify(Handle& handle, Exchange& exchange)
{
    std::swap(exchange.value, exchange.otherValue);
    handle.modify(exchange.dn, {{LDAP_MOD_DELETE, exchange.attribute, exchange.otherValue},
                                {LDAP_MOD_ADD, exchange.attribute, exchange.value}});
}

void measureUpdates(Case& each, const TempDirectory& directory, const Effort& effort)
{
    const std::string file = directory / "updated.conf";
    writeBytes(file, each.input.text);
    Handle handle(file);
    handle.bind();
    handle.flush();
    const std::string text = readText(file);
    require(text == each.input.text || each.figures.shape == Shape::childrenFirst, "a flush that changes nothing");

    const std::vector<Change> newcomer{{0, "objectclass", "zeb-slapdAgreement"}, {0, "cn", "Newcomer"}};
    Exchange exchange = each.input.exchange;
    Figures& samples = each.figures;
    repeat(effort, [&] {
        samples.write.add(cpuTimeOf([&] { writeBytes(directory / "bytes", text); }));
        samples.flush.add(cpuTimeOf([&] { handle.flush(); }));
        samples.modify.add(cpuTimeOf([&] { modify(handle, exchange); }));
        samples.add.add(cpuTimeOf([&] { handle.add(newDn, newcomer); }));
        samples.erase.add(cpuTimeOf([&] { handle.erase(newDn); }));
    });
    requireWritten(file, exchange);
    require(readText(file).size() == text.size(), "the size of the file after the updates");
}

// --- The whole --------------------------------------------------------------------------------------------------

Case makeCase(const Request& request, const TempDirectory& directory)
{
    Case each;
    each.input = generateInput(request);
    each.file = directory / (std::string(nameOf(request.shape)) + ".conf");
    each.figures.shape = request.shape;
    each.figures.size = request.size;
    each.figures.bytes = static_cast<double>(each.input.text.size());
    writeBytes(each.file, each.input.text);
    return each;
}

std::vector<Figures> measureSize(std::size_t size, const Options& options)
{
    const TempDirectory directory;
    std::vector<Case> cases;
    for (const Shape shape : options.shapes)
        cases.push_back(makeCase({shape, size, options.containers}, directory));
    measureLoads(cases, options.effort);
    std::vector<Figures> rows;
    for (Case& each : cases) {
        measureMemory(each);
        if (each.figures.shape != Shape::oneAttribute)
            measureSearches(each, directory, options.effort);
        measureUpdates(each, directory, options.effort);
        rows.push_back(each.figures);
    }
    return rows;
}

void printMachine()
{
    std::istringstream info(readText("/proc/cpuinfo"));
    std::string line;
    while (std::getline(info, line) && line.compare(0, 10, "model name") != 0)
        continue;
    std::printf("%s, %ld cores; g++ %s; libldap %d; ldb %s; locale %s\n",
                line.substr(std::min(line.find(": ") + 2, line.size())).c_str(), sysconf(_SC_NPROCESSORS_ONLN),
                __VERSION__, LDAP_VENDOR_VERSION, ldbVersion().c_str(), std::setlocale(LC_ALL, nullptr));
    std::printf("CPU time, medians; N is the number of leaves, or of the values of the one attribute\n");
}

// --- Options ----------------------------------------------------------------------------------------------------

std::vector<std::string> partsOf(const std::string& list)
{
    std::vector<std::string> parts;
    std::istringstream stream(list);
    for (std::string part; std::getline(stream, part, ',');)
        parts.push_back(part);
    return parts;
}

Shape shapeOf(const std::string& name)
{
    const auto* const found =
        std::find_if(std::begin(allShapes), std::end(allShapes), [&](Shape shape) { return name == nameOf(shape); });
    if (found == std::end(allShapes))
        fail("the shape " + name);
    return *found;
}

Options parse(const std::vector<std::string>& arguments)
{
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& option = arguments[i];
        if (option == "--quick") {
            options.effort = {3, 0.2};
            options.sizes = {300, 3000};
            continue;
        }
        if (i + 1 == arguments.size())
            fail(option + '\n' + usage);
        const std::vector<std::string> parts = partsOf(arguments[++i]);
        if (option == "--sizes") {
            options.sizes.clear();
            for (const std::string& part : parts)
                options.sizes.push_back(std::max(std::stoul(part), 1UL));
        } else if (option == "--shapes") {
            options.shapes.clear();
            std::transform(parts.begin(), parts.end(), std::back_inserter(options.shapes), shapeOf);
        } else if (option == "--containers") {
            options.containers = std::stoul(parts.at(0));
        } else {
            fail(option + '\n' + usage);
        }
    }
    return options;
}

void run(const Options& options)
{
    printMachine();
    std::vector<Figures> all;
    for (const std::size_t size : options.sizes) {
        const std::vector<Figures> rows = measureSize(size, options);
        printTables(rows);
        all.insert(all.end(), rows.begin(), rows.end());
    }
    printGrowth(all);
    printTargets(all);
}

}  // namespace

int main(int argc, char** argv)
try {
    (void)setenv("LC_ALL", "C.UTF-8", 0);
    (void)std::setlocale(LC_ALL, "");
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() == 3 && arguments[0] == childOption)
        runChild(arguments[1], arguments[2]);
    else if (arguments.size() == 1 && arguments[0] == "--help")
        (void)std::fputs(usage, stdout);
    else
        run(parse(arguments));
    return 0;
} catch (const std::exception& failure) {
    (void)std::fprintf(stderr, "benchmark_whole: %s\n", failure.what());
    return 1;
}
