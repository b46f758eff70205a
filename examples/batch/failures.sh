#!/usr/bin/env bash
# failures.sh RESULT: lists the documents that were not converted, or not as a whole, by the reports in RESULT.work.
set -euo pipefail
jq --raw-output '.documents[] | select(.status | IN("converted", "left-alone") | not) | .status, .messages[]' "${1%/}.work"/reports/*.json
