#!/usr/bin/env bash
# machines_test.sh MIFREAD EXAMPLES: the scripts that spread documents over machines, on this one. Failed and missing
# parts are done when a run is resumed, the others are not done again, and the results are whole.
set -uo pipefail
mifread=$1 examples=$2 scripts=$2/batch
source "$(dirname -- "$0")/support/cli.sh"
mkdir programs home
ln -s "$mifread" programs/mifread
export PATH=$PWD/programs:$PATH HOME=$PWD/home
# Two machines that are this one, reached as others are: with a shell that is named, as a login sets it.
printf 'one\ntwo\n' >machines
printf '#!/bin/sh\nwhile [ "$1" != -- ]; do shift; done\nshift\nSHELL=/bin/sh exec /bin/sh -c "$*"\n' >ssh
chmod +x ssh

for name in 'a b/1' 'a b/2' 'a b/c/3' "d'e/4" 5 6 7; do
    mkdir -p "in/$(dirname "$name")"
    cp "$examples/letter.mif" "in/$name.mif"
done
mv in/7.mif in/7.MIF
mkdir elsewhere
mv in/6.mif elsewhere
ln -s ../elsewhere/6.mif in/6.mif
run 0 '' text -q -r in -d expected
cp "in/a b/1.mif" good
use_broken() { echo 'no MIF' >"in/a b/1.mif"; } # in chunk 2 of 4, as digits are sorted before letters
repair() { cp good "in/a b/1.mif"; }
times_done() { awk -v chunk="$1" '$1 == chunk' 'by parallel.work/jobs.log' | wc -l; }

by_parallel() { CHUNK_SIZE=2 "$scripts/convert-all.sh" text in 'by parallel' "$@" >out 2>err; }
use_broken
by_parallel --sshlogin : --halt now,fail=1 && fail 'the broken document was not noticed'
says 'a b/1.mif: not a MIF' err
"$scripts/failures.sh" 'by parallel/' >failures || fail 'failures.sh'
says not-mif failures; says 'a b/1.mif: not a MIF' failures
[ -e 'by parallel.work/reports/1.json' ] && [ ! -e 'by parallel.work/reports/4.json' ] || fail 'stopped at the failure'
by_parallel --sshlogin : && fail 'the broken document was forgotten'
repair
by_parallel --ssh ./ssh --sshloginfile machines || fail "resuming: $(cat err)"
diff -r 'by parallel' expected || fail 'results by parallel'
[ "$(times_done 1) $(times_done 2) $(times_done 4)" = '1 3 1' ] || fail "$(cat 'by parallel.work/jobs.log')"
[ -z "$("$scripts/failures.sh" 'by parallel')" ] || fail 'failures of earlier runs are listed'

by_slurm() {
    local failed=0
    for task in 1 2 3 4; do
        SLURM_ARRAY_TASK_ID=$task SLURM_CPUS_PER_TASK=2 bash "$scripts/slurm-array.sh" text chunks 'by slurm/' 2>err ||
            failed=$((failed + 1))
    done
    return $failed
}
"$scripts/split.sh" in chunks/ 2
"$scripts/split.sh" in chunks 2 2>/dev/null && fail 'chunks were replaced'
use_broken
by_slurm; [ $? -eq 1 ] || fail 'the tasks that failed'
repair
rm 'by slurm.work/reports'/*
by_slurm || fail "the array again: $(cat err)"
[ "$(ls 'by slurm.work/reports')" = 2.json ] || fail 'the tasks that were done again'
diff -r 'by slurm' expected || fail 'results by slurm'
finish
