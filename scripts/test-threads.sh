#!/usr/bin/env bash
# test-threads.sh: converts the examples and the documents of the tests with several threads under ThreadSanitizer. It
# does not see how oneTBB, which is built without it, hands documents from thread to thread: what two threads do one
# after the other there (nextJob and finishJob, where the pipeline is serial, and the tokens in between) is left out.
set -euo pipefail
cd -- "$(dirname -- "$0")/.."

build=build/threads
cmake --preset release -B "$build" -DMIFREADER_BUILD_TESTS=OFF -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS='-O1 -fsanitize=thread' >/dev/null
cmake --build "$build" --target mifread -- --quiet >/dev/null

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
documents=(examples/*.mif tests/documents/*.mif)
printf 'race:%s\n' nextJob finishJob create_token destroy_token >"$folder/serial"
export TSAN_OPTIONS="suppressions=$folder/serial print_suppressions=0 history_size=7 ignore_noninstrumented_modules=1 exitcode=66"
for round in 1 2 3; do
    for command in text html 'json --objects' objects info; do
        # shellcheck disable=SC2086 # the command has an option
        "$build/tools/mifread/mifread" $command "${documents[@]}" --jobs 4 -d "$folder/$round/${command// /}" \
            --report "$folder/report.json" >/dev/null 2>"$folder/messages" || { cat "$folder/messages"; exit 1; }
    done
    # In one output the documents wait for each other.
    "$build/tools/mifread/mifread" text "${documents[@]}" --jobs 4 >/dev/null 2>"$folder/messages" ||
        { cat "$folder/messages"; exit 1; }
done
echo "No data races in ${#documents[@]} documents with 4 threads"
