#include "files/Descriptor.h"

std::string Descriptor::name() const
{
    return "/proc/self/fd/" + std::to_string(number);
}
