#!/usr/bin/env bash
# cross-test.sh MACHINE [CTEST-ARGUMENT...]: builds everything but the program for a machine that has a file in
# cmake/toolchains/, and runs all tests, in build/MACHINE.
set -euo pipefail
cd -- "$(dirname -- "$0")/.."
toolchain=cmake/toolchains/$1.cmake build=build/$1
shift

scripts/install-packages.sh binutils locales
scripts/cross-dependencies.sh "$toolchain" "$build/dependencies"
cmake --no-warn-unused-cli -S . -B "$build" -G Ninja --toolchain "$toolchain" -DMIFREADER_BUILD_TOOLS=OFF \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE=-O1 -DCMAKE_PREFIX_PATH="$PWD/$build/dependencies" >/dev/null
cmake --build "$build" -- --quiet
ctest --test-dir "$build" --output-on-failure --parallel "$(nproc)" "$@" >"$build/tests.log" || {
    cat "$build/tests.log"
    exit 1
}
grep 'tests passed' "$build/tests.log"
