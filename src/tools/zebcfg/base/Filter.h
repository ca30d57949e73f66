// The filters of RFC 4515.
#ifndef ZEBCFG_FILTER_H
#define ZEBCFG_FILTER_H

#include "base/Entry.h"

#include <functional>
#include <string>
#include <vector>

// One test on one attribute, or a combination of filters.
struct Filter {
    enum Kind { all, any, none, present, equal, atLeast, atMost, substrings };
    Kind kind = present;
    std::vector<Filter> parts;        // of all and any; for none the one that must not match
    std::string attribute;            // of a test
    std::vector<std::string> values;  // of a test, without escapes; of substrings the first and the last may be empty
    std::string text;                 // as it was written, without parentheses and blanks around it

    // Whether it is a test that the library can answer.
    bool isSimple() const { return kind == present || kind == equal; }
};

// Blanks around its parts do not count, and a test may stand without parentheses. ~= and := are refused, and so is an
// order of values that have none. Throws Failure (87, or 21 for a value) with the reason.
Filter parseFilter(const std::string& text);

// The names of all attributes that it tests.
std::vector<std::string> attributesOf(const Filter& filter);

// Whether the entry has the value, as the syntax of the attribute compares values.
using Holds = std::function<bool(const Entry& entry, const std::string& attribute, const std::string& value)>;
bool matches(const Filter& filter, const Entry& entry, const Holds& holds);

#endif
