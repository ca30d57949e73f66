#!/usr/bin/env bash
# symbols_test.sh { LIBRARY VERSION_SCRIPT NODE COUNT } ...
# A library exports the names of its version script, bound to its node, and beside the node itself nothing else.
set -euo pipefail
while [ $# -gt 0 ]; do
    library=$1 script=$2 node=$3 count=$4
    shift 4
    listed=$(sed -n '/^global:/,/^local:/s/^    \(.*\);$/\1/p' "$script" | sort)
    exported=$(nm -D --defined-only "$library" | awk '{print $NF}' | grep -vx "$node" | sort)
    diff <(sed "s/\$/@@$node/" <<<"$listed") <(printf '%s\n' "$exported")
    [ "$(wc -l <<<"$listed")" -eq "$count" ] || { echo "$script lists another number than $count"; exit 1; }
    readelf -d "$library" | grep -q "SONAME.*\[$(basename "${library%.so*}").so\.1\]" || { echo "$library: soname"; exit 1; }
done
