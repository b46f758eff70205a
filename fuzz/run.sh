#!/usr/bin/env bash
# run.sh SECONDS [FUZZER...]: runs each fuzzer that long, from the seed corpus, the inputs that once failed and what
# earlier runs found worth keeping, and prints its executions and edges. Fails when one finds anything; the input is kept
# in build/fuzz/findings.
set -euo pipefail
cd -- "$(dirname -- "$0")/.."
seconds=${1:?how many seconds?}
shift
[ $# -gt 0 ] || set -- reader objects tokens html

scripts/install-packages.sh clang libclang-rt-14-dev cmake ninja-build libfmt-dev nlohmann-json3-dev libutfcpp-dev
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -- --quiet
build=build/fuzz
mkdir -p "$build/findings"
rm -rf "$build/seeds"
"$build/fuzz/make_seeds" "$build/seeds" examples/*.mif tests/documents/{,extended/}*.mif
fuzz/make-dictionary.sh >"$build/mif.dict"

failed=0
for fuzzer in "$@"; do
    log=$build/$fuzzer.log
    corpus=$build/corpus/$fuzzer
    folders=("$corpus" "$build/seeds/$fuzzer")
    mkdir -p "$corpus"
    [ ! -d "fuzz/regressions/$fuzzer" ] || folders+=("fuzz/regressions/$fuzzer")
    options=(-max_total_time="$seconds" -timeout=60 -rss_limit_mb=2048 -max_len=8192 -print_final_stats=1
        -artifact_prefix="$build/findings/$fuzzer-")
    [[ $fuzzer = tokens || $fuzzer = html ]] || options+=(-dict="$build/mif.dict")
    result=0
    TIMEFORMAT='%U'
    cpu=$({ time "$build/fuzz/${fuzzer}_fuzzer" "${options[@]}" "${folders[@]}" >"$log" 2>&1; } 2>&1) || result=$?
    executions=$(grep -aoP 'number_of_executed_units: \K\d+' "$log" || echo 0)
    edges=$(grep -aoP 'cov: \K\d+' "$log" | tail -1 || echo 0)
    echo "$fuzzer: $executions executions, $edges edges, $cpu s of CPU time"
    if [ "$result" -ne 0 ]; then
        failed=1
        grep -aE 'Does not hold|ERROR|runtime error|SUMMARY|Test unit written' "$log" || tail -20 "$log"
    fi
done
exit "$failed"
