// What ends a command: an exit status, and a line that a person can act on.
#ifndef ZEBCFG_FAILURE_H
#define ZEBCFG_FAILURE_H

#include <exception>
#include <string>

struct Failure : std::exception {
    Failure() = default;
    // A code of 0 is for usage and for failures of the tool's own.
    Failure(int resultCode, std::string message, std::string shownFile = {});

    const char* what() const noexcept override { return text.c_str(); }
    // The result code where it fits a byte, else 80; 1 without a code.
    int exitStatus() const noexcept;
    // One line: "ATTRIBUTE: TEXT (CODE, EXTENDED) at FILE:LINE", without what is not known.
    std::string line() const;
    // What stands in the parentheses, or the empty text.
    std::string codes() const;

    int code = 0;
    int extended = 0;  // 0 when no more is known than code says
    std::string text;
    std::string attribute;  // with its colon it opens the line
    std::string entry;
    std::string value;  // masked for a password
    std::string file;   // as the user calls it
    int fileLine = 0;   // 0 means none
    int inputLine = 0;  // of the change at fault, where changes came with lines
    std::string dump;   // the library's report, or empty
};

// Failure with the text of errno after the message.
Failure systemFailure(int resultCode, const std::string& message, const std::string& shownFile = {});

#endif
