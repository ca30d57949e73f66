#include "case.h"
#include "firstLoad.h"
#include "handle.h"
#include "references.h"

#include <cstring>

namespace {

void measureFirstLoads(Case& each, const Effort& effort)
{
    Figures& samples = each.figures;
    const double nothing = peakWithoutLoad();
    const std::size_t revisionAt = each.input.text.find(revision) + std::strlen(revision);
    repeat(effort, [&] {
        const LoadFigures load = firstLoad(each.file);
        samples.load.add(load.load);
        samples.peak.add(load.peak - nothing);
        samples.release.add(load.release);

        samples.lexer.add(firstLexing(each.file, each.input.lines));

        const ReloadFigures reload = firstReload(each.file, revisionAt);
        samples.reload.add(reload.reload);
        samples.reloadPeak.add(reload.peak - nothing);
    });
}

void measureWarmLoads(Case& each, const Effort& effort)
{
    std::string buffer(each.input.text.size(), '\0');
    (void)countLdifLines(each.file);
    repeat(effort, [&] {
        Handle handle(each.file);
        each.figures.warmLoad.add(cpuTimeOf([&] { handle.bind(); }));
        handle.release();
        each.figures.warmLexer.add(cpuTimeOf([&] { (void)countLdifLines(each.file); }));
        each.figures.read.add(cpuTimeOf([&] { readBytes(each.file, buffer); }));
    });
}

}  // namespace

void measureLoads(Case& each, const Effort& effort)
{
    measureFirstLoads(each, effort);
    Handle(each.file).bind();
    measureWarmLoads(each, {effort.leastRounds, effort.seconds / 2});
}
