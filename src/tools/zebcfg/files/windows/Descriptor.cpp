#include "files/Descriptor.h"

#include "Handle.h"

std::string Descriptor::name() const
{
    return nameOf(handleOf(number));
}
