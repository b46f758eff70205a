#!/usr/bin/env bash
# test-big-endian.sh [CTEST-ARGUMENT...]: builds the library, the host library and the tests for s390x, a big-endian
# machine, and runs the tests under an emulator, which takes many minutes.
set -euo pipefail
cd -- "$(dirname -- "$0")/.."

scripts/install-packages.sh g++-s390x-linux-gnu qemu-user
scripts/cross-test.sh s390x-linux "$@"

order=$(od -An -tu1 -j5 -N1 build/s390x-linux/src/libmifreader.so | tr -d ' ') # of the ELF file: 2 for big-endian
[ "$order" -eq 2 ]
echo "big-endian: the tests, all but those of the program, passed on s390x, under an emulator"
