#!/usr/bin/env bash
# build-32bit.sh [CTEST-ARGUMENT...]: builds the library, the host library and the tests for 32 bits, where the byte
# offsets of the host interface are asserted, and runs the tests.
set -euo pipefail
cd -- "$(dirname -- "$0")/.."

scripts/install-packages.sh g++-12-multilib
scripts/cross-test.sh i386-linux "$@"

class=$(od -An -tu1 -j4 -N1 build/i386-linux/src/libmifreader.so | tr -d ' ') # of the ELF file: 1 for 32 bits
[ "$class" -eq 1 ]
echo "32 bits: the byte offsets of the interface hold, and the tests, all but those of the program, passed"
