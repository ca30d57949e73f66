#include "LdifInput.h"

int runAdd(const Call& call)
{
    return applyLdif(call, LdifRecord::add);
}
