#!/usr/bin/env bash
# manual_test.sh BUILD_DIRECTORY VERSION_SCRIPT SAMPLE PAGE ...
# Installs to a fresh prefix. The pages there are sound, and each exported call leads to one that tells of it; the
# synopsis agrees with the header, and the example does what it says.
set -euo pipefail
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
prefix=$directory/prefix
cmake --install "$1" --prefix "$prefix" >/dev/null
cp "$3" "$directory/zebslapd.conf"

# A page as its reader sees it.
show() { mandoc "$1" | sed 's/.\x08//g'; }

cd "$(dirname "$(find "$prefix" -name zebldapcfg.3)")/.."
for page in "${@:4}"; do
    mandoc -T lint -W error "man${page##*.}/$page"
done
sed -n '/^global:/,/^local:/s/^    \(.*\);$/\1/p' "$2" | while read -r call; do
    [[ $(show "man3/$call.3") =~ [[:space:]]"$call()" ]] || { echo "no page tells of $call"; exit 1; }
done
show man3/zebldapcfg.3 | sed '/^DESCRIPTION/,$d' | sed -n '/#include/,$p' >"$directory/synopsis.c"
show man3/zebldapcfg.3 | sed -n '/^EXAMPLES/,/^NOTES/p' | sed -n '/#include/,/^ *}$/p' >"$directory/example.c"

cd "$directory"
pkgconfig=$(dirname "$(find "$prefix" -name zebldapcfg.pc)")
flags=$(PKG_CONFIG_PATH=$pkgconfig pkg-config --cflags --libs zebldapcfg)
# shellcheck disable=SC2086
cc -std=c89 -pedantic -Wall -Werror -include synopsis.c example.c $flags -o example
export LC_ALL=C.UTF-8 LD_LIBRARY_PATH=${pkgconfig%/pkgconfig}
./example zebslapd.conf 70000 2>report && exit 1
grep -qx 'zeb-slapdPort: 70000 is not within 1 to 65535' report
./example zebslapd.conf 1389
grep -qx 'zeb-slapdPort: 1389' zebslapd.conf
cmp "$3" zebslapd.bak
