// The user's editor.
#ifndef ZEBCFG_EDITOR_H
#define ZEBCFG_EDITOR_H

#include <string>

// Lets the user edit a file, and waits. The editor is $VISUAL, $EDITOR or vi, started without a shell. Throws Failure
// when it fails.
void runEditor(std::string file);

#endif
