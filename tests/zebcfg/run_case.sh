#!/usr/bin/env bash
# run_case.sh TOOL SAMPLE CASE: runs the commands of a case, and compares what they do with what the case expects.
# README.md tells how a case is written. A tool for Windows is run by the program EMULATOR, and finds editors in
# PROGRAMS: line ends, names of files and the texts of the system's LDAP library are compared as they are on POSIX.
set -euo pipefail
tool=$(realpath "$1") sample=$(realpath "$2") case=$(realpath "$3") files=$(dirname "$(realpath "$0")")/files
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
parts=$directory/parts work=$directory/work
mkdir "$parts" "$work" "$directory/bin"
plain() { cat; }
times='%i %x %y'
if [ -n "${EMULATOR-}" ]; then
    times='%i %y'
    plain() {
        LC_ALL=C sed -E 's/\r$//; :next; s,(Z:[^ \\]*)\\,\1/,; t next; s,Z:/,/,g
            s,icacls FILE /inheritance:d /remove:g \*S-1-1-0 \*S-1-5-11 \*S-1-5-32-545 keeps,chmod o-r keeps,
            s,copy /b ([^ ]*)\+\,\,,touch \1,
            s/No Such (Object|Attribute)/No such \L\1/; s/Not allowed on Non-leaf/Operation not allowed on non-leaf/'
    }
    cat >"$directory/tool" <<END
#!/bin/bash
$(declare -f plain)
{ { "$EMULATOR" "$tool" "\$@" 2>&4 | plain >&3; exit \${PIPESTATUS[0]}; } 4>&1 | plain >&2; exit \${PIPESTATUS[0]}; } 3>&1
END
    chmod +x "$directory/tool"
    tool=$directory/tool
    export WINEPATH=Z:${PROGRAMS//\//\\}  # where it looks for editors
fi
cat >"$directory/bin/zebcfg" <<END
#!/bin/sh
case \$1 in __*) exec "$tool" "\$@" ;; *) exec "$tool" -F zebslapd.conf "\$@" ;; esac
END
chmod +x "$directory/bin/zebcfg"
export PATH=$directory/bin:$PATH LC_ALL=C.UTF-8
unset NO_COLOR VISUAL EDITOR ZEBCFG_FILE ZEBCFG_BACKUPS
export PROJECT=${files%/tests/zebcfg/files}

# One file for each section, in their order: its kind is the name behind the number, its argument the first line.
awk -v parts="$parts" '/^== / { file = sprintf("%s/%03d.%s", parts, ++n, $2); print $3 > file; next } file { print > file }' "$case"
failed=0 command=''
say() {
    echo "$(basename "$case"): $*"
    failed=1
}
body() { tail -n +2 "$1"; }
fingerprint() { stat -c "$times" "$work/zebslapd.conf" 2>/dev/null || true; }
same() { diff -u --label expected --label actual <(plain <"$1") <(plain <"$2") || say "$3"; }

# Runs the command of the last step, and compares.
finish_step() {
    [ -n "$command" ] && { [ -z "$isPosix" ] || [ -z "${EMULATOR-}" ]; } || return 0
    rm -rf "$directory/before"
    cp -a "$work" "$directory/before"
    local before actual=0
    before=$(fingerprint)
    (cd "$work" && bash -c "$command") <"$directory/input" >"$directory/out" 2>"$directory/err" || actual=$?
    local after
    after=$(fingerprint)
    same "$directory/output" "$directory/out" "standard output of: $command"
    same "$directory/errors" "$directory/err" "standard error of: $command"
    [ "$actual" = "$status" ] || say "exit status $actual instead of $status: $command"
    if [ -n "$result" ]; then
        same "$result" "$work/zebslapd.conf" "the resulting file of: $command"
        [ ! -e "$work/zebslapd.conf.bak" ] || same "$directory/before/zebslapd.conf" "$work/zebslapd.conf.bak" "the backup"
    elif [ -n "$changed" ]; then
        diff <(plain <"$directory/before/zebslapd.conf") <(plain <"$work/zebslapd.conf") | grep -a '^[<>]' >"$directory/lines" || true
        same "$changed" "$directory/lines" "the changed lines of: $command"
    else
        cmp "$directory/before/zebslapd.conf" "$work/zebslapd.conf" 2>/dev/null || [ ! -e "$work/zebslapd.conf" ] || say "the file is changed by: $command"
        [ "$before" = "$after" ] || say "inode or a time of the file is changed by: $command"
    fi
    for name in $(ls -A "$work"); do
        [ -e "$directory/before/$name" ] || [ "$name" = zebslapd.conf.bak ] || [[ " $made " = *" $name "* ]] || say "$name is left by: $command"
    done
}

start_step() {
    finish_step
    command=${1-} status=0 result='' changed='' made='' isPosix=''
    for name in input output errors; do : >"$directory/$name"; done
}

start_step
for part in "$parts"/*; do
    argument=$(head -n 1 "$part") kind=${part##*.}
    case $kind in
    file)
        start_step
        case $argument in
        sample) cp "$sample" "$work/zebslapd.conf" ;;
        '') body "$part" >"$work/zebslapd.conf" ;;
        *.conf) cp "$files/$argument" "$work/zebslapd.conf" ;;
        *) echo "there is no file $argument" && exit 1 ;;
        esac
        ;;
    with)
        start_step
        body "$part" >"$work/$argument"
        ;;
    command) start_step "$(body "$part")" ;;
    status) status=$argument ;;
    input | output | errors) body "$part" >"$directory/$kind" ;;
    result | changed)
        body "$part" >"$directory/$kind"
        declare "$kind=$directory/$kind"
        ;;
    made)
        made+=" $argument"
        ;;
    posix) isPosix=yes ;;
    *) echo "there is no section $kind" && exit 1 ;;
    esac
done
finish_step
[ "${#part}" -gt 0 ] && exit $failed
