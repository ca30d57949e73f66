// Values of one attribute type: its number in a byte, then a value each line.
#include "LDIF_AttrType.h"
#include "LDIF_Syntax.h"
#include "LDIF_Values.h"
#include "fuzz.h"

namespace {

// One that only the codec can compare.
bool isPassword(const LDIF_Value& value)
{
    return &syntaxOf(*value.attrType) == &syntax::pw;
}

// Whether two values are equal. A password that the codec cannot decode equals none.
bool areEqual(const LDIF_Value& value, const LDIF_Value& comparand)
{
    bool equal = false;
    const Codes result = resultOf([&] { equal = value.compare(comparand) == 0; });
    require(result == success || isPassword(value), "values are compared", value.str());
    return equal;
}

void checkOne(const LDIF_Value& value, const std::string& text)
{
    const std::string printed = value.str();
    require(LDIF_Value(value).str() == printed, "a copy is the same", text);
    if (value.dnValue != nullptr && losesByPrinting(*value.dnValue))
        return;
    const LDIF_Value again(value.attrType, printed);
    require(again.str() == printed, "what is printed prints again", text);
    require(areEqual(value, again) == areEqual(value, value), "what is printed is equal", text);
    int length = 0;
    if (value.binaryValue != nullptr)
        require(LDIF_Value(value.attrType, value.attrType->toBin(value, length), length).str() == printed,
                "the binary form is the same", text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t typeCount = 116;
    if (size == 0)
        return 0;
    getAttrType("");  // sorts the table
    const _AttrType& type = _attrMapArray[data[0] % typeCount];
    const std::string input = textOf(data + 1, size - 1);
    const auto hash = syntaxOf(type).hash;
    std::vector<LDIF_Value> values;
    LDIF_Values list(type.name != nullptr ? type.name : "x");
    for (const std::string& text : split(input, '\n')) {
        const Codes result = resultOf([&] { checkOne(values.emplace_back(&type, text), text); });
        const Codes added = resultOf([&] { list += text; });
        require(result == added || added.first > 200, "a list takes what is a value", text);
    }
    for (const LDIF_Value& left : values) {
        require(isPassword(left) || list.contains(left), "a list finds its values", input);
        for (const LDIF_Value& right : values) {
            const bool equal = areEqual(left, right);
            require(areEqual(right, left) == equal, "equality has two sides", input);
            require(!equal || hash(left) == hash(right), "equal values have one hash", input);
        }
    }
    return 0;
}
