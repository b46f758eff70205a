#!/usr/bin/env bash
# install_test.sh CMAKE BUILD: the installed tree works from wherever it is moved to: the program, its man page and
# completion are there, and programs can be built against the libraries.
set -euo pipefail
cmake=$1 build=$2
tests=$(dirname -- "$(realpath -- "$0")")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

"$cmake" --install "$build" --prefix "$folder/installed" >/dev/null
mv -- "$folder/installed" "$folder/moved"
cd "$folder/moved"
! grep -rlIF -e "$folder" -e "$build" . || { echo 'FAILED: these files name a folder of the build'; exit 1; }
for file in bin/mifread share/man/man1/mifread.1 share/bash-completion/completions/mifread \
    share/doc/mifread/token-stream.md share/doc/mifread/examples/batch/convert-all.sh; do
    [ -s "$file" ] || { echo "FAILED: no $file"; exit 1; }
done
python3 "$tests/links_test.py" .
bash "$tests/consumer/check.sh" . "$tests/../examples/handbook.mif" "$tests/../docs/host-interface.md"
