// Other programs.
#ifndef ZEBCFG_PROGRAM_H
#define ZEBCFG_PROGRAM_H

#include <string>
#include <vector>

// What edits a text where the user has not said.
extern const char* const usualEditor;

// The words of a command with its arguments.
std::vector<std::string> wordsOf(const std::string& command);
// The name of a program without its directory.
std::string plainName(const std::string& program);
// Runs a program without a shell, and waits; the interrupt key is the program's meanwhile. Says whether it has ended
// with 0. Throws Failure with the message when it cannot be started.
bool runProgram(std::vector<std::string> words, const std::string& message);

#endif
