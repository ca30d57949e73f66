// Small work on texts.
#ifndef ZEBCFG_TEXT_H
#define ZEBCFG_TEXT_H

#include <string>

// The text with each occurrence of a word replaced. An empty word changes nothing.
std::string replaced(std::string text, const std::string& word, const std::string& replacement);

#endif
