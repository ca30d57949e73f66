#!/usr/bin/env bash
# package_test.sh BUILD_DIRECTORY README SAMPLE EMULATOR CC TOOLCHAIN
# Unpacks what is packed, and builds the C example of the README there with pkg-config and with find_package. It runs on
# a sample with CR LF and leaves one.
set -euo pipefail
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
build=$1 emulator=$4 cc=$5 toolchain=$6
(cd "$build" && cpack -G ZIP -B "$directory" >/dev/null)
cd "$directory"
cmake -E tar xf zebldapcfg-*.zip
prefix=$(echo "$directory"/zebldapcfg-*/)
sed -n '/^```c$/,/^```$/p' "$2" | sed '/^```/d' >example.c
sed 's/$/\r/' "$3" >zebslapd.conf
flags=$(PKG_CONFIG_PATH=$prefix/lib/pkgconfig pkg-config --define-prefix --cflags --libs zebldapcfg)
mkdir bin
cp "$prefix"/bin/*.dll bin
# shellcheck disable=SC2086
"$cc" -std=c89 -pedantic -Wall -Werror example.c $flags -o bin/with_pkg_config.exe
WINEPREFIX=$build/wine "$emulator" "$directory/bin/with_pkg_config.exe" zebslapd.conf >with_pkg_config.out

cat >CMakeLists.txt <<'EOF'
cmake_minimum_required(VERSION 3.25)
project(example LANGUAGES C)
find_package(zebldapcfg 1.0 REQUIRED)
add_executable(with_cmake example.c)
target_link_libraries(with_cmake PRIVATE zebldapcfg::zebldapcfg)
EOF
cmake -G Ninja -S . -B build --toolchain "$toolchain" -Dzebldapcfg_DIR="$prefix/lib/cmake/zebldapcfg" >/dev/null
cmake --build build >/dev/null
cp build/with_cmake.exe bin
WINEPREFIX=$build/wine "$emulator" "$directory/bin/with_cmake.exe" zebslapd.conf >with_cmake.out

cmp with_pkg_config.out with_cmake.out
grep -q '^zeb-slapdPort: [0-9]' with_cmake.out
[ "$(grep -c '' zebslapd.conf)" -eq "$(grep -c $'[^\r]*\r$' zebslapd.conf)" ] || { echo "other line ends"; exit 1; }
