// How values of an attribute compare, as far as its type says it.
#ifndef ZEBCFG_VALUE_H
#define ZEBCFG_VALUE_H

#include <string>

struct AttributeType;

bool isWholeNumber(const std::string& text);

// The text that counts for a comparison: without regard to case, but for passwords. A null type stands for any text.
std::string comparableText(const AttributeType* type, const std::string& value);
// Negative when left sorts before right, 0 for values that are equal: numbers by what they stand for, others as texts.
int compareValues(const AttributeType* type, const std::string& left, const std::string& right);

#endif
