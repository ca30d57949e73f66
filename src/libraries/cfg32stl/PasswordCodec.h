// The password codec as the library uses it.
#ifndef PASSWORDCODEC_H
#define PASSWORDCODEC_H

#include "pwcodec.h"

#include <memory>
#include <string>

// Wipes a clear text and gives it back to the codec.
struct ClearTextDeleter {
    void operator()(char* text) const noexcept;
};
using ClearText = std::unique_ptr<char, ClearTextDeleter>;

// Both throw std::bad_alloc when memory is exhausted, in the codec too.
//
// Decodes a text of any length, from a copy. 0, with clear null where the codec gives no text, or the codec's status.
int decodePassword(const std::string& encoded, ClearText& clear);

// Encodes a text. 0, or the codec's status with encoded unchanged.
int encodePassword(const std::string& clear, std::string& encoded);

#endif
