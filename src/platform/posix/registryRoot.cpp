#include "platform.h"

const char* registryRoot() noexcept
{
    return ZEBLDAPCFG_REGISTRY_ROOT;
}
