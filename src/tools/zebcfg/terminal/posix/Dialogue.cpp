#include "terminal/Dialogue.h"

#include <fstream>

struct Dialogue::Streams {
    std::ifstream in{"/dev/tty"};
    std::ofstream out{"/dev/tty"};
};

Dialogue::Dialogue() : streams(std::make_unique<Streams>()) {}

Dialogue::~Dialogue() = default;

bool Dialogue::isOpen() const
{
    return streams->in && streams->out;
}

bool Dialogue::answer(const std::string& question, std::string& line)
{
    return streams->out << question << std::flush && std::getline(streams->in, line);
}
