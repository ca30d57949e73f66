// The console of the process.
#ifndef ZEBCFG_CONSOLE_H
#define ZEBCFG_CONSOLE_H

#include <string>

#include <windows.h>

class Console {
public:
    Console() noexcept;
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    ~Console();

    bool isOpen() const noexcept { return in != INVALID_HANDLE_VALUE && out != INVALID_HANDLE_VALUE; }
    bool write(const std::string& text) const;
    // A line without its end, in the encoding of the locale. False at the end, and after the interrupt key.
    bool readLine(std::string& line) const;
    // Whether what is typed is shown.
    void setEcho(bool isShown) const noexcept;

private:
    const HANDLE in;
    const HANDLE out;
};

// The interrupt key does not end the process while one lives.
class IgnoredKeys {
public:
    IgnoredKeys() noexcept;
    IgnoredKeys(const IgnoredKeys&) = delete;
    IgnoredKeys& operator=(const IgnoredKeys&) = delete;
    ~IgnoredKeys();
};

#endif
