#!/usr/bin/env bash
# check.sh PREFIX DOCUMENT C_EXAMPLE: programs built against the packages installed in PREFIX, through CMake and through
# pkg-config, print the same text as mifread of the plain stream. The C program is the one in the document C_EXAMPLE, which writes the same
# objects too. CXX, CC, CXXFLAGS and CFLAGS are used as CMake does.
set -euo pipefail
prefix=$(realpath -- "$1") document=$(realpath -- "$2") c_example=$(realpath -- "$3")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

cp -- "$(dirname -- "$0")"/{CMakeLists.txt,consumer.cpp} "$folder"
cd "$folder"
sed -n '/^```c$/,/^```$/p' "$c_example" | sed '/^```/d' >c_consumer.c
"$prefix/bin/mifread" text --plain "$document" >expected
iconv -f UTF-8 -t WINDOWS-1252 expected >c_expected
"$prefix/bin/mifread" objects "$document" -d objects >/dev/null
LD_LIBRARY_PATH=$(dirname -- "$(find "$prefix/lib" -name libmifreader.so.0)")
export LD_LIBRARY_PATH

prints_the_text() {
    "$1/consumer" "$document" | diff - expected
    rm -f -- *.object
    "$1/c_consumer" "$document" | diff - c_expected
    for object in objects/*; do
        name=${object##*/}
        cmp -- "$object" "${name%.*}.object"
    done
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
prints_the_text through-pkg-config
