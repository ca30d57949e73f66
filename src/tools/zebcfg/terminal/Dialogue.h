// The terminal of the process, whatever standard input and output are.
#ifndef ZEBCFG_DIALOGUE_H
#define ZEBCFG_DIALOGUE_H

#include <memory>
#include <string>

class Dialogue {
public:
    Dialogue();
    Dialogue(const Dialogue&) = delete;
    Dialogue& operator=(const Dialogue&) = delete;
    ~Dialogue();

    bool isOpen() const;
    // Shows the question, and gives a line in the encoding of the locale. False at the end.
    bool answer(const std::string& question, std::string& line);

private:
    struct Streams;
    const std::unique_ptr<Streams> streams;
};

#endif
