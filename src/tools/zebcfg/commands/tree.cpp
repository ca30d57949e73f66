#include "base/Encoding.h"
#include "base/Failure.h"
#include "base/Text.h"
#include "cli/Call.h"
#include "library/Dn.h"
#include "library/Outline.h"
#include "terminal/StandardStreams.h"
#include "update/Reading.h"

#include <iostream>

namespace {

// Elsewhere than on a terminal that shows UTF-8 the plain drawing is safer.
Lines linesFor(const Call& call)
{
    const bool canDraw = isTerminal(outputStream) && isUtf8Locale();
    return canDraw && !call.has("ascii") ? Lines::utf8 : Lines::ascii;
}

}  // namespace

int runTree(const Call& call)
{
    Reading reading(call.target());
    std::vector<Node> nodes = outlineOf(reading.session());
    if (!call.operands().empty()) {
        const std::string dn = DnSpeller()(call.operands().front());
        nodes = below(nodes, dn);
        if (nodes.empty()) {
            Failure failure = reading.session().missingEntry(dn);
            failure.file = reading.live().shownName();
            throw failure;
        }
    }
    if (call.isJson()) {
        std::cout << toJson(nodes) << '\n';
        return 0;
    }
    const std::string drawing = draw(nodes, linesFor(call));
    std::cout << (isTerminal(outputStream) ? eachLine(drawing, visible) : drawing);
    return 0;
}
