// The part of the filters of RFC 4515 that the library can answer: one test on one attribute.
#ifndef ZEBCFG_FILTER_H
#define ZEBCFG_FILTER_H

#include <string>

// The filter as the library takes it. Throws Failure (87) with the reason for any other.
std::string simpleFilter(const std::string& text);

#endif
