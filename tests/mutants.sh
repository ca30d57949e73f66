#!/usr/bin/env bash
# Puts faults into a copy of the sources, one at a time, and runs the tests: each should be noticed. Prints which test
# noticed it; ends with 1 if one survives. The argument: a word of the faults that are to be tried (all).
set -euo pipefail
cd "$(dirname "$0")/.."

table=tests/mutants.txt
copy=build/mutants/source
log=build/mutants/log

# The sources as they are, with what is not committed. What is the same keeps its time, and is not built again.
make_copy() {
    local file
    git ls-files | while IFS= read -r file; do
        cmp -s "$file" "$copy/$file" && continue
        mkdir -p "$(dirname "$copy/$file")"
        cp "$file" "$copy/$file"
    done
}

# Replaces a text that stands there once.
replace() {
    local file=$1 old=$2 new=$3 content
    content=$(cat "$file" && printf x)
    content=${content%x}
    [[ $content == *"$old"* && ${content#*"$old"} != *"$old"* ]] || return 1
    printf '%s' "${content/"$old"/"$new"}" >"$file"
}

run_tests() {
    ctest --test-dir "$copy/build/debug" -j "$(nproc)" --stop-on-failure --timeout 60 "$@" >"$log" 2>&1
}

# The test that has failed first.
red_test() {
    sed -n 's/^[[:space:]]*[0-9]* - \(.*\) (.*)$/\1/p' "$log" | head -n 1 | grep . || echo "a test"
}

try() {
    local file=$1 label=$2 test=$3 old=$4 new=$5 by=''
    [[ -n $file && "$file $label" == *"$pattern"* ]] || return 0
    cp -p "$copy/$file" build/mutants/original
    replace "$copy/$file" "$old" "$new" || { echo "$file: $label: its text does not stand there once" && exit 2; }
    cmake --build "$copy/build/debug" >"$log" 2>&1 || { echo "$file: $label: it does not compile, see $log" && exit 2; }
    [ -z "$test" ] || by=$(run_tests -R "$test" || red_test)
    [ -n "$by" ] || by=$(run_tests || red_test)
    cp build/mutants/original "$copy/$file"
    tried=$((tried + 1))
    [ -n "$by" ] || survivors=$((survivors + 1))
    printf '%-9s %s: %s%s\n' "$([ -n "$by" ] && echo noticed || echo SURVIVED)" "$file" "$label" "${by:+ ($by)}"
}

pattern=${1-}
tried=0
survivors=0
make_copy
cmake --preset debug -S "$copy" -B "$copy/build/debug" --log-level=WARNING >/dev/null
cmake --build "$copy/build/debug" >"$log" 2>&1 || { cat "$log" && exit 2; }
run_tests || { echo "without a fault: $(red_test) fails" && exit 2; }

file='' label='' test='' old='' new=''
while IFS= read -r line; do
    case $line in
        '@ '*)
            try "$file" "$label" "$test" "${old%$'\n'}" "${new%$'\n'}"
            line=${line#@ } file=${line%%: *} label=${line#*: } test='' old='' new=''
            ;;
        '= '*) test=${line#= } ;;
        '- '*) old+=${line#- }$'\n' ;;
        '+'*) line=${line#+} new+=${line# }$'\n' ;;
    esac
done <"$table"
try "$file" "$label" "$test" "${old%$'\n'}" "${new%$'\n'}"
echo "$tried faults, $survivors survived"
[ "$survivors" -eq 0 ]
