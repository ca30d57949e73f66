// Passwords typed by the user.
#ifndef ZEBCFG_PASSWORD_H
#define ZEBCFG_PASSWORD_H

#include <string>

// Asks on the terminal of the process, without echo. Throws Failure.
std::string askPassword(const std::string& prompt);

#endif
