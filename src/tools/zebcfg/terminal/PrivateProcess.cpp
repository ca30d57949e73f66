#include "terminal/PrivateProcess.h"

#include <sys/prctl.h>

void hideMemory()
{
    (void)::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
}
