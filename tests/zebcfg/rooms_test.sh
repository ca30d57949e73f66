#!/usr/bin/env bash
# rooms_test.sh DIRECTORY: each folder of the tool sees only those below it, and library/ alone calls the library.
set -euo pipefail
cd "$1"
rooms=(commands cli update check library formats files terminal base)
failed=0
for i in "${!rooms[@]}"; do
    above=$(IFS='|' && echo "${rooms[*]:0:i}")
    [ -n "$(ls "${rooms[i]}"/*.h "${rooms[i]}"/*.cpp 2>/dev/null)" ] || { echo "${rooms[i]}/ is empty" && failed=1; }
    [ -z "$above" ] || ! grep -rnE "#include \"($above)/" "${rooms[i]}" || failed=1
done
! grep -rnE '\b(cfg_[a-z_0-9]+|getDefaultConfigFilename) ?\(' $(printf '%s ' "${rooms[@]}" | sed 's/library//') || failed=1
exit $failed
