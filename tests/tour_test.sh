#!/usr/bin/env bash
# tour_test.sh SAMPLE EXPECTED TOUR...: the tour runs on a copy of the sample file. Its answers, its report and the file that
# it leaves are the expected ones on every system, but for line ends, the name of the file, the texts of the system's LDAP
# library, places in the sources and encoded passwords.
set -euo pipefail
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
sample=$1 expected=$2
shift 2
cp "$sample" "$directory/zebslapd.conf"
LC_ALL=C.UTF-8 "$@" "$directory/zebslapd.conf" >"$directory/output"
plain() {
    LC_ALL=C sed -E 's/\r$//; s,[^ ]*zebslapd\.conf$,zebslapd.conf,; s/>1[^ ]*<$/>encoded</; s/(\.cpp):[0-9]+/\1/
        s/^(result|extended) +([0-9]{1,3}),.*/\1 \2/; s/^(ldapErr [0-9]{1,3}):.*/\1/' "$@"
}
cat "$directory/output" "$directory/zebslapd.conf" | plain | diff -u "$expected" -
clear=$(sed -n 's/^zeb-slapd[A-Za-z]*\(PW\|Password\): *//p' "$sample")
if grep -wF "$clear" "$directory/output" "$directory/zebslapd.conf"; then
    echo "a password stands in clear"
    exit 1
fi
