#!/usr/bin/env bash
# test-threads.sh: converts the examples and the documents of the tests with several threads under ThreadSanitizer. What
# it cannot see into, oneTBB's hand-over of documents, is replaced by scripts/threads/.
set -euo pipefail
cd -- "$(dirname -- "$0")/.."

build=build/threads
cmake --preset release -B "$build" -DMIFREADER_BUILD_TESTS=OFF -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS="-O1 -fsanitize=thread -I$PWD/scripts/threads" >/dev/null
cmake --build "$build" --target mifread -- --quiet

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
folders=(examples tests/documents)
export TSAN_OPTIONS='history_size=7 exitcode=66'
# Some of the documents have losses, which is 1.
check() { [ "$1" -eq 1 ] || { cat "$folder/messages"; exit 1; }; }
for round in 1 2 3; do
    for command in text html 'json --objects' objects info; do
        # shellcheck disable=SC2086 # the command has an option
        "$build/tools/mifread/mifread" $command -r "${folders[@]}" --jobs 4 -d "$folder/$round/${command// /}" \
            --report "$folder/report.json" >/dev/null 2>"$folder/messages" || check $?
    done
    # In one output the documents wait for each other.
    "$build/tools/mifread/mifread" text -r "${folders[@]}" --jobs 4 >/dev/null 2>"$folder/messages" || check $?
done
echo "No data races in $(find "${folders[@]}" -name "*.mif" | wc -l) documents with 4 threads"
