#!/bin/sh
# wine.sh PROGRAM [ARGUMENT...]: runs a program for Windows, with settings of its own in WINEPREFIX or beside the
# program's directory. Temporary files are in memory: a disk would make the tests wait.
: "${WINEPREFIX:=$(cd "$(dirname "$1")/.." && pwd)/wine}"
export WINEPREFIX WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml,winedbg.exe=' DISPLAY=
[ ! -w /dev/shm ] || export TMP='Z:\dev\shm' TEMP='Z:\dev\shm'
exec /usr/lib/wine/wine64 "$@"
