#include "Dn.h"
#include "Failure.h"
#include "Json.h"
#include "Outline.h"
#include "Reading.h"

#include <iostream>
#include <string_view>

#include <langinfo.h>
#include <unistd.h>

namespace {

// Elsewhere than on a terminal that shows UTF-8 the plain drawing is safer.
Lines linesFor(const Call& call)
{
    const bool canDraw = ::isatty(STDOUT_FILENO) == 1 && std::string_view(::nl_langinfo(CODESET)) == "UTF-8";
    return canDraw && !call.has("ascii") ? Lines::utf8 : Lines::ascii;
}

}  // namespace

int runTree(const Call& call)
{
    Reading reading(call);
    std::vector<Node> nodes = outlineOf(reading.session());
    if (!call.operands().empty()) {
        const std::string dn = DnSpeller()(call.operands().front());
        nodes = below(nodes, dn);
        if (nodes.empty())
            throw Failure(LDAP_NO_SUCH_OBJECT, "there is no entry " + dn, reading.live().shownName());
    }
    std::cout << (call.isJson() ? toJson(nodes) + '\n' : draw(nodes, linesFor(call)));
    return 0;
}
