#include "terminal/Question.h"

#include "base/Failure.h"
#include "base/Text.h"

#include <fstream>

char ask(const std::string& question, const std::string& letters)
{
    std::ifstream in("/dev/tty");
    std::ofstream out("/dev/tty");
    if (!in || !out)
        throw Failure(0, "there is no terminal for a question, and nothing is changed");
    for (std::string line; out << visible(question) << std::flush && std::getline(in, line);) {
        if (line.size() == 1 && letters.find(line[0]) != std::string::npos)
            return line[0];
    }
    throw Failure(0, "there is no answer, and nothing is changed");
}
