#include "program.h"

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <exception>

int runProgram(const Program& program, int argc, char** argv)
try {
    (void)setenv("LC_ALL", "C.UTF-8", 0);
    (void)std::setlocale(LC_ALL, "");
    const Words arguments(argv + 1, argv + argc);
    if (arguments.size() > 1 && arguments[0] == childOption)
        program.runChild({arguments.begin() + 1, arguments.end()});
    else if (arguments.size() == 1 && arguments[0] == "--help")
        (void)std::fputs(program.usage, stdout);
    else
        program.run(arguments);
    return 0;
} catch (const std::exception& failure) {
    (void)std::fprintf(stderr, "%s: %s\n", program.name, failure.what());
    return 1;
}
