// Passwords typed by the user.
#ifndef ZEBCFG_PASSWORD_H
#define ZEBCFG_PASSWORD_H

#include <string>

// Asks on the terminal of the process, without echo. Throws Failure.
std::string askPassword(const std::string& prompt);

// Asks for a new one twice. Throws Failure when the two differ.
std::string askNewPassword();
// Throws Failure (19) for one that would be taken for an encoded one.
void requireClearPassword(const std::string& password);

#endif
