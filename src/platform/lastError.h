// The layer's own side of GetLastError.
#ifndef LASTERROR_H
#define LASTERROR_H

#include "platform.h"

void setLastError(DWORD number) noexcept;

#endif
