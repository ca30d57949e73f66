#include "terminal/Dialogue.h"

#include "terminal/windows/Console.h"

struct Dialogue::Streams {
    Console console;
};

Dialogue::Dialogue() : streams(std::make_unique<Streams>()) {}

Dialogue::~Dialogue() = default;

bool Dialogue::isOpen() const
{
    return streams->console.isOpen();
}

bool Dialogue::answer(const std::string& question, std::string& line)
{
    return streams->console.write(question) && streams->console.readLine(line);
}
