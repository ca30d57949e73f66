// Measures the library as its callers see it, through the shared library, beside what else handles the same bytes.
#include "case.h"
#include "firstLoad.h"
#include "hardFiles.h"
#include "program.h"
#include "references.h"
#include "report.h"
#include "targets.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <ldap.h>
#include <unistd.h>

namespace {

constexpr char usage[] = R"(usage: benchmark_whole [OPTION]...

  --sizes N,...      numbers of leaves (300,3000,30000,100000)
  --shapes NAME,...  of containers, flat, missingParents, rearranged, beyondAscii, childrenFirst, oneAttribute (all)
  --containers N     how many containers the leaves are spread over (20)
  --quick            few repetitions, and the sizes 300 and 3000

The files lie in TMPDIR. The locale is C.UTF-8 unless LC_ALL says otherwise; beyondAscii needs one in UTF-8.
)";

struct Options {
    std::vector<std::size_t> sizes{300, 3000, 30000, 100000};
    std::vector<Shape> shapes{std::begin(allShapes), std::end(allShapes)};
    std::size_t containers = 20;
    Effort effort;
    Effort hardEffort{1, 0.5};
};

std::vector<Figures> measureSize(std::size_t size, const Options& options)
{
    std::vector<Figures> rows;
    for (const Shape shape : options.shapes) {
        Case each({shape, size, options.containers});
        measureLoads(each, options.effort);
        if (shape != Shape::oneAttribute)
            measureSearches(each, options.effort);
        measureUpdates(each, options.effort);
        rows.push_back(std::move(each.figures));
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
    std::printf(
        "CPU time, medians; N is the number of leaves, or of the values of the one attribute. First loads and\n"
        "lexers, reloads and releases are measured in fresh processes, warm ones in one that has done it before.\n");
}

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

Options parse(const Words& arguments)
{
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& option = arguments[i];
        if (option == "--quick") {
            options.effort = {3, 0.2};
            options.hardEffort = {1, 0.1};
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

void run(const Words& arguments)
{
    const Options options = parse(arguments);
    printMachine();
    std::vector<Figures> all;
    for (const std::size_t size : options.sizes) {
        const std::vector<Figures> rows = measureSize(size, options);
        printTables(rows);
        all.insert(all.end(), rows.begin(), rows.end());
    }
    printGrowth(all);
    const std::vector<HardFile> hardFiles = measureHardFiles(options.hardEffort);
    printHardFiles(hardFiles);
    printTargets(all, hardFiles);
}

}  // namespace

int main(int argc, char** argv)
{
    return runProgram({"benchmark_whole", usage, &run, &runChild}, argc, argv);
}
