#!/usr/bin/env bash
# symbols_test.sh OBJDUMP { LIBRARY VERSION_SCRIPT NODE COUNT } ...
# A library exports the names of its version script as they stand there, and imports from the system and the codec only.
set -euo pipefail
objdump=$1
shift
while [ $# -gt 0 ]; do
    library=$1 script=$2 count=$4
    shift 4
    listed=$(sed -n '/^global:/,/^local:/s/^    \(.*\);$/\1/p' "$script" | sort)
    contents=$("$objdump" -p "$library")
    exported=$(sed -n '/Ordinal\/Name Pointer/,$s/^\t\[ *[0-9]*\] \([A-Za-z_0-9]*\)$/\1/p' <<<"$contents" | sort)
    diff <(printf '%s\n' "$listed") <(printf '%s\n' "$exported")
    [ "$(wc -l <<<"$exported")" -eq "$count" ] || { echo "$library exports another number than $count"; exit 1; }
    if sed -n 's/^\tDLL Name: //p' <<<"$contents" | grep -viE '^(api-ms-win-crt-[a-z0-9-]*|kernel32|advapi32|wldap32|libpwcodec)\.dll$'; then
        echo "$library imports from these"
        exit 1
    fi
done
