// The user's editor.
#ifndef ZEBCFG_EDITOR_H
#define ZEBCFG_EDITOR_H

#include <string>

// Lets the user edit a file, and waits. The editor is $VISUAL, $EDITOR or the usual one, started without a shell; one
// that is known to take it is told the line to begin at, from 1. Throws Failure when it fails.
void runEditor(std::string file, int line);

#endif
