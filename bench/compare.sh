#!/usr/bin/env bash
# compare.sh [KIND...]: the reader beside the references, for each kind of document. Prints bytes of MIF a second, how
# many times as fast as libexpat and pugixml on the same tree the reader is, and its speed as a share of that of the
# copy and of the walk over the brackets. Every figure is the median of interleaved runs in one process.
#
# SIZES: sizes of the documents in bytes, of those in throughput.cpp (default 52428800). RUNS: how many (default 9).
set -euo pipefail
cd -- "$(dirname -- "$0")/.."

sizes=${SIZES:-52428800}
[ $# -gt 0 ] || set -- plain formatted tables objects small

scripts/install-packages.sh g++ cmake ninja-build libbenchmark-dev libexpat1-dev libpugixml-dev
cmake --preset release -B build/bench -DMIFREADER_BUILD_BENCHMARKS=ON -DMIFREADER_BUILD_TOOLS=OFF \
    -DMIFREADER_BUILD_TESTS=OFF >/dev/null
cmake --build build/bench --target throughput >/dev/null

format='%-10s %10s %9s %9s %9s %9s %9s\n'
printf "$format" kind bytes MB/s 'x expat' 'x pugixml' '/ copy' '/ walk'
for kind in "$@"; do
    for size in $sizes; do
        build/bench/bench/throughput --benchmark_filter="^$kind/$size/" --benchmark_repetitions="${RUNS:-9}" \
            --benchmark_enable_random_interleaving=true --benchmark_min_time=0.05 \
            --benchmark_report_aggregates_only=true --benchmark_format=csv 2>/dev/null |
            awk -F, -v format="$format" '
                # name, iterations, real time, CPU time, unit, bytes a second
                match($1, /[a-z]+_median/) { speed[substr($1, RSTART, RLENGTH - 7)] = $6; split($1, name, "[\"/]") }
                END {
                    if (!("reader" in speed))
                        exit 1
                    reader = speed["reader"]
                    printf format, name[2], name[3], sprintf("%.0f", reader / 1e6),
                        sprintf("%.2f", reader / speed["expat"]), sprintf("%.2f", reader / speed["pugixml"]),
                        sprintf("%.3f", reader / speed["copy"]), sprintf("%.3f", reader / speed["brackets"])
                }'
    done
done
