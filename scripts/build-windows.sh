#!/usr/bin/env bash
# build-windows.sh: builds the library as a DLL, the host library and the program for Windows, with 64 and with 32 bits,
# and checks that the DLL exports the entry points, undecorated, and nothing else, and that the program needs no DLLs
# but this one and those of Windows. With 64 bits an emulator runs the tests of fuzz/, which convert all documents
# through the DLL in many ways, and the program, whose results are compared with those of the program on this machine.
set -euo pipefail
cd -- "$(dirname -- "$0")/.."

scripts/install-packages.sh g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix wine64 g++ libgtest-dev \
    libcli11-dev libfmt-dev libmagic-dev libtbb-dev nlohmann-json3-dev libutfcpp-dev

imports() { sed -n 's/.*DLL Name: //p' "$1" | sort | tr '\n' ' '; }

for machine in x86_64 i686; do
    toolchain=cmake/toolchains/$machine-windows.cmake build=build/$machine-windows
    scripts/cross-dependencies.sh "$toolchain" "$build/dependencies"
    cmake --no-warn-unused-cli -S . -B "$build" -G Ninja --toolchain "$toolchain" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_CXX_FLAGS_RELEASE=-O1 -DCMAKE_PREFIX_PATH="$PWD/$build/dependencies" >/dev/null
    cmake --build "$build" -- --quiet
    "$machine-w64-mingw32-objdump" -p "$build/src/mifreader.dll" >"$build/dll"
    diff <(sed -n '/Name Pointer] Table$/,/^$/s/.*\] //p' "$build/dll" | grep -v Table | sort) src/mifreader.symbols
    [ "$(imports "$build/dll")" = "KERNEL32.dll msvcrt.dll " ]
    echo "Windows, $machine: mifreader.dll exports the six entry points and needs $(imports "$build/dll")alone"
    "$machine-w64-mingw32-objdump" -p "$build/tools/mifread/mifread.exe" >"$build/exe"
    [ "$(imports "$build/exe")" = "KERNEL32.dll USER32.dll mifreader.dll msvcrt.dll ole32.dll urlmon.dll " ]
    echo "Windows, $machine: mifread.exe needs $(imports "$build/exe")alone"
done

build=$PWD/build/x86_64-windows
export LC_ALL=C.UTF-8 WINEPREFIX=$build/wine WINEDEBUG=-all WINEPATH=Z:$build/src
ctest --test-dir "$build" --output-on-failure

# The token streams of the same documents as this machine gives them.
documents=(examples/*.mif tests/documents/*.mif)
cmake --no-warn-unused-cli --preset release -B build/reference >/dev/null
cmake --build build/reference --target make_seeds mifread -- --quiet
build/reference/fuzz/make_seeds build/reference/seeds "${documents[@]}"
diff -r build/reference/seeds "$build/fuzz/seeds"
echo "Windows, 64 bits: all documents give the same token streams as here, through the DLL under an emulator"

# The program, here and there.
here() { build/reference/tools/mifread/mifread "$@"; }
there() { /usr/lib/wine/wine64 "$build/tools/mifread/mifread.exe" "$@"; }
results=build/reference/results
rm -rf "$results"
mkdir -p "$results"

# expect CODE COMMAND...: fails when the command ends otherwise.
expect() {
    local code=0
    "${@:2}" || code=$?
    [ "$code" = "$1" ] || { echo "exit code $code, not $1: ${*:2}" >&2; exit 1; }
}

# What Windows takes an object's data for, by its own rules: left out, data kept.
untyped() {
    sed -Ei 's/"mimeType":"[^"]*"//g; s/<(img|a)[^>]* (src|href)="data:[^,]*,([^"]*)">([^<]*<\/a>)?/[\3]/g' "$@"
}

diff <(here --version) <(there --version)
for machine in here there; do
    for command in text html json "json --objects" objects; do
        # shellcheck disable=SC2086 # the command has an option
        expect 0 $machine $command -q "${documents[@]}" -d "$results/$machine/${command// /}" >"$results/$machine-list"
    done
    for document in "${documents[@]}"; do
        expect 0 $machine tokens "$document" -o "$results/$machine/$(basename "$document").tokens"
    done
    expect 0 $machine info --json -q "${documents[@]}" >"$results/$machine/info"
    sed -i 's/"seconds":.*//' "$results/$machine/info"
    cut -f 1,3-5 "$results/$machine-list" >"$results/$machine/objects.list"
    untyped "$results/$machine"/*/*.html "$results/$machine"/*/*.jsonl "$results/$machine/info"
    for object in "$results/$machine"/objects/*/*; do
        mv "$object" "${object%.*}"
    done
done
diff -r "$results/here" "$results/there"

# Names, standard streams, results that are there already, failures.
name=$results/Überßicht
cp examples/report.mif "$name.mif"
expect 0 there text "$name.mif" -o "$name.txt"
expect 0 there text "$name.mif" -o "$name.txt"
expect 0 there text - <"$name.mif" | cmp - "$name.txt"
expect 0 there text - < <(cat "$name.mif") | cmp - "$name.txt" # a pipe
expect 0 there text --plugin mifreader.dll "$results/Ü*.mif" -d "$results/all"
cmp "$name.txt" "$results/here/text/report.txt"
cmp "$name.txt" "$results/all/Überßicht.txt"
expect 2 there text "$name.mif" -o "$name.MIF" 2>/dev/null
expect 3 there text "$results/missing.mif" 2>/dev/null
expect 3 there text "$name.mif" -o "$results/missing/text" 2>/dev/null
expect 4 there text README.md -o "$name.txt" 2>/dev/null
expect 1 there text README.md "$name.mif" -q 2>/dev/null | cmp - "$name.txt"
[ -z "$(find "$results" -name '.mifread-*')" ]
echo "Windows, 64 bits: mifread.exe gives the same results of all documents as here, but for the types of objects"
echo "Not run: 32 bits, for which there is no emulator here"
