#!/bin/sh
# wine.sh PROGRAM [ARGUMENT...]: runs a program for Windows, with settings of its own beside the program's directory.
WINEPREFIX=$(cd "$(dirname "$1")/.." && pwd)/wine
export WINEPREFIX
export WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml=' DISPLAY=
exec /usr/lib/wine/wine64 "$@"
