// Passwords out of a terminal or a file. Both throw Failure.
#ifndef ZEBCFG_PASSWORD_H
#define ZEBCFG_PASSWORD_H

#include <string>

// Asks on the terminal of the process, without echo.
std::string askPassword(const std::string& prompt);
// The content of a file without one line end behind it.
std::string readPasswordFile(const std::string& name);

#endif
