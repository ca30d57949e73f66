#include "base/Text.h"

std::string replaced(std::string text, const std::string& word, const std::string& replacement)
{
    for (auto at = word.empty() ? std::string::npos : text.find(word); at != std::string::npos;
         at = text.find(word, at + replacement.size()))
        text.replace(at, word.size(), replacement);
    return text;
}

bool hasByteOrderMark(const std::string& text)
{
    return text.rfind(byteOrderMark, 0) == 0;
}
