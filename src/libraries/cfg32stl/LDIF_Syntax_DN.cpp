#include "LDIF_Syntax.h"

#include "LDIF_DN.h"
#include "LDIF_Util.h"
#include "LDIF_Value.h"

#include <memory>

namespace {

// Wraps an LDIF_Exception that is being handled, with the value and type at fault.
[[noreturn]] void throwWrapped(const std::string& value, const _AttrType* attrType, SourcePos pos = SourcePos::here())
{
    const auto addFields = [&](LDIF_Exception& failure) {
        failure.value = value;
        failure.attrType = attrType;
    };
    wrapAndThrow("", addFields, pos);
}

// The DN of a value; a value without one, whose copy found no memory, has its text parsed into buffer.
const LDIF_DN& parsedDn(const LDIF_Value& value, LDIF_DN& buffer)
{
    if (value.dnValue != nullptr)
        return *value.dnValue;
    const std::string text = value.str();
    try {
        return buffer = cisString(text);
    } catch (const LDIF_Exception&) {
        throwWrapped(text, value.attrType);
    }
}

}  // namespace

int dnCompare(const LDIF_Value& left, const LDIF_Value& right)
{
    LDIF_DN leftBuffer;
    LDIF_DN rightBuffer;
    const LDIF_DN& leftDn = parsedDn(left, leftBuffer);
    const LDIF_DN& rightDn = parsedDn(right, rightBuffer);
    return leftDn.compare(rightDn);
}

void dnFromStr(LDIF_Value& value, const std::string& text)
{
    try {
        value.dnValue = std::make_unique<LDIF_DN>(cisString(text));
        value.stringValue = compact(value.dnValue->str());
    } catch (const LDIF_Exception&) {
        throwWrapped(text, value.attrType);
    }
}

void dnFromBin(LDIF_Value& value, const void* data, int length)
{
    try {
        syntax::cis.fromBin(value, data, length);
        dnFromStr(value, value.str());
    } catch (const LDIF_Exception&) {
        throwWrapped(value.str(), value.attrType);
    }
}

std::optional<std::size_t> dnHash(const LDIF_Value& value)
{
    return value.dnValue != nullptr ? std::optional(value.dnValue->hash()) : std::nullopt;
}
