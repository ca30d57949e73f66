#include "files/Input.h"

#include "files/Descriptor.h"

std::string shownInput(const std::string& name)
{
    return name == "-" ? standardInput : name;
}

std::string readInput(const std::string& name)
{
    return name == "-" ? withPlainLines(readAll(0, standardInput)) : readNamed(name);
}

std::string readPasswordFile(const std::string& name)
{
    std::string text = readNamed(name);
    if (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text;
}
