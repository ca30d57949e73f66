// Which signals are held back.
#ifndef ZEBCFG_SIGNALMASK_H
#define ZEBCFG_SIGNALMASK_H

struct SignalMask {};  // one lock holds back all

#endif
