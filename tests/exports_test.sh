#!/usr/bin/env bash
# exports_test.sh LIBRARY LIST: the shared library exports the symbols of the list and no others, and looks none
# of them up: where two readers are loaded, each runs its own functions. Of others it uses bytes, strings and numbers
# alone, beside what the compiler itself calls.
set -euo pipefail
diff <(nm -D --defined-only --format=posix "$1" | awk '$2 != "A" { sub(/@.*/, "", $1); print $1 }' | sort) "$2"
! readelf --relocs --wide "$1" | grep -Ff "$2"
! nm -D --undefined-only --format=posix "$1" | grep -vE '^(_|mem|str|frexp|ldexp)'
