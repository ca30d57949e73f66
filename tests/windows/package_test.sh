#!/usr/bin/env bash
# package_test.sh BUILD_DIRECTORY README SAMPLE EMULATOR CC TOOLCHAIN
# Unpacks what is packed, and builds the C example of the README there with pkg-config and with find_package. It runs on
# a sample with CR LF. A second program changes that sample, which it finds by the registry, and leaves CR LF; the tool
# finds nothing wrong with it.
set -euo pipefail
here=$(dirname "$(realpath "$0")")/..
directory=$(mktemp -d)
key='HKLM\SOFTWARE\ZEB\LDAP\Client'
build=$1 emulator=$4 cc=$5 toolchain=$6
export WINEPREFIX=${WINEPREFIX:-$build/wine}
trap 'rm -rf "$directory"; "$emulator" reg delete "$key" /v LDAPHome /f >/dev/null 2>&1 || true' EXIT
(cd "$build" && cpack -G ZIP -B "$directory" >/dev/null)
cd "$directory"
cmake -E tar xf zebldapcfg-*.zip
prefix=$(echo "$directory"/zebldapcfg-*/)
sed -n '/^```c$/,/^```$/p' "$2" | sed '/^```/d' >example.c
mkdir etc
sed 's/$/\r/' "$3" >etc/zebslapd.conf
cat >change.c <<'END'
#include <stdio.h>
#include <zebldapcfg.h>

int main(void)
{
    static char *ports[] = {"1389", NULL};
    static LDAPMod port = {LDAP_MOD_REPLACE, "zeb-slapdPort", {ports}};
    static LDAPMod *mods[] = {&port, NULL};
    CFG *writer = cfg_init();
    CFG *reader = cfg_init();
    CFGMessage *result = NULL;
    int code;

    code = cfg_bind_s(writer, "cn=admin, o=Example", "secret", LDAP_AUTH_SIMPLE);
    code = code != 0 ? code : cfg_modify_s(writer, "cn=Configuration", mods);
    code = code != 0 ? code : cfg_bind_s(reader, NULL, NULL, LDAP_AUTH_SIMPLE);
    code = code != 0 ? code : cfg_search_s(reader, "", LDAP_SCOPE_SUBTREE, "zeb-slapdPort=1389", NULL, 0, &result);
    printf("%d in %s\n", code != 0 ? -code : cfg_count_entries(reader, result), cfg_get_file_name(writer));
    cfg_msgfree(result);
    cfg_unbind(reader);
    cfg_unbind(writer);
    return 0;
}
END
flags=$(PKG_CONFIG_PATH=$prefix/lib/pkgconfig pkg-config --define-prefix --cflags --libs zebldapcfg)
for program in example change; do  # beside the library
    # shellcheck disable=SC2086
    "$cc" -std=c89 -pedantic -Wall -Werror $program.c $flags -o "$prefix/bin/$program.exe"
done
"$emulator" "$prefix/bin/example.exe" etc/zebslapd.conf >example.out

cp "$here/data/example/CMakeLists.txt" .
cmake -G Ninja -S . -B build --toolchain "$toolchain" -Dzebldapcfg_DIR="$prefix/lib/cmake/zebldapcfg" >/dev/null
cmake --build build >/dev/null
cp build/with_cmake.exe "$prefix/bin"
"$emulator" "$prefix/bin/with_cmake.exe" etc/zebslapd.conf >with_cmake.out
cmp example.out with_cmake.out
grep -q '^zeb-slapdPort: [0-9]' with_cmake.out

"$emulator" reg add "$key" /v LDAPHome /d "Z:${directory//\//\\}" /f >/dev/null
"$emulator" "$prefix/bin/change.exe" | tr -d '\r' | tee change.out
[ "$(cat change.out)" = "1 in Z:${directory//\//\\}\\etc\\zebslapd.conf" ]
grep -q $'^zeb-slapdPort: 1389\r$' etc/zebslapd.conf
own=$(grep -c $'^[^\r]*\r$' etc/zebslapd.conf || true)
[ "$(grep -c '' etc/zebslapd.conf)" -eq "$own" ] || { echo "only $own lines end in CR LF"; exit 1; }
"$emulator" "$prefix/bin/zebcfg.exe" -F etc/zebslapd.conf check
