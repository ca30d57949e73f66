#include "base/Locale.h"

#include "base/Failure.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <codePage.h>
#include <windows.h>

#include <shellapi.h>

namespace {

// Nothing for a text that cannot be converted. NULs stay.
std::optional<std::string> converted(const std::string& text, unsigned int from, unsigned int to)
{
    std::wstring wide;
    std::string target;
    if (!widen(from, text, wide) || !narrow(to, wide, target))
        return std::nullopt;
    return target;
}

// The first of these variables that is set names the locale.
const char* wantedLocale()
{
    for (const char* const variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* const name = std::getenv(variable);
        if (name != nullptr && *name != '\0')
            return name;
    }
    return "C";
}

}  // namespace

void useLocale()
{
    const char* const name = wantedLocale();
    const bool isPlain = std::strcmp(name, "C") == 0 || std::strcmp(name, "POSIX") == 0;
    if (isPlain || std::setlocale(LC_ALL, name) == nullptr)
        (void)std::setlocale(LC_ALL, ".UTF-8");
}

// The system's own knows no environment.
void reuseLocale()
{
    useLocale();
}

std::string localeEncoding()
{
    constexpr unsigned int latin1 = 28591;
    const unsigned int page = codePage();
    return page == CP_UTF8 ? "UTF-8" : page == latin1 ? "ISO-8859-1" : "windows-" + std::to_string(page);
}

std::optional<std::string> localeToUtf8(const std::string& text)
{
    return converted(text, codePage(), CP_UTF8);
}

std::optional<std::string> utf8ToLocale(const std::string& text)
{
    return converted(text, CP_UTF8, codePage());
}

std::string environmentValue(const char* name)
{
    std::wstring wideName;
    std::string value;
    const wchar_t* const wide = widen(CP_UTF8, name, wideName) ? ::_wgetenv(wideName.c_str()) : nullptr;
    return wide != nullptr && narrow(codePage(), wide, value) ? value : "";
}

// The C runtime gives them in the code page of the system, which may lack their characters.
std::vector<std::string> localArguments(int argc, char** argv)
{
    int count = 0;
    const std::unique_ptr<wchar_t*, decltype(&LocalFree)> words(CommandLineToArgvW(GetCommandLineW(), &count),
                                                                &LocalFree);
    if (words == nullptr)
        return {argv, argv + argc};
    std::vector<std::string> arguments;
    for (int i = 0; i < count; ++i) {
        if (!narrow(codePage(), words.get()[i], arguments.emplace_back()))
            throw Failure(0, "word " + std::to_string(i) + " of the command line has characters that the locale lacks");
    }
    return arguments;
}
