#!/usr/bin/env bash
# check.sh PREFIX DOCUMENT C_EXAMPLE: programs built against the packages installed in PREFIX, through CMake and through
# pkg-config, print the same text as mifread. The C program is the one in the document C_EXAMPLE. CXX, CC, CXXFLAGS and
# CFLAGS are used as CMake does.
set -euo pipefail
prefix=$(realpath -- "$1") document=$(realpath -- "$2") c_example=$(realpath -- "$3")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

cp -- "$(dirname -- "$0")"/{CMakeLists.txt,consumer.cpp} "$folder"
cd "$folder"
sed -n '/^```c$/,/^```$/p' "$c_example" | sed '/^```/d' >c_consumer.c
"$prefix/bin/mifread" text "$document" >expected
iconv -f UTF-8 -t WINDOWS-1252 expected >c_expected

prints_the_text() {
    "$1/consumer" "$document" | diff - expected
    "$1/c_consumer" "$document" | diff - c_expected
}

cmake -G Ninja -S . -B through-cmake -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build through-cmake -- --quiet
prints_the_text through-cmake

PKG_CONFIG_PATH=$(dirname -- "$(find "$prefix/lib" -name mifhost.pc)")
export PKG_CONFIG_PATH
read -ra host < <(pkg-config --cflags --libs 'mifhost >= 0.1')
read -ra reader < <(pkg-config --cflags --libs 'mifreader >= 0.1')
read -ra cxxflags <<<"${CXXFLAGS:-}"
read -ra cflags <<<"${CFLAGS:-}"
mkdir through-pkg-config
"${CXX:-c++}" -std=c++20 "${cxxflags[@]}" consumer.cpp -o through-pkg-config/consumer "${host[@]}"
"${CC:-cc}" "${cflags[@]}" c_consumer.c -o through-pkg-config/c_consumer "${reader[@]}"
LD_LIBRARY_PATH=$(pkg-config --variable=libdir mifreader)
export LD_LIBRARY_PATH
prints_the_text through-pkg-config
