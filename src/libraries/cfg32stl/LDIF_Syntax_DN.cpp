#include "LDIF_Syntax.h"

#include "LDIF_DN.h"
#include "LDIF_DnKey.h"
#include "LDIF_Util.h"
#include "LDIF_Value.h"

#include <memory>

namespace {

// Does body, and wraps an LDIF_Exception that it throws, with the value and type at fault.
template <typename Body>
void wrappingFailures(const std::string& value, const _AttrType* attrType, Body body, SourcePos pos = SourcePos::here())
try {
    body();
} catch (const LDIF_Exception&) {
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
    wrappingFailures(text, value.attrType, [&] { buffer = cisString(text); });
    return buffer;
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
    wrappingFailures(text, value.attrType, [&] {
        value.dnValue = std::make_unique<LDIF_DN>(cisString(text));
        value.stringValue = value.dnValue->str();
    });
}

void dnFromBin(LDIF_Value& value, const void* data, int length)
{
    wrappingFailures(value.stringValue, value.attrType, [&] {
        syntax::cis.fromBin(value, data, length);
        dnFromStr(value, value.str());
    });
}

std::optional<std::size_t> dnHash(const LDIF_Value& value)
{
    return value.dnValue != nullptr ? std::optional(value.dnValue->hash()) : std::nullopt;
}

bool dnIsCanonical(const _AttrType& /*type*/, std::string_view text)
{
    return text.empty() || isSimpleDn(text);
}
