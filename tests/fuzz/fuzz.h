// What the fuzz targets share. A target runs under a fuzzer, or over files of inputs (replay.cpp), and ends the program
// when something does not hold.
#ifndef FUZZ_H
#define FUZZ_H

#include "LDIF_DN.h"
#include "LDIF_Exception.h"
#include "support.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

// One run of a target. The fuzzer knows it by this name. Always 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// Ends the program, unless it holds, with a line that says what and for which text.
void require(bool holds, const char* what, const std::string& text);

// The parts of a text between separators: one more than there are separators.
std::vector<std::string> split(const std::string& text, char separator);

// Whether the DN loses something when it is printed and parsed again: a plain value that begins with a parenthesis,
// which had an escape, or a quoted one with a NUL, which ends the text.
bool losesByPrinting(const LDIF_DN& dn);

using Codes = std::pair<int, int>;
constexpr Codes success = {0, 0};

// The codes of the failure of a call.
template <typename Call>
Codes resultOf(Call call)
{
    const auto failure = failureOf(call);
    require(!failure || failure->extErr != 1000, "no failure comes from inside the library",
            failure ? failure->msg : "");
    return failure ? Codes(failure->ldapErr, failure->extErr) : success;
}

inline std::string textOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

#endif
