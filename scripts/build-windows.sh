#!/usr/bin/env bash
# build-windows.sh: builds the library as a DLL and the host library for Windows, with 64 and with 32 bits, and checks that
# the DLL exports the entry points, undecorated, and nothing else. The tests of fuzz/, which convert all documents through
# the DLL in many ways, run under an emulator with 64 bits.
set -euo pipefail
cd -- "$(dirname -- "$0")/.."

scripts/install-packages.sh g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix wine64 g++ libgtest-dev

for machine in x86_64 i686; do
    toolchain=cmake/toolchains/$machine-windows.cmake build=build/$machine-windows
    scripts/cross-dependencies.sh "$toolchain" "$build/dependencies"
    cmake --no-warn-unused-cli -S . -B "$build" -G Ninja --toolchain "$toolchain" -DMIFREADER_BUILD_TOOLS=OFF \
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE=-O1 -DCMAKE_PREFIX_PATH="$PWD/$build/dependencies" >/dev/null
    cmake --build "$build" -- --quiet
    "$machine-w64-mingw32-objdump" -p "$build/src/mifreader.dll" >"$build/dll"
    diff <(sed -n '/Name Pointer] Table$/,/^$/s/.*\] //p' "$build/dll" | grep -v Table | sort) src/mifreader.symbols
    imports=$(sed -n 's/.*DLL Name: //p' "$build/dll" | sort | tr '\n' ' ')
    [ "$imports" = "KERNEL32.dll msvcrt.dll " ]
    echo "Windows, $machine: mifreader.dll exports the six entry points and needs ${imports}alone"
done

export WINEPREFIX=$PWD/build/x86_64-windows/wine WINEDEBUG=-all
WINEPATH=Z:$(realpath build/x86_64-windows/src) ctest --test-dir build/x86_64-windows --output-on-failure

# The token streams of the same documents as this machine gives them.
cmake --no-warn-unused-cli --preset release -B build/reference -DMIFREADER_BUILD_TOOLS=OFF >/dev/null
cmake --build build/reference --target make_seeds -- --quiet
build/reference/fuzz/make_seeds build/reference/seeds examples/*.mif tests/documents/*.mif
diff -r build/reference/seeds build/x86_64-windows/fuzz/seeds
echo "Windows, 64 bits: all documents give the same token streams as here, through the DLL under an emulator"
echo "Not ported: the program, which needs libmagic, oneTBB, iconv and POSIX files. Not run: 32 bits"
