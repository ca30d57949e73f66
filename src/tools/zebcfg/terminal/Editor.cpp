#include "terminal/Editor.h"

#include "base/Failure.h"
#include "terminal/Program.h"

#include <cstdlib>
#include <cstring>
#include <set>
#include <sstream>
#include <vector>

namespace {

std::string editorName()
{
    for (const char* const variable : {"VISUAL", "EDITOR"}) {
        const char* const value = std::getenv(variable);
        if (value != nullptr && value[std::strspn(value, " \t\n")] != '\0')
            return value;
    }
    return usualEditor;
}

// Whether the program takes +LINE in front of the file.
bool takesLine(const std::string& program)
{
    const std::set<std::string> known = {"vi",   "vim",    "nvim",  "nvi",   "vile",        "view", "elvis",
                                         "nano", "pico",   "joe",   "emacs", "emacsclient", "mg",   "zile",
                                         "jed",  "mcedit", "micro", "kak",   "ne",          "ee"};
    return known.count(program.substr(program.find_last_of('/') + 1)) != 0;
}

}  // namespace

void runEditor(std::string file, int line)
{
    const std::string editor = editorName();
    std::vector<std::string> words;
    std::istringstream in(editor);
    for (std::string word; in >> word;)
        words.push_back(word);
    if (line > 0 && takesLine(words.front()))
        words.push_back('+' + std::to_string(line));
    words.push_back(std::move(file));
    if (!runProgram(words, "the editor " + editor + " cannot be started"))
        throw Failure(0, "the editor " + editor + " failed, and nothing is changed");
}
