#include "terminal/Question.h"

#include "base/Failure.h"
#include "base/Text.h"

#include <fstream>

namespace {

// Asks until the answer is accepted.
template <typename IsAccepted>
std::string answerTo(const std::string& question, IsAccepted isAccepted)
{
    std::ifstream in("/dev/tty");
    std::ofstream out("/dev/tty");
    if (!in || !out)
        throw Failure(0, "there is no terminal to ask a question on, and nothing is changed");
    for (std::string line; out << visible(question) << std::flush && std::getline(in, line);) {
        if (isAccepted(line))
            return line;
    }
    throw Failure(0, "no answer was given, and nothing is changed");
}

}  // namespace

char ask(const std::string& question, const std::string& letters)
{
    return answerTo(question, [&](const std::string& line) {
        return line.size() == 1 && letters.find(line[0]) != std::string::npos;
    })[0];
}

std::string askLine(const std::string& question)
{
    return answerTo(question, [](const std::string& line) { return !line.empty(); });
}
