// The frame of a benchmark that measures in fresh processes: it runs itself again for them.
#ifndef PROGRAM_H
#define PROGRAM_H

#include <string>
#include <vector>

using Words = std::vector<std::string>;

// The first argument of a child process.
constexpr char childOption[] = "--child";

struct Program {
    const char* name;  // of its messages
    const char* usage;
    void (*run)(const Words& arguments);
    void (*runChild)(const Words& arguments);  // those after childOption
};

// Sets the locale and runs the program, or prints its usage for --help. Gives the exit status: 1, with a message, for
// what is thrown.
int runProgram(const Program& program, int argc, char** argv);

#endif
