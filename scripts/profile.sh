#!/usr/bin/env bash
# profile.sh [KIND...]: instructions per byte of the document, by function, while the reader's fill calls run, for each
# kind of document. They are the same from run to run, whatever else the machine does.
#
# BYTES: the size of the documents (default 1000000). LIBRARY: another build of the reader to count instead.
set -euo pipefail
cd -- "$(dirname -- "$0")/.."

bytes=${BYTES:-1000000}
[ $# -gt 0 ] || set -- plain formatted tables objects small

scripts/install-packages.sh g++ cmake ninja-build libutfcpp-dev libbenchmark-dev libexpat1-dev libpugixml-dev valgrind
cmake --preset release -B build/bench -DMIFREADER_BUILD_BENCHMARKS=ON -DMIFREADER_BUILD_TOOLS=OFF \
    -DMIFREADER_BUILD_TESTS=OFF >/dev/null
cmake --build build/bench --target sample >/dev/null

counts=$(mktemp)
trap 'rm -f -- "$counts"' EXIT
for kind in "$@"; do
    size=$(LD_PRELOAD=${LIBRARY:-} valgrind -q --tool=callgrind --callgrind-out-file="$counts" \
        --toggle-collect=mifFillBuffer build/bench/bench/sample convert "$kind" "$bytes")
    # A line is: COUNT (PERCENT) FILE:FUNCTION [OBJECT]
    callgrind_annotate --threshold=97 "$counts" | awk -v kind="$kind" -v size="$size" '
        match($0, /^ *[0-9,]+ \( *[0-9.]+%\) /) {
            count = $1
            gsub(/,/, "", count)
            name = substr($0, RLENGTH + 1)
            sub(/^ */, "", name)
            if (name ~ /^PROGRAM TOTALS/)
                name = kind ", " size " bytes"
            else {
                sub(/^[^:]*:/, "", name)
                sub(/ \[[^\]]*\]$/, "", name)
                name = "  " name
            }
            printf "%8.3f  %s\n", count / size, name
        }'
done
