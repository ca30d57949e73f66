// Questions on the terminal.
#ifndef ZEBCFG_QUESTION_H
#define ZEBCFG_QUESTION_H

#include <string>

// One of the letters. Throws Failure without a terminal, and at its end.
char ask(const std::string& question, const std::string& letters);

// A line that is not empty. Throws Failure in the same cases.
std::string askLine(const std::string& question);

#endif
