#!/usr/bin/env bash
# install_test.sh BUILD_DIRECTORY README SAMPLE
# Installs to a fresh prefix, and builds and runs the C example of the README there, as C89 with pkg-config and with
# find_package.
set -euo pipefail
here=$(dirname "$(realpath "$0")")
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
prefix=$directory/prefix
cmake --install "$1" --prefix "$prefix" >/dev/null

cd "$directory"
sed -n '/^```c$/,/^```$/p' "$2" | sed '/^```/d' >example.c
cp "$3" zebslapd.conf
pkgconfig=$(dirname "$(find "$prefix" -name zebldapcfg.pc)")
flags=$(PKG_CONFIG_PATH=$pkgconfig pkg-config --cflags --libs zebldapcfg)
# shellcheck disable=SC2086
cc -std=c89 -pedantic -Wall -Werror example.c $flags -o with_pkg_config
LD_LIBRARY_PATH=${pkgconfig%/pkgconfig} ./with_pkg_config zebslapd.conf >with_pkg_config.out

cp "$here/data/example/CMakeLists.txt" .
cmake -G Ninja -S . -B build -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build build >/dev/null
build/with_cmake zebslapd.conf >with_cmake.out

cmp with_pkg_config.out with_cmake.out
grep -q '^zeb-slapdPort: [0-9]' with_cmake.out
if grep -rlaF "$1" "$prefix"; then
    echo "the build directory stands in an installed file"
    exit 1
fi
