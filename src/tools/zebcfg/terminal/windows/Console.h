// The console of the process. What is changed of it is restored by restoreConsole() at the latest.
#ifndef ZEBCFG_CONSOLE_H
#define ZEBCFG_CONSOLE_H

#include <ostream>
#include <streambuf>
#include <string>

#include <windows.h>

class Console {
public:
    Console() noexcept;
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    ~Console();

    bool isOpen() const noexcept { return in != INVALID_HANDLE_VALUE && out != INVALID_HANDLE_VALUE; }
    HANDLE input() const noexcept { return in; }
    bool write(const std::string& text) const;
    // A line without its end, in the encoding of the locale. False at the end.
    bool readLine(std::string& line) const;

private:
    const HANDLE in;
    const HANDLE out;
};

// Puts a stream on the console, a line at a time, for a character of several bytes is not to be torn, until it ends.
class ConsoleBuffer : public std::streambuf {
public:
    ConsoleBuffer(std::ostream& stream, HANDLE handle);
    ConsoleBuffer(const ConsoleBuffer&) = delete;
    ConsoleBuffer& operator=(const ConsoleBuffer&) = delete;
    ~ConsoleBuffer() override;

protected:
    int_type overflow(int_type character) override;
    int sync() override;

private:
    std::ostream& shown;
    std::streambuf* const former;
    const HANDLE console;
    std::string text;
};

// Sets the code page of the console.
void usePage(UINT page) noexcept;
// Sets a mode of the console. False, and nothing is changed, where it does not know it.
bool changeMode(HANDLE handle, DWORD mode) noexcept;
void restoreMode(HANDLE handle) noexcept;
// Called when the process ends, also by the thread of a control event.
void restoreConsole() noexcept;

// The interrupt key does not end the process while one lives.
class IgnoredKeys {
public:
    IgnoredKeys() noexcept;
    IgnoredKeys(const IgnoredKeys&) = delete;
    IgnoredKeys& operator=(const IgnoredKeys&) = delete;
    ~IgnoredKeys();
};

#endif
