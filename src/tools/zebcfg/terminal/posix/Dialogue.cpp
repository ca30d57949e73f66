#include "terminal/Dialogue.h"

Dialogue::Dialogue() : in("/dev/tty"), out("/dev/tty") {}

bool Dialogue::answer(const std::string& question, std::string& line)
{
    return out << question << std::flush && std::getline(in, line);
}
