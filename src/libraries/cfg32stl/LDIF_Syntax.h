// The value syntaxes. Each is a family of functions; most families take over those of another.
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
#include <string_view>

class LDIF_Value;

// Case-exact text, within the length limits of its type, counted in bytes.
int cesCompare(const LDIF_Value& left, const LDIF_Value& right);
void cesFromStr(LDIF_Value& value, const std::string& text);
void cesFromBin(LDIF_Value& value, const void* data, int length);
std::string cesToStr(const LDIF_Value& value);
void* cesToBin(const LDIF_Value& value, int& length);
std::optional<std::size_t> cesHash(const LDIF_Value& value);
bool cesIsCanonical(const _AttrType& type, std::string_view text);

// Text compared without regard to case.
int cisCompare(const LDIF_Value& left, const LDIF_Value& right);
std::optional<std::size_t> cisHash(const LDIF_Value& value);

// One of the enumValues of its type, without regard to case.
void enumFromStr(LDIF_Value& value, const std::string& text);
bool enumIsCanonical(const _AttrType& type, std::string_view text);

// A signed 32-bit number within the limits of its type, kept in canonical decimal.
int intCompare(const LDIF_Value& left, const LDIF_Value& right);
void intFromStr(LDIF_Value& value, const std::string& text);
void intFromBin(LDIF_Value& value, const void* data, int length);
bool intIsCanonical(const _AttrType& type, std::string_view text);

// A number whose bits lie within the bitmask of its type.
void maskFromStr(LDIF_Value& value, const std::string& text);
void maskFromBin(LDIF_Value& value, const void* data, int length);
bool maskIsCanonical(const _AttrType& type, std::string_view text);

// A distinguished name, RFC 4514, kept in canonical form; the empty text is the empty DN.
int dnCompare(const LDIF_Value& left, const LDIF_Value& right);
void dnFromStr(LDIF_Value& value, const std::string& text);
void dnFromBin(LDIF_Value& value, const void* data, int length);
std::optional<std::size_t> dnHash(const LDIF_Value& value);
bool dnIsCanonical(const _AttrType& type, std::string_view text);

// A password, kept encoded: a text framed by ">" and "<" is taken as encoded already. The limits are those of the clear
// text. Two passwords are compared decoded.
int pwCompare(const LDIF_Value& left, const LDIF_Value& right);
void pwFromStr(LDIF_Value& value, const std::string& text);
std::optional<std::size_t> pwHash(const LDIF_Value& value);
bool pwIsCanonical(const _AttrType& type, std::string_view text);

// Throw LDIF_Exception (92) for a syntax without a binary or a string form.
[[noreturn]] void BinarySyntaxNotImplemented(const char* syntax, const _AttrType* attrType, const std::string& value,
                                             SourcePos pos = SourcePos::here());
[[noreturn]] void StringSyntaxNotImplemented(const char* syntax, const _AttrType* attrType, const std::string& value,
                                             SourcePos pos = SourcePos::here());

// A syntax: the five functions of its family, as a row of the attribute type table takes them over, and two more.
struct LDIF_Syntax {
    const char* name;
    decltype(_AttrType::match) compare;
    decltype(_AttrType::fromStr) fromStr;
    decltype(_AttrType::fromBin) fromBin;
    decltype(_AttrType::toStr) toStr;
    decltype(_AttrType::toBin) toBin;
    // Equal values have equal hashes. None for a value that can only be compared: a password that the codec cannot
    // decode, a DN without its parsed form. Null where that holds for all values.
    std::optional<std::size_t> (*hash)(const LDIF_Value& value);
    // Whether a text is a value as it would be printed. False for a DN with escapes or quotes, although it may be one.
    bool (*isCanonical)(const _AttrType& type, std::string_view text);
    bool foldsCase;  // and so gives other hashes where the locale folds case otherwise
};

namespace syntax {

inline constexpr LDIF_Syntax ces = {"ces",    cesCompare, cesFromStr,     cesFromBin, cesToStr,
                                    cesToBin, cesHash,    cesIsCanonical, false};
inline constexpr LDIF_Syntax cis = {"cis",     cisCompare, ces.fromStr,     ces.fromBin, ces.toStr,
                                    ces.toBin, cisHash,    ces.isCanonical, true};
inline constexpr LDIF_Syntax enumerated = {"enum",    cis.compare, enumFromStr,     cis.fromBin, cis.toStr,
                                           cis.toBin, cis.hash,    enumIsCanonical, true};
inline constexpr LDIF_Syntax integer = {"int",     intCompare, intFromStr,     intFromBin, ces.toStr,
                                        ces.toBin, ces.hash,   intIsCanonical, false};
inline constexpr LDIF_Syntax mask = {"mask",        integer.compare, maskFromStr,     maskFromBin, integer.toStr,
                                     integer.toBin, integer.hash,    maskIsCanonical, false};
inline constexpr LDIF_Syntax dn = {"dn",      dnCompare, dnFromStr,     dnFromBin, cis.toStr,
                                   cis.toBin, dnHash,    dnIsCanonical, true};
inline constexpr LDIF_Syntax pw = {"pw",      pwCompare, pwFromStr,     ces.fromBin, ces.toStr,
                                   ces.toBin, pwHash,    pwIsCanonical, false};

// Texts under another name: no character of them is looked at.
inline constexpr const LDIF_Syntax& oid = cis;
inline constexpr const LDIF_Syntax& dc = cis;
inline constexpr const LDIF_Syntax& url = cis;
inline constexpr const LDIF_Syntax& krbdn = cis;
inline constexpr const LDIF_Syntax& env = cis;
inline constexpr const LDIF_Syntax& path = ces;
inline constexpr const LDIF_Syntax& file = ces;
inline constexpr const LDIF_Syntax& plugin = ces;

// That of a type made by hand from other functions, which are known to the type alone.
inline constexpr LDIF_Syntax foreign = {"foreign", nullptr, nullptr, nullptr, nullptr,
                                        nullptr,   nullptr, nullptr, false};

}  // namespace syntax

// The syntax of a type: one of those above, so that their addresses tell them apart.
const LDIF_Syntax& syntaxOf(const _AttrType& type) noexcept;

// A failure of a syntax: the codes, the text, and the value and type at fault.
LDIF_Exception syntaxFailure(int ldapErr, int extErr, const std::string& text, const std::string& value,
                             const _AttrType* attrType, SourcePos pos = SourcePos::here());

#endif
