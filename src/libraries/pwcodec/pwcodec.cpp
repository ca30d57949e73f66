#include "pwcodec.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>
#include <random>
#include <string>

namespace {

using Bytes = std::basic_string<unsigned char>;

// Bytes of a clear text, overwritten before their memory is released.
struct Secret {
    Secret(const void* text, std::size_t size) : bytes(static_cast<const unsigned char*>(text), size) {}
    Secret(const Secret&) = delete;
    Secret& operator=(const Secret&) = delete;
    ~Secret()
    {
        for (volatile unsigned char& byte : bytes)  // volatile: no compiler leaves it out
            byte = 0;
    }
    Bytes bytes;
};

constexpr char opening = '>';
constexpr char version = '1';
constexpr char closing = '<';
constexpr std::size_t saltSize = 8;
constexpr std::size_t checksumSize = 4;
constexpr char base64url[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

Bytes makeSalt()
{
    std::random_device source;
    Bytes salt(saltSize, 0);
    for (std::size_t pos = 0; pos < saltSize; pos += sizeof(std::random_device::result_type)) {
        const std::random_device::result_type number = source();
        std::memcpy(&salt[pos], &number, sizeof number);
    }
    return salt;
}

// Adds the key stream of a salt to the text, or takes it off again: the splitmix64 sequence, a byte of each number.
void mask(Bytes& text, const Bytes& salt)
{
    std::uint64_t state = 0;
    for (const unsigned char byte : salt)
        state = state << 8 | byte;
    for (unsigned char& byte : text) {
        state += 0x9E3779B97F4A7C15U;
        std::uint64_t number = state;
        number = (number ^ number >> 30) * 0xBF58476D1CE4E5B9U;
        number = (number ^ number >> 27) * 0x94D049BB133111EBU;
        byte ^= static_cast<unsigned char>(number >> 56);
    }
}

// The 32-bit FNV-1a hash, high byte first.
Bytes checksum(const Bytes& salt, const Bytes& clear)
{
    std::uint32_t hash = 0x811C9DC5U;
    for (const Bytes* part : {&salt, &clear}) {
        for (const unsigned char byte : *part)
            hash = (hash ^ byte) * 0x01000193U;
    }
    Bytes sum;
    for (int shift = 24; shift >= 0; shift -= 8)
        sum += static_cast<unsigned char>(hash >> shift);
    return sum;
}

std::string toBase64(const Bytes& bytes)
{
    std::string text;
    std::uint32_t bits = 0;
    int count = 0;
    for (const unsigned char byte : bytes) {
        bits = bits << 8 | byte;
        for (count += 8; count >= 6; count -= 6)
            text += base64url[bits >> (count - 6) & 63];
    }
    if (count > 0)
        text += base64url[bits << (6 - count) & 63];
    return text;
}

// Nothing for a text that toBase64 does not give.
std::optional<Bytes> fromBase64(const std::string& text)
{
    Bytes bytes;
    std::uint32_t bits = 0;
    int count = 0;
    for (const char character : text) {
        const char* const digit = std::strchr(base64url, character);
        if (digit == nullptr || character == '\0')
            return std::nullopt;
        bits = bits << 6 | static_cast<std::uint32_t>(digit - base64url);
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes += static_cast<unsigned char>(bits >> count);
        }
    }
    if (toBase64(bytes) != text)
        return std::nullopt;
    return bytes;
}

// A malloc copy of size bytes and a closing NUL.
int handOut(const void* text, std::size_t size, char** copy)
{
    *copy = static_cast<char*>(std::malloc(size + 1));
    if (*copy == nullptr)
        return PWCODEC_MEMORY;
    std::memcpy(*copy, text, size);
    (*copy)[size] = '\0';
    return PWCODEC_SUCCESS;
}

int encode(const char* clearText, char** encoded)
{
    const Secret clear(clearText, std::strlen(clearText));
    const Bytes salt = makeSalt();
    Bytes masked = clear.bytes;
    mask(masked, salt);
    const std::string text = opening + (version + toBase64(salt + masked + checksum(salt, clear.bytes))) + closing;
    return handOut(text.data(), text.size(), encoded);
}

int decode(const std::string& text, char** clearText)
{
    if (text.size() < 3 || text[0] != opening || text[1] != version || text.back() != closing)
        return PWCODEC_FORMAT;
    const auto bytes = fromBase64(text.substr(2, text.size() - 3));
    if (!bytes || bytes->size() < saltSize + checksumSize)
        return PWCODEC_FORMAT;
    const Bytes salt = bytes->substr(0, saltSize);
    Secret clear(bytes->data() + saltSize, bytes->size() - saltSize - checksumSize);
    mask(clear.bytes, salt);
    if (checksum(salt, clear.bytes) != bytes->substr(bytes->size() - checksumSize))
        return PWCODEC_CHECKSUM;
    return handOut(clear.bytes.data(), clear.bytes.size(), clearText);
}

int release(char** text) noexcept
{
    if (text != nullptr) {
        std::free(*text);
        *text = nullptr;
    }
    return PWCODEC_SUCCESS;
}

}  // namespace

int _pwcodec_encode_buffer(const char* clearText, char** encoded)
try {
    return clearText != nullptr && encoded != nullptr ? encode(clearText, encoded) : PWCODEC_ARGUMENT;
} catch (const std::bad_alloc&) {
    return PWCODEC_MEMORY;
} catch (...) {
    return PWCODEC_RANDOMNESS;
}

int _pwcodec_encode_buffer_free(char** encoded)
{
    return release(encoded);
}

int _pwcodec_decode_buffer(char* encodedText, char** clearText)  // NOLINT(readability-non-const-parameter)
try {
    return encodedText != nullptr && clearText != nullptr ? decode(encodedText, clearText) : PWCODEC_ARGUMENT;
} catch (...) {
    return PWCODEC_MEMORY;
}

int _pwcodec_decode_buffer_free(char** clearText)
{
    return release(clearText);
}
