#include "files/Input.h"

#include "files/Descriptor.h"

#include <iostream>
#include <iterator>

std::string shownInput(const std::string& name)
{
    return name == "-" ? standardInput : name;
}

std::string readInput(const std::string& name)
{
    if (name != "-")
        return readNamed(name);
    return withPlainLines({std::istreambuf_iterator<char>(std::cin), {}});
}

std::string readPasswordFile(const std::string& name)
{
    std::string text = readNamed(name);
    if (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text;
}
