#!/usr/bin/env bash
# hosts_test.sh HOSTS ZEBCFG SAMPLE COLLECTION: runs the playbook of this folder for so many hosts, each a copy of the
# sample. Check mode predicts the first run and writes nothing, a second run changes nothing, no password is shown, and
# a refused value is a failed task that says why.
set -euo pipefail
hosts=$1 zebcfg=$2 sample=$3 collection=$4 here=$(dirname "$(realpath "$0")")
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
mkdir -p "$directory/ansible_collections/zeb" "$directory/hosts"
ln -s "$collection" "$directory/ansible_collections/zeb/ldapcfg"
for number in $(seq "$hosts"); do
    cp "$sample" "$directory/hosts/$number.conf"
    echo "host$number number=$number config=$directory/hosts/$number.conf zebcfg=$zebcfg"
done >"$directory/inventory"
export ANSIBLE_COLLECTIONS_PATH=$directory ANSIBLE_HOME=$directory/home ANSIBLE_PYTHON_INTERPRETER=/usr/bin/python3
export ANSIBLE_LOCALHOST_WARNING=false LC_ALL=C.UTF-8
fail() {
    echo "$1"
    tail -n 40 "$directory/output"
    exit 1
}
play() { ansible-playbook -i "$directory/inventory" -c local -f "$(($(nproc) * 2))" "$@" >"$directory/output" 2>&1; }
# The number of hosts of which the recap says this.
count() { grep -cE "^host[0-9]+ .*$1" "$directory/output" || true; }
state() { (cd "$directory/hosts" && stat -c '%n %i %y' -- *.conf && md5sum -- *.conf); }
expect() { [ "$(count "$1")" -eq "$hosts" ] || fail "$2"; }

for module in "$collection"/plugins/modules/*.py; do
    name=zeb.ldapcfg.$(basename "$module" .py)
    ansible-doc -t module "$name" >"$directory/output" 2>&1 || fail "$name has no documentation"
    grep -q '^EXAMPLES:' "$directory/output" || fail "$name has no examples"
done

before=$(state)
play --check --diff -vvv "$here/site.yml" || fail "check mode fails"
expect 'changed=6 .*failed=0' "check mode predicts other changes"
[ "$(state)" = "$before" ] || fail "check mode has changed a file"
grep -q '^+zeb-slapdSetenv: HOST=1$' "$directory/output" || fail "diff mode shows no change"
! grep -q 's3cret-' "$directory/output" || fail "check mode shows a password"

begin=$(date +%s%N)
play -vvv "$here/site.yml" || fail "the first run fails"
echo "the first run: $((($(date +%s%N) - begin) / 1000000 / hosts)) ms for each of $hosts hosts"
expect 'changed=6 .*failed=0' "the first run changes less or more than check mode has said"
! grep -q 's3cret-' "$directory/output" || fail "a run shows a password"
for number in 1 "$hosts"; do
    file=$directory/hosts/$number.conf
    [ "$("$zebcfg" -F "$file" get cn=Configuration zeb-slapdPort)" -eq $((1000 + number)) ] || fail "another port"
    "$zebcfg" check -q "$file" || fail "$file has findings"
done

before=$(state)
begin=$(date +%s%N)
play "$here/site.yml" || fail "the second run fails"
echo "the second run: $((($(date +%s%N) - begin) / 1000000 / hosts)) ms for each of $hosts hosts"
expect 'ok=6 +changed=0 .*failed=0' "the second run changes something"
[ "$(state)" = "$before" ] || fail "the second run has written a file"

! play -vv "$here/refused.yml" || fail "a refused value is no failure"
grep -q '"maximum": 65535' "$directory/output" || fail "a refused value comes without its limits"
[ "$(state)" = "$before" ] || fail "a refused value has changed a file"
