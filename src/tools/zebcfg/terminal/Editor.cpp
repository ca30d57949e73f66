#include "terminal/Editor.h"

#include "base/Failure.h"
#include "base/Locale.h"
#include "terminal/Program.h"

#include <set>
#include <vector>

namespace {

std::string editorName()
{
    for (const char* const variable : {"VISUAL", "EDITOR"}) {
        std::string value = environmentValue(variable);
        if (value.find_first_not_of(" \t\n\v\f\r") != std::string::npos)
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
    return known.count(plainName(program)) != 0;
}

}  // namespace

void runEditor(std::string file, int line)
{
    const std::string editor = editorName();
    std::vector<std::string> words = wordsOf(editor);
    if (line > 0 && takesLine(words.front()))
        words.push_back('+' + std::to_string(line));
    words.push_back(std::move(file));
    if (!runProgram(words, "the editor " + editor + " cannot be started"))
        throw Failure(0, "the editor " + editor + " failed, and nothing is changed");
}
