// The attribute types that the library knows, for help, checks and completion. What the library accepts is up to the
// library; this table only tells people about it.
#ifndef ZEBCFG_ATTRIBUTES_H
#define ZEBCFG_ATTRIBUTES_H

#include <string>
#include <string_view>
#include <vector>

enum class Syntax { text, number, word, bits, dn, password };

struct AttributeType {
    std::string name;
    Syntax syntax;
    int minimum;  // of a number, or of a length in bytes; 0 means no limit
    int maximum;
    unsigned int bits;  // that a value may set
    bool isSingle;
    std::vector<std::string> words;  // that are accepted, in any case
};

// Sorted by name.
const std::vector<AttributeType>& attributeTypes();
// Found without regard to case; null for a name that the library does not know.
const AttributeType* findAttributeType(std::string_view name);
bool isPassword(std::string_view name);

// What a value may be, in words: "a number from 1 to 65535".
std::string describeValues(const AttributeType& type);

// The name of the attribute into which the library moves a line that it cannot take in.
constexpr char invalidLine[] = "zeb-slapdInvalidLine";

bool isSameName(std::string_view left, std::string_view right);

// The letters that may be put in, left out or exchanged in a misspelt word.
constexpr std::size_t mostSlips = 2;
// The candidate that is nearest to a misspelt word, or the empty text when none is near.
std::string nearest(std::string_view word, const std::vector<std::string>& candidates);
// " (did you mean NAME?)" for a misspelt attribute name, else the empty text.
std::string attributeHint(std::string_view name);

#endif
