// What the tests ask of the system: its locales, its registry, its limits.
#ifndef TESTSYSTEM_H
#define TESTSYSTEM_H

#include <clocale>
#include <filesystem>
#include <string>
#include <utility>
#include <windows.h>

constexpr const char* utf8Locale = ".UTF-8";
constexpr const char* germanLocale = "German_Germany.1252";
constexpr const char* turkishLocale = "Turkish_Turkey.1254";
constexpr const char* japaneseLocale = "Japanese_Japan.932";
constexpr const char* otherLocales[] = {"German_Germany.850"};

constexpr int validTexts = 11;                        // of those of locale_test, in each locale that knows them
constexpr const char* narrowLocale = japaneseLocale;  // the locale "C" knows each byte

// The texts of LDAP codes are the system's own.
constexpr bool namesLdapCodes = false;
constexpr int firstLdapCode = 0, lastLdapCode = 97;
constexpr unsigned long libraryCode(int code)
{
    return static_cast<unsigned long>(code);
}

constexpr bool noBreakSpaceIsSpace = true;

constexpr std::size_t byteStep = 7;  // between the bytes at which a test cuts a file

// After a new handle has set that of the user.
inline void useUtf8()
{
    std::setlocale(LC_ALL, utf8Locale);
}

// A text with the line ends of the library's own as one with LF, and any other as it is.
inline std::string withoutReturns(const std::string& text)
{
    std::string made;
    for (std::size_t at = 0, end = 0; (end = text.find('\n', at)) != std::string::npos; at = end + 1) {
        if (end == at || text[end - 1] != '\r')
            return text;
        made.append(text, at, end - 1 - at) += '\n';
    }
    return made + text.substr(made.empty() ? 0 : text.rfind('\n') + 1);
}

inline std::pair<std::string, bool> converted(const std::string& text, unsigned int to, unsigned int from)
{
    std::wstring wide(text.size(), L'\0');
    wide.resize(static_cast<std::size_t>(MultiByteToWideChar(from, 0, text.data(), static_cast<int>(text.size()),
                                                             wide.data(), static_cast<int>(wide.size()))));
    std::string out(4 * text.size(), '\0');
    BOOL isReplaced = FALSE;
    out.resize(static_cast<std::size_t>(
        WideCharToMultiByte(to, to == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS, wide.data(), static_cast<int>(wide.size()),
                            out.data(), static_cast<int>(out.size()), nullptr, to == CP_UTF8 ? nullptr : &isReplaced)));
    return {out, isReplaced == FALSE};
}

// UTF-8 in the encoding of the locale, with other characters for those that it lacks, and whether there are none.
inline std::pair<std::string, bool> inLocale(const std::string& text)
{
    return converted(text, ___lc_codepage_func() != 0 ? ___lc_codepage_func() : 28591, CP_UTF8);
}

inline std::string fromLocale(const std::string& text)
{
    return converted(text, CP_UTF8, ___lc_codepage_func()).first;
}

// A test that links the classes has a registry of its own, without keys at first.
inline void useRegistry(const std::string& /*name*/) {}

// Sets the install location, with or without the end that its text may have or lack.
void setHome(const std::string& home, bool hasEnd);

// From now on files can be opened, or not. False where it cannot be had.
inline bool letFilesOpen(bool isAllowed)
{
    return isAllowed;
}

// Makes something that is no regular file, on which an open may wait.
inline bool makeIrregular(const std::string& name)
{
    return std::filesystem::create_directory(name);
}

#endif
