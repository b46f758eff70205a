#!/usr/bin/env bash
# convert-all.sh COMMAND SOURCE RESULT [OPTION...]: runs "mifread COMMAND" on all documents in SOURCE, to RESULT, chunk by
# chunk, on this machine or, with the options of GNU Parallel that may follow, on others that see the same folders.
# RESULT.work keeps what is done: the same command line once more goes on where the last run stopped, and does again
# what failed. CHUNK_SIZE is how many documents make a chunk.
set -euo pipefail
command=$1 source=$2 result=$(realpath -- "$3")
shift 3
work=$result.work
mkdir -p -- "$work/reports"
[ -d "$work/chunks" ] || "$(dirname -- "$0")/split.sh" "$source" "$work/chunks" "${CHUNK_SIZE:-1000}"

# mifread uses all processors of a machine, so one at a time is enough there.
printf '%s\0' "$work"/chunks/* | sort --zero-terminated --version-sort |
    parallel --null --quote --jobs 1 --joblog "$work/jobs.log" --resume-failed "$@" \
        mifread "$command" --quiet --recursive {} --directory "$result" --report "$work/reports/{/}.json"
