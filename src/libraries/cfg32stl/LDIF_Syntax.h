// The value syntaxes. Each is a family of five functions; most families take over those of another.
//
// Every value holds its stringValue; an integer holds binaryValue beside it, and a DN dnValue. A text that is refused
// is an LDIF_Exception with value and attrType.
#ifndef LDIF_SYNTAX_H
#define LDIF_SYNTAX_H

#include "LDIF_AttrType.h"
#include "LDIF_Exception.h"

#include <cstddef>
#include <optional>
#include <string>

class LDIF_Value;

// Case-exact text, within the length limits of its type, counted in bytes.
int cesCompare(const LDIF_Value& left, const LDIF_Value& right);
void cesFromStr(LDIF_Value& value, const std::string& text);
void cesFromBin(LDIF_Value& value, const void* data, int length);
std::string cesToStr(const LDIF_Value& value);
void* cesToBin(const LDIF_Value& value, int& length);

// Text compared without regard to case.
int cisCompare(const LDIF_Value& left, const LDIF_Value& right);

// One of the enumValues of its type, without regard to case.
void enumFromStr(LDIF_Value& value, const std::string& text);

// A signed 32-bit number within the limits of its type, kept in canonical decimal.
int intCompare(const LDIF_Value& left, const LDIF_Value& right);
void intFromStr(LDIF_Value& value, const std::string& text);
void intFromBin(LDIF_Value& value, const void* data, int length);

// A number whose bits lie within the bitmask of its type.
void maskFromStr(LDIF_Value& value, const std::string& text);
void maskFromBin(LDIF_Value& value, const void* data, int length);

// A distinguished name, RFC 4514, kept in canonical form; the empty text is the empty DN.
int dnCompare(const LDIF_Value& left, const LDIF_Value& right);
void dnFromStr(LDIF_Value& value, const std::string& text);
void dnFromBin(LDIF_Value& value, const void* data, int length);

// A password, kept encoded: a text framed by ">" and "<" is taken as encoded already. The limits are those of the clear
// text. Two passwords are compared decoded.
int pwCompare(const LDIF_Value& left, const LDIF_Value& right);
void pwFromStr(LDIF_Value& value, const std::string& text);
std::optional<std::size_t> pwHash(const LDIF_Value& value);

// Throw LDIF_Exception (92) for a syntax without a binary or a string form.
[[noreturn]] void BinarySyntaxNotImplemented(const char* syntax, const _AttrType* attrType, const std::string& value,
                                             SourcePos pos = SourcePos::here());
[[noreturn]] void StringSyntaxNotImplemented(const char* syntax, const _AttrType* attrType, const std::string& value,
                                             SourcePos pos = SourcePos::here());

// The five functions of a family, as a row of the attribute type table takes them over.
struct LDIF_Syntax {
    decltype(_AttrType::match) compare;
    decltype(_AttrType::fromStr) fromStr;
    decltype(_AttrType::fromBin) fromBin;
    decltype(_AttrType::toStr) toStr;
    decltype(_AttrType::toBin) toBin;
};

namespace syntax {

constexpr LDIF_Syntax ces = {cesCompare, cesFromStr, cesFromBin, cesToStr, cesToBin};
constexpr LDIF_Syntax cis = {cisCompare, ces.fromStr, ces.fromBin, ces.toStr, ces.toBin};
constexpr LDIF_Syntax enumerated = {cis.compare, enumFromStr, cis.fromBin, cis.toStr, cis.toBin};
constexpr LDIF_Syntax integer = {intCompare, intFromStr, intFromBin, ces.toStr, ces.toBin};
constexpr LDIF_Syntax mask = {integer.compare, maskFromStr, maskFromBin, integer.toStr, integer.toBin};
constexpr LDIF_Syntax dn = {dnCompare, dnFromStr, dnFromBin, cis.toStr, cis.toBin};
constexpr LDIF_Syntax pw = {pwCompare, pwFromStr, ces.fromBin, ces.toStr, ces.toBin};

// Texts under another name: no character of them is looked at.
constexpr LDIF_Syntax oid = cis;
constexpr LDIF_Syntax dc = cis;
constexpr LDIF_Syntax url = cis;
constexpr LDIF_Syntax krbdn = cis;
constexpr LDIF_Syntax env = cis;
constexpr LDIF_Syntax path = ces;
constexpr LDIF_Syntax file = ces;
constexpr LDIF_Syntax plugin = ces;

}  // namespace syntax

// Whether the comparison ignores case, so that equal values have equal hashes only under one folding of the locale.
bool foldsCase(const LDIF_Value& value) noexcept;
// Values that compare equal have equal hashes. None for a password that the codec cannot decode, and for other values
// that can only be compared.
std::optional<std::size_t> hashOf(const LDIF_Value& value);

// A failure of a syntax: the codes, the text, and the value and type at fault.
LDIF_Exception syntaxFailure(int ldapErr, int extErr, const std::string& text, const std::string& value,
                             const _AttrType* attrType, SourcePos pos = SourcePos::here());

#endif
