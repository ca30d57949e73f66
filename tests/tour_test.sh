#!/usr/bin/env bash
# tour_test.sh SAMPLE TOUR...: the tour runs on a copy of the sample file, and no line of it is quarantined.
set -euo pipefail
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
sample=$1
shift
cp "$sample" "$directory/zebslapd.conf"
LC_ALL=C.UTF-8 "$@" "$directory/zebslapd.conf" >"$directory/output"
fail() {
    echo "$1"
    exit 1
}
if cmp "$sample" "$directory/zebslapd.conf" >/dev/null; then fail "the tour has changed nothing"; fi
if grep -i zeb-slapdInvalidLine "$directory/zebslapd.conf"; then fail "a line of the sample is quarantined"; fi
clear=$(sed -n 's/^zeb-slapd[A-Za-z]*\(PW\|Password\): *//p' "$sample")
if grep -wF "$clear" "$directory/output" "$directory/zebslapd.conf"; then fail "a password stands in clear"; fi
