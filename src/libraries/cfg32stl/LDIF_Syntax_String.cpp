#include "LDIF_Syntax.h"

#include "LDIF_Util.h"
#include "LDIF_Value.h"
#include "platform.h"
#include "zebldapcfg.h"

#include <algorithm>
#include <utility>

namespace {

// The shortest and the longest text of a type, 0 for no limit. A maximum below the minimum counts as no limit.
std::pair<std::size_t, std::size_t> lengthsOf(const _AttrType& type)
{
    const int lower = std::max(type.minimum, 0);
    const int upper = type.maximum >= lower ? type.maximum : 0;
    return {static_cast<std::size_t>(lower), static_cast<std::size_t>(upper)};
}

std::string lengthMessage(const _AttrType& type)
{
    const auto [lower, upper] = lengthsOf(type);
    const std::string name = type.name != nullptr ? std::string(type.name) + ' ' : std::string();
    return name + "length must be " + std::to_string(lower) + " to " + std::to_string(upper) + " characters";
}

}  // namespace

LDIF_Exception syntaxFailure(int ldapErr, int extErr, const std::string& text, const std::string& value,
                             const _AttrType* attrType, SourcePos pos)
{
    LDIF_Exception failure(ldapErr, extErr, text, pos);
    failure.value = value;
    failure.attrType = attrType;
    return failure;
}

void BinarySyntaxNotImplemented(const char* syntax, const _AttrType* attrType, const std::string& value, SourcePos pos)
{
    throw syntaxFailure(CFG_NOT_SUPPORTED, CFG_ERR_NO_BINARY_FORM,
                        std::string("Binary representation undefined for syntax: ") + syntax, value, attrType, pos);
}

void StringSyntaxNotImplemented(const char* syntax, const _AttrType* attrType, const std::string& value, SourcePos pos)
{
    throw syntaxFailure(CFG_NOT_SUPPORTED, CFG_ERR_NO_STRING_FORM,
                        std::string("String representation undefined for syntax: ") + syntax, value, attrType, pos);
}

int cesCompare(const LDIF_Value& left, const LDIF_Value& right)
{
    return left.str().compare(right.str());
}

void cesFromStr(LDIF_Value& value, const std::string& text)
{
    const _AttrType* const type = value.attrType;
    if (type != nullptr && !cesIsCanonical(*type, text))
        throw syntaxFailure(LDAP_INVALID_SYNTAX, CFG_ERR_LENGTH, lengthMessage(*type), text, type);
    value.stringValue = text;
}

void cesFromBin(LDIF_Value& value, const void* data, int length)
{
    if (data != nullptr && length >= 1)
        BinarySyntaxNotImplemented(syntax::ces.name, value.attrType, "<binary>");
}

std::string cesToStr(const LDIF_Value& value)
{
    return value.stringValue;
}

void* cesToBin(const LDIF_Value& value, int& length)
{
    length = static_cast<int>(value.binaryLength);
    if (value.binaryValue == nullptr)
        BinarySyntaxNotImplemented(syntax::ces.name, value.attrType, value.str());
    return value.binaryValue.get();
}

std::optional<std::size_t> cesHash(const LDIF_Value& value)
{
    return exactHash(0, value.stringValue);
}

bool cesIsCanonical(const _AttrType& type, std::string_view text)
{
    const auto [lower, upper] = lengthsOf(type);
    return text.size() >= lower && (upper == 0 || text.size() <= upper);
}

int cisCompare(const LDIF_Value& left, const LDIF_Value& right)
{
    const std::string leftText = left.str();
    const std::string rightText = right.str();
    if (leftText.empty() || rightText.empty())
        return static_cast<int>(!leftText.empty()) - static_cast<int>(!rightText.empty());
    return compareFoldedText(leftText.c_str(), rightText.c_str());
}

std::optional<std::size_t> cisHash(const LDIF_Value& value)
{
    return foldedHash(0, value.stringValue);
}
