// What the tests share: the locale, the registry, a directory of their own, files, and the failures that a call throws.
#ifndef SUPPORT_H
#define SUPPORT_H

#include <cerrno>
#include <clocale>
#include <filesystem>
#include <fstream>
#include <memory>
#include <pthread.h>
#include <random>
#include <sstream>
#include <string>
#include <system_error>
#include <utime.h>

#include "testSystem.h"

class LDIF_Exception;

// Sets the locale of the process, and the former one again at the end.
struct ScopedLocale {
    explicit ScopedLocale(const char* name = utf8Locale) { std::setlocale(LC_ALL, name); }
    ScopedLocale(const ScopedLocale&) = delete;
    ~ScopedLocale() { std::setlocale(LC_ALL, former.c_str()); }
    const std::string former = std::setlocale(LC_ALL, nullptr);
};

// A new directory, removed at the end with all that is in it. directory / "x" is the full name of x in it.
struct TempDirectory {
    TempDirectory() { std::filesystem::create_directory(path); }
    TempDirectory(const TempDirectory&) = delete;
    ~TempDirectory() { std::filesystem::remove_all(path, ignored); }
    std::string operator/(const std::string& name) const { return (std::filesystem::path(path) / name).string(); }
    const std::string path =
        (std::filesystem::temp_directory_path() / ("cfg" + std::to_string(std::random_device()()))).string();
    std::error_code ignored;
};

inline void writeText(const std::string& name, const std::string& text)
{
    std::ofstream(name, std::ios::binary) << text;
}

// Where the library has written it, each line ends in LF, whatever it is in the file.
inline std::string readText(const std::string& name)
{
    std::ostringstream text;
    text << std::ifstream(name, std::ios::binary).rdbuf();
    return withoutReturns(text.str());
}

// The time tells the writers of a file apart. In seconds.
inline void setTime(const std::string& name, time_t seconds)
{
    utimbuf times = {seconds, seconds};
    if (::utime(name.c_str(), &times) != 0)
        throw std::system_error(errno, std::generic_category(), name);
}

// Runs body in a thread whose stack has that many bytes.
template <typename Body>
void onStack(std::size_t size, Body body)
{
    pthread_t thread = {};
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, size);
    const auto run = [](void* given) -> void* { return (*static_cast<Body*>(given))(), nullptr; };
    if (pthread_create(&thread, &attributes, run, &body) == 0)
        pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

// The failure that a call throws, or null. Who uses them includes LDIF_Exception.h.
template <typename Call, typename Failure = LDIF_Exception>
std::unique_ptr<Failure> failureOf(Call call)
try {
    call();
    return nullptr;
} catch (const Failure& failure) {
    return std::make_unique<Failure>(failure);
}

// What a call gives, or its failure as "ldapErr/extErr msg [links of the chain]": one column for good rows and bad.
template <typename Call>
std::string outcomeOf(Call call)
{
    std::string text;
    const auto failure = failureOf([&] { text = call(); });
    for (auto [link, links] = std::pair(failure.get(), 1); link != nullptr; link = link->nested.get(), ++links)
        text = " [" + std::to_string(links) + ']';
    const auto code = [](int number) { return std::to_string(number); };
    return failure ? code(failure->ldapErr) + '/' + code(failure->extErr) + ' ' + failure->msg + text : text;
}

// The six relations of two objects, a digit each: == != < > <= >=.
template <typename Left, typename Right>
std::string relationsOf(const Left& left, const Right& right)
{
    std::string digits;
    for (const bool holds : {left == right, left != right, left<right, left> right, left <= right, left >= right})
        digits += holds ? '1' : '0';
    return digits;
}

#endif
