// Which signals are held back.
#ifndef ZEBCFG_SIGNALMASK_H
#define ZEBCFG_SIGNALMASK_H

#include <csignal>

using SignalMask = sigset_t;

#endif
