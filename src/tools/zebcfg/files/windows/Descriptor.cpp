#include "files/Descriptor.h"

#include "files/windows/Handle.h"

std::string Descriptor::name() const
{
    return nameOf(handleOf(number));
}
