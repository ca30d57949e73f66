// Small work on texts.
#ifndef ZEBCFG_TEXT_H
#define ZEBCFG_TEXT_H

#include <string>

// The text with each occurrence of a word replaced. An empty word changes nothing.
std::string replaced(std::string text, const std::string& word, const std::string& replacement);

// Some editors write one in front of UTF-8, where it is part of the first name.
constexpr char byteOrderMark[] = "\xEF\xBB\xBF";
bool hasByteOrderMark(const std::string& text);

#endif
