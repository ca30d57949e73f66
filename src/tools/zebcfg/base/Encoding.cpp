#include "base/Encoding.h"

#include "base/Failure.h"

#include <cstring>
#include <optional>

#include <iconv.h>
#include <langinfo.h>
#include <ldap.h>

namespace {

constexpr char utf8[] = "UTF-8";

// Nothing when the text cannot be converted as a whole.
std::optional<std::string> converted(const std::string& text, const char* from, const char* to)
{
    constexpr std::size_t longestCharacter = 4;
    auto* const converter = ::iconv_open(to, from);
    if (converter == reinterpret_cast<iconv_t>(-1))  // NOLINT(performance-no-int-to-ptr): its mark of a failure
        return std::nullopt;
    std::string source = text;
    std::string target((text.size() + 1) * longestCharacter, '\0');
    char* in = source.data();
    char* out = target.data();
    std::size_t inLeft = source.size();
    std::size_t outLeft = target.size();
    const bool isWhole = ::iconv(converter, &in, &inLeft, &out, &outLeft) == 0 &&
                         ::iconv(converter, nullptr, nullptr, &out, &outLeft) == 0;
    ::iconv_close(converter);
    if (!isWhole)
        return std::nullopt;
    target.resize(target.size() - outLeft);
    return target;
}

}  // namespace

bool isUtf8Locale()
{
    return std::strcmp(::nl_langinfo(CODESET), utf8) == 0;
}

std::string toUtf8(const std::string& text)
{
    return isUtf8Locale() ? text : converted(text, ::nl_langinfo(CODESET), utf8).value_or(text);
}

std::string fromUtf8(std::string text)
{
    if (isUtf8Locale())
        return text;
    const auto result = converted(text, utf8, ::nl_langinfo(CODESET));
    if (!result)
        throw Failure(LDAP_INVALID_SYNTAX,
                      std::string("there are characters that the locale's encoding does not have, ") +
                          ::nl_langinfo(CODESET));
    return *result;
}
