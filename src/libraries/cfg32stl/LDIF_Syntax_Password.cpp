#include "LDIF_Syntax.h"

#include "LDIF_Util.h"
#include "LDIF_Value.h"
#include "PasswordCodec.h"
#include "platform.h"
#include "zebldapcfg.h"

#include <cstring>

namespace {

constexpr int shortest = 1;  // of a clear text, in bytes, unless the type says otherwise
constexpr int longest = 46;

bool isEncoded(std::string_view text)
{
    return !text.empty() && text.front() == '>' && text.back() == '<';
}

void requireLength(const std::string& text, const _AttrType* type, SourcePos pos = SourcePos::here())
{
    const int lower = type != nullptr && type->minimum > 0 ? type->minimum : shortest;
    const int upper = type != nullptr && type->maximum >= lower ? type->maximum : longest;
    if (text.size() < static_cast<std::size_t>(lower) || text.size() > static_cast<std::size_t>(upper))
        throw syntaxFailure(LDAP_INVALID_SYNTAX, CFG_ERR_LENGTH,
                            "Password length must be " + std::to_string(lower) + " to " + std::to_string(upper) +
                                " characters",
                            text, type, pos);
}

// The status of the codec. clear stays null for an empty value.
int decode(const LDIF_Value& value, ClearText& clear)
{
    const std::string text = value.str();
    return text.empty() ? 0 : decodePassword(text, clear);
}

// The clear text of a value that is compared. side names it in the failure.
ClearText operand(const LDIF_Value& value, const char* side, SourcePos pos = SourcePos::here())
{
    ClearText clear;
    const int status = decode(value, clear);
    if (status != 0)
        throw syntaxFailure(status, status, std::string("_pwcodec_decode_buffer( ") + side + " );", value.str(),
                            value.attrType, pos);
    return clear;
}

}  // namespace

int pwCompare(const LDIF_Value& left, const LDIF_Value& right)
try {
    const ClearText leftClear = operand(left, "left");
    const ClearText rightClear = operand(right, "right");
    if (leftClear != nullptr && rightClear != nullptr)
        return std::strcmp(leftClear.get(), rightClear.get());
    return static_cast<int>(leftClear != nullptr) - static_cast<int>(rightClear != nullptr);
} catch (const LDIF_Exception&) {
    throw;
} catch (...) {
    completeAndThrow("System error in pwCompare()", [&](LDIF_Exception& failure) {
        failure.value = left.str();
        failure.attrType = left.attrType;
    });
}

std::optional<std::size_t> pwHash(const LDIF_Value& value)
{
    ClearText clear;
    if (decode(value, clear) != 0)
        return std::nullopt;
    return clear != nullptr ? exactHash(0, clear.get()) : 0;
}

void pwFromStr(LDIF_Value& value, const std::string& text)
try {
    if (isEncoded(text)) {
        value.stringValue = text;
        return;
    }
    requireLength(text, value.attrType);
    const int status = encodePassword(text, value.stringValue);
    if (status != 0)
        throw syntaxFailure(status, status, "_pwcodec_encode_buffer( left );", text, value.attrType);
} catch (...) {
    completeAndThrow("System error in pwFromStr()", [&](LDIF_Exception& failure) {
        failure.value = text;
        failure.attrType = value.attrType;
    });
}

bool pwIsCanonical(const _AttrType& /*type*/, std::string_view text)
{
    return isEncoded(text);
}
