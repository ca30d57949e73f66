// Passwords are shown as a mask, unless the user asks for them. What is secret is decided here alone, for attributes,
// lines of the file, comments, filters, reports and diffs; when in doubt it is.
#ifndef ZEBCFG_MASKING_H
#define ZEBCFG_MASKING_H

#include <optional>
#include <string>
#include <string_view>

// What stands for a password, unless showPasswords(true) has been called.
constexpr char passwordMask[] = "********";
void showPasswords(bool areShown);

// Whether the attribute holds passwords: one that the library encodes, one whose name is near to such a one, or another
// whose name says so.
bool isSecret(std::string_view attribute);
// Where the secret of a line begins, with or without its colon, as a comment or in the value of another attribute; npos
// when there is none, or passwords are shown.
std::size_t secretOf(const std::string& line);

// The value as output and messages show it.
std::string shownValue(const std::string& attribute, const std::string& value);
// The same, or nothing where the value is shown as it is.
std::optional<std::string> maskedValue(const std::string& attribute, const std::string& value);
// The same for a line of the file, a filter or a part of a message, and for a text of several lines.
std::string shownLine(const std::string& line);
std::string shownText(const std::string& text);
// The same for a DN, in any spelling: only values of RDNs are masked.
std::string shownDn(const std::string& dn);
// Whether it holds a mask in the place of a password that was not shown.
bool holdsMask(const std::string& value);

#endif
