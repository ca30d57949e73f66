// Two DNs, a line each: parsed, printed and parsed again, and compared with each other.
#include "fuzz.h"

namespace {

// Parses a DN in two ways: behind an RDN outside ASCII the reader takes characters where it took bytes.
LDIF_DN parsed(const std::string& text)
{
    LDIF_DN dn, longer;
    const Codes result = resultOf([&] { dn = cisString(text); });
    if (result == success && dn.empty())
        return dn;
    require(result == resultOf([&] { longer = cisString("cn=\u00e9," + text); }), "bytes are characters", text);
    if (result != success)
        return LDIF_DN();
    longer.pop_back();
    require(longer == dn, "bytes and characters give one DN", text);
    require(longer.hash() == dn.hash(), "bytes and characters give one hash", text);
    return dn;
}

void checkPrinting(const LDIF_DN& dn, const std::string& text)
{
    std::string printed;
    const Codes result = resultOf([&] { printed = dn.str(); });
    const bool isNoText = result.first == 162 && text.find('\\') != std::string::npos;  // bytes in a quoted value
    require(result == success || result == Codes(34, 1013) || isNoText, "a DN prints", text);
    if (result != success || losesByPrinting(dn))
        return;
    const LDIF_DN again = parsed(printed);
    require(again == dn, "what prints parses to the same", text);
    require(again.hash() == dn.hash(), "what prints parses to the same hash", text);
    require(again.str() == printed, "what is parsed prints the same", text);
}

void checkOrder(const LDIF_DN& one, const LDIF_DN& other, const std::string& text)
{
    require((one < other) == (other > one), "the order has two sides", text);
    require((one == other) == (other == one), "equality has two sides", text);
    require(one != other || one.hash() == other.hash(), "equal DNs have one hash", text);
    const LDIF_DN shared = one.intersection(other);
    LDIF_DN rest = one;
    require(shared == other.intersection(one), "both share the same", text);
    require(shared.size() == one.commonLevels(other), "both share as many levels", text);
    require((rest -= other).size() == one.size() - shared.size(), "an ancestor goes as a whole", text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::vector<std::string> lines = split(textOf(data, size), '\n');
    const LDIF_DN one = parsed(lines.front());
    checkPrinting(one, lines.front());
    checkOrder(one, parsed(lines.back()), lines.front() + '\n' + lines.back());
    return 0;
}
