// A terminal whose settings are changed for a while.
#ifndef ZEBCFG_RESTOREDTERMINAL_H
#define ZEBCFG_RESTOREDTERMINAL_H

#include <termios.h>

// Lets the signals that end a process give a terminal back its settings, as long as it lives. At most one may live.
class RestoredTerminal {
public:
    RestoredTerminal(int terminal, const termios& settings) noexcept;
    RestoredTerminal(const RestoredTerminal&) = delete;
    RestoredTerminal& operator=(const RestoredTerminal&) = delete;
    ~RestoredTerminal();
};

#endif
