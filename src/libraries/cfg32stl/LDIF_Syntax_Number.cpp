#include "LDIF_Syntax.h"

#include "LDIF_Util.h"
#include "LDIF_Value.h"
#include "platform.h"
#include "zebldapcfg.h"

#include <charconv>
#include <cstdint>
#include <cstring>
#include <new>
#include <optional>
#include <system_error>

namespace {

// [ "-" / "+" ] 1*DIGIT, with white space and parentheses around it. Gives invalid_argument or result_out_of_range for
// any other text.
std::errc readNumber(std::string trimmed, std::int32_t& number)
{
    std::string_view text = stripTrailing(stripLeading(trimmed));
    if (text.substr(0, 1) == "+" && text.substr(1, 1) != "-")
        text.remove_prefix(1);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return end != text.data() + text.size() ? std::errc::invalid_argument : error;
}

bool isWithinLimits(std::int32_t number, const _AttrType* type)
{
    if (type == nullptr || (type->minimum == 0 && type->maximum == 0))
        return true;
    return number >= type->minimum && number <= type->maximum;
}

bool isWithinMask(std::int32_t number, const _AttrType& type)
{
    return (static_cast<std::uint32_t>(number) & ~type.bitmask) == 0;
}

// The number of a text that is written as numbers are printed, and within its limits.
std::optional<std::int32_t> canonicalNumber(const _AttrType& type, std::string_view text)
{
    std::int32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || !isWithinLimits(number, &type))
        return std::nullopt;
    const char firstDigit = text[text[0] == '-' ? 1 : 0];
    return firstDigit != '0' || text == "0" ? std::optional(number) : std::nullopt;
}

void store(LDIF_Value& value, std::int32_t number)
{
    value.binaryValue.reset(new (std::nothrow) unsigned char[sizeof number]);
    if (value.binaryValue == nullptr)
        throw LDIF_Exception(CFG_NO_MEMORY, CFG_ERR_UNEXPECTED, "Allocation failed");
    value.binaryLength = sizeof number;
    std::memcpy(value.binaryValue.get(), &number, sizeof number);
    value.stringValue = std::to_string(number);
}

std::int32_t stored(const LDIF_Value& value)
{
    std::int32_t number = 0;
    std::memcpy(&number, value.binaryValue.get(), sizeof number);
    return number;
}

// The number that an integer value holds, for a comparison.
std::int32_t operand(const LDIF_Value& value, SourcePos pos = SourcePos::here())
{
    if (value.binaryValue == nullptr || value.binaryLength != sizeof(std::int32_t))
        throw syntaxFailure(LDAP_INAPPROPRIATE_MATCHING, CFG_ERR_UNEXPECTED, "integer compare on non-integer value",
                            value.str(), value.attrType, pos);
    return stored(value);
}

void requireBitmask(const LDIF_Value& value, const std::string& text, SourcePos pos = SourcePos::here())
{
    if (value.attrType == nullptr || value.attrType->bitmask == 0)
        throw syntaxFailure(LDAP_OTHER, CFG_ERR_UNEXPECTED, "Bitmask undefined", text, value.attrType, pos);
}

void requireBitsInMask(const LDIF_Value& value, const std::string& text, SourcePos pos = SourcePos::here())
{
    if (!isWithinMask(stored(value), *value.attrType))
        throw syntaxFailure(LDAP_INVALID_SYNTAX, CFG_ERR_BITMASK, "Bits in value are not within bitmask constraint",
                            text, value.attrType, pos);
}

LDIF_Exception rangeFailure(const LDIF_Value& value, const std::string& text, SourcePos pos = SourcePos::here())
{
    return syntaxFailure(LDAP_INVALID_SYNTAX, CFG_ERR_INT_RANGE, "Integer value out of range", text, value.attrType,
                         pos);
}

}  // namespace

void enumFromStr(LDIF_Value& value, const std::string& text)
{
    if (value.attrType == nullptr || value.attrType->enumValues == nullptr)
        throw syntaxFailure(LDAP_OTHER, CFG_ERR_UNEXPECTED, "Enumerated values undefined", text, value.attrType);
    syntax::cis.fromStr(value, text);
    if (!enumIsCanonical(*value.attrType, text))
        throw syntaxFailure(LDAP_INVALID_SYNTAX, CFG_ERR_ENUM, "value not one of attrType.enumValues", text,
                            value.attrType);
}

bool enumIsCanonical(const _AttrType& type, std::string_view text)
{
    const char* const* word = type.enumValues;
    while (*word != nullptr && compareFolded(text, *word) != 0)
        ++word;
    return *word != nullptr && syntax::cis.isCanonical(type, text);
}

int intCompare(const LDIF_Value& left, const LDIF_Value& right)
{
    const std::int32_t leftNumber = operand(left);
    const std::int32_t rightNumber = operand(right);
    return static_cast<int>(leftNumber > rightNumber) - static_cast<int>(leftNumber < rightNumber);
}

void intFromStr(LDIF_Value& value, const std::string& text)
{
    std::int32_t number = 0;
    const std::errc error = readNumber(text, number);
    if (error == std::errc::invalid_argument)
        throw syntaxFailure(LDAP_INVALID_SYNTAX, CFG_ERR_INT_SYNTAX, "Value is not valid integer syntax", text,
                            value.attrType);
    if (error != std::errc() || !isWithinLimits(number, value.attrType))
        throw rangeFailure(value, text);
    store(value, number);
}

void intFromBin(LDIF_Value& value, const void* data, int /*length*/)
{
    std::int32_t number = 0;
    if (data != nullptr)
        std::memcpy(&number, data, sizeof number);
    if (!isWithinLimits(number, value.attrType))
        throw rangeFailure(value, std::to_string(number));
    store(value, number);
}

bool intIsCanonical(const _AttrType& type, std::string_view text)
{
    return canonicalNumber(type, text).has_value();
}

void maskFromStr(LDIF_Value& value, const std::string& text)
{
    requireBitmask(value, text);
    intFromStr(value, text);
    requireBitsInMask(value, text);
}

void maskFromBin(LDIF_Value& value, const void* data, int length)
{
    requireBitmask(value, "<binary>");
    intFromBin(value, data, length);
    requireBitsInMask(value, value.str());
}

bool maskIsCanonical(const _AttrType& type, std::string_view text)
{
    const std::optional<std::int32_t> number = canonicalNumber(type, text);
    return number.has_value() && isWithinMask(*number, type);
}
