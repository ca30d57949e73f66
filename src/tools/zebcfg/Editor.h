// The user's editor at work on a text.
#ifndef ZEBCFG_EDITOR_H
#define ZEBCFG_EDITOR_H

#include <string>

// A directory that only this user may enter, with one file in it; both are gone at the end, also when a signal ends
// the process. The editor is $VISUAL, $EDITOR or vi, started without a shell.
class Editor {
public:
    // name: of the file, without a directory. Throws Failure.
    explicit Editor(const std::string& name);
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;
    ~Editor();

    // What the user makes of the text. Throws Failure when the editor fails.
    std::string edit(const std::string& text);

private:
    std::string directory;
    std::string file;
};

#endif
