// The terminal of the process, whatever standard input and output are.
#ifndef ZEBCFG_DIALOGUE_H
#define ZEBCFG_DIALOGUE_H

#include <fstream>
#include <string>

class Dialogue {
public:
    Dialogue();
    bool isOpen() const { return in && out; }
    // Shows the question, and gives a line in the encoding of the locale. False at the end.
    bool answer(const std::string& question, std::string& line);

private:
    std::ifstream in;
    std::ofstream out;
};

#endif
