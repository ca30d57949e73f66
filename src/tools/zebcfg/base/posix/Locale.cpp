#include "base/Locale.h"

#include <clocale>
#include <cstdlib>
#include <cstring>

#include <iconv.h>
#include <langinfo.h>

namespace {

constexpr char utf8[] = "UTF-8";

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

// A file in UTF-8 cannot be read in the plain locale, which cron and init scripts run programs in.
void useLocale()
{
    const char* const name = std::setlocale(LC_CTYPE, "");
    if (name == nullptr || std::strcmp(name, "C") == 0 || std::strcmp(name, "POSIX") == 0)
        (void)::setenv("LC_ALL", "C.UTF-8", 1);
    (void)std::setlocale(LC_ALL, "");
}

// That of the system is the one in the environment.
void reuseLocale() {}

std::string localeEncoding()
{
    return ::nl_langinfo(CODESET);
}

std::optional<std::string> localeToUtf8(const std::string& text)
{
    return converted(text, ::nl_langinfo(CODESET), utf8);
}

std::optional<std::string> utf8ToLocale(const std::string& text)
{
    return converted(text, utf8, ::nl_langinfo(CODESET));
}

std::string environmentValue(const char* name)
{
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::vector<std::string> localArguments(int argc, char** argv)
{
    return {argv, argv + argc};
}
