#include "terminal/Question.h"

#include "base/Failure.h"
#include "base/Text.h"
#include "terminal/Dialogue.h"

namespace {

// Asks until the answer is accepted.
template <typename IsAccepted>
std::string answerTo(const std::string& question, IsAccepted isAccepted)
{
    Dialogue terminal;
    if (!terminal.isOpen())
        throw Failure(0, "there is no terminal to ask a question on, and nothing is changed");
    for (std::string line; terminal.answer(visible(question), line);) {
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
