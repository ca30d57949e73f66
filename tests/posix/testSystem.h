// What the tests ask of the system: its locales, its registry, its limits.
#ifndef TESTSYSTEM_H
#define TESTSYSTEM_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iconv.h>
#include <langinfo.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <utility>

// The others are made for the tests.
constexpr const char* utf8Locale = "C.UTF-8";
constexpr const char* germanLocale = "de_CH.ISO-8859-1";
constexpr const char* turkishLocale = "tr_TR.ISO-8859-9";
constexpr const char* japaneseLocale = "ja_JP.EUC-JP";
constexpr const char* otherLocales[] = {"de_CH.UTF-8", "tr_TR.UTF-8", "ja_JP.UTF-8"};
#ifdef LOCALES
inline const int localePath = setenv("LOCPATH", LOCALES, 1);
#endif

constexpr int validTexts = 19;             // of those of locale_test, in each locale that knows them
constexpr const char* narrowLocale = "C";  // knows few characters

// The texts of LDAP codes are those of the manual.
constexpr bool namesLdapCodes = true;
constexpr int firstLdapCode = -5, lastLdapCode = 999;
constexpr int libraryCode(int code)  // which counts 81 to 97 downwards from -1
{
    return code > 80 && code < 98 ? 80 - code : code;
}

constexpr bool noBreakSpaceIsSpace = false;

constexpr std::size_t byteStep = 1;  // between the bytes at which a test cuts a file

// A new handle takes its locale from here.
inline const int handleLocale = setenv("LC_ALL", utf8Locale, 1);
inline void useUtf8() {}

// A text with the line ends of the library's own.
inline std::string withoutReturns(std::string text)
{
    return text;
}

// As much of a text in another encoding as that can hold, and whether this is all.
inline std::pair<std::string, bool> converted(std::string text, const std::string& to, const char* from)
{
    std::string out(4 * text.size() + 1, '\0');
    char *input = text.data(), *output = out.data();
    std::size_t inputLeft = text.size(), outputLeft = out.size();
    auto* const conversion = iconv_open(to.c_str(), from);
    const bool isWhole = iconv(conversion, &input, &inputLeft, &output, &outputLeft) == 0;
    iconv_close(conversion);
    return {out.substr(0, out.size() - outputLeft), isWhole};
}

// UTF-8 in the encoding of the locale, with other characters for those that it lacks, and whether there are none.
inline std::pair<std::string, bool> inLocale(const std::string& text)
{
    return converted(text, std::string(nl_langinfo(CODESET)) + "//TRANSLIT", "UTF-8");
}

inline std::string fromLocale(const std::string& text)
{
    return converted(text, "UTF-8", nl_langinfo(CODESET)).first;
}

// The directory of the registry of a test that links the classes; what it names at first has no keys.
extern std::string registry;
inline void useRegistry(const std::string& name)
{
    registry = name;
}

// Sets the install location, with or without the end that its text may have or lack.
inline void setHome(const std::string& home, bool hasEnd)
{
    const std::string key = registry + "/SOFTWARE/ZEB/LDAP/Client";
    std::filesystem::create_directories(key);
    std::ofstream(key + "/LDAPHome", std::ios::binary) << home << (hasEnd ? "\n" : "");
}

// From now on files can be opened, or not. False where it cannot be had.
inline bool letFilesOpen(bool isAllowed)
{
    static rlim_t former = RLIM_INFINITY;
    rlimit limit = {};
    getrlimit(RLIMIT_NOFILE, &limit);
    former = limit.rlim_cur != 0 ? limit.rlim_cur : former;
    limit.rlim_cur = isAllowed ? former : 0;
    return setrlimit(RLIMIT_NOFILE, &limit) == 0;
}

// Makes something that is no regular file, on which an open may wait.
inline bool makeIrregular(const std::string& name)
{
    return mkfifo(name.c_str(), 0600) == 0;
}

#endif
