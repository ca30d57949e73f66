// Small work on texts.
#ifndef ZEBCFG_TEXT_H
#define ZEBCFG_TEXT_H

#include <optional>
#include <string>
#include <string_view>

// Of ASCII alone, as names of attributes are, whatever the locale.
constexpr char lowered(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter | 0x20) : letter;
}

// The text with each occurrence of a word replaced. An empty word changes nothing.
std::string replaced(std::string text, const std::string& word, const std::string& replacement);

// The ASCII letters in lower case.
std::string lowerCase(std::string text);

// Two hex digits.
std::string hexOf(unsigned char byte);
// The byte that two hex digits at a place stand for; nothing where they do not stand there.
std::optional<char> byteAt(std::string_view text, std::size_t place);

// The first of the characters, from a place on, that is neither escaped by a backslash nor within quotes; npos for
// none.
std::size_t findPlain(std::string_view text, std::string_view characters, std::size_t place = 0);

// One line in which every control character, the byte order mark too, is written as \x1b and the like. Tabs are left.
std::string visible(const std::string& text);
// The text with each line changed; it ends with a line end.
std::string eachLine(const std::string& text, std::string (*change)(const std::string& line));

// The length of the white space character at a place, as the locale has it; 0 for any other.
std::size_t blankAt(std::string_view text, std::size_t place);

// Some editors write one in front of UTF-8, where it is part of the first name.
constexpr char byteOrderMark[] = "\xEF\xBB\xBF";
bool hasByteOrderMark(const std::string& text);

#endif
