#!/usr/bin/env bash
#SBATCH --job-name=mifread
#SBATCH --cpus-per-task=4
#SBATCH --output=mifread-%A_%a.log
# slurm-array.sh COMMAND CHUNKS RESULT: one task of an array, which runs "mifread COMMAND" on the chunk of its number and
# notes in RESULT.work that it is done. Tasks that are done do nothing when the array is submitted again.
set -euo pipefail
command=$1 chunk=$2/$SLURM_ARRAY_TASK_ID result=${3%/}
report=$result.work/reports/$SLURM_ARRAY_TASK_ID.json
mark=$result.work/done/$SLURM_ARRAY_TASK_ID
[ ! -e "$mark" ] || exit 0

mkdir -p -- "$result.work/reports" "$result.work/done"
mifread "$command" --quiet --jobs "$SLURM_CPUS_PER_TASK" --recursive "$chunk" --directory "$result" --report "$report"
touch -- "$mark"
