// Questions on the terminal.
#ifndef ZEBCFG_QUESTION_H
#define ZEBCFG_QUESTION_H

#include <string>

// One of the letters. Throws Failure without a terminal, and at its end.
char ask(const std::string& question, const std::string& letters);

#endif
