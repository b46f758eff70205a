#!/usr/bin/env bash
# batch-speed.sh [ROUNDS]: 1,000 documents of 110 KB, 5 of them broken, converted to text with --jobs 1 and --jobs 2 by
# turns. Prints the median times and their ratio; fails when a result is missing or not whole. Needs `./demo` to have run.
set -euo pipefail
cd -- "$(dirname -- "$0")/.."
rounds=${1:-7}
mifread=$PWD/build/demo/tools/mifread/mifread
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

for ((i = 0; i < 1000; i++)); do
    mkdir -p "$folder/in/$((i % 20))"
    cp examples/handbook.mif "$folder/in/$((i % 20))/$i.mif"
done
cd "$folder"
: >in/7/7.mif
head -c 110000 /dev/urandom >in/13/333.mif
head -c 110000 /dev/zero >in/0/500.mif
{ echo '<MIFFile 5'; head -c 110000 /dev/zero | tr '\0' ' '; } >in/17/777.mif
sed '1s/^/%/' in/1/1.mif >in/19/999.mif
"$mifread" text in/1/1.mif -d expected

# convert JOBS: one run, its time in seconds added to times.JOBS.
convert() {
    rm -rf results
    local start=$EPOCHREALTIME result=0
    "$mifread" text -r in -d results --jobs "$1" 2>messages || result=$?
    echo "$EPOCHREALTIME $start" | awk '{ print $1 - $2 }' >>"times.$1"
    [ "$result" -eq 1 ] || { echo "exit code $result"; exit 1; }
    [ "$(grep -c '^mifread: failed: in/\(7/7\|13/333\|0/500\|17/777\|19/999\)\.mif' messages)" -eq 5 ]
    [ "$(find results -type f | wc -l)" -eq 995 ]
    find results -type f -print0 | xargs -0 -n 1 cmp -s expected/1.txt
}
median() { sort -n "$1" | sed -n "$((rounds / 2 + 1))p"; }

for ((round = 0; round < rounds; round++)); do
    convert 1
    convert 2
done
awk -v one="$(median times.1)" -v two="$(median times.2)" 'BEGIN {
    printf "--jobs 1: %.3f s, --jobs 2: %.3f s, ratio %.2f; 995 results whole, 5 failures named\n", one, two, one / two }'
