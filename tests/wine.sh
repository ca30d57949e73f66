#!/bin/sh
# wine.sh PROGRAM [ARGUMENT...]: runs a program for Windows, with settings of its own in WINEPREFIX, or else in the
# build tree that the program's directory is a part of. Temporary files are in memory: a disk would make the tests wait.
if [ -z "${WINEPREFIX-}" ]; then
    tree=$(cd "$(dirname "${1-}")/.." && pwd)
    if [ ! -f "$tree/CMakeCache.txt" ]; then
        echo "wine.sh: '${1-}' is in no directory of a build tree: set WINEPREFIX, where wine keeps its settings" >&2
        exit 2
    fi
    WINEPREFIX=$tree/wine
fi
export WINEPREFIX WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml,winedbg.exe=' DISPLAY=
[ ! -w /dev/shm ] || export TMP='Z:\dev\shm' TEMP='Z:\dev\shm'
exec /usr/lib/wine/wine64 "$@"
