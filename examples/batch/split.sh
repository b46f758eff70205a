#!/usr/bin/env bash
# split.sh SOURCE CHUNKS [SIZE]: makes the folder CHUNKS and in it the folders 1, 2, 3 ..., each with the tree of at most
# SIZE of the documents in SOURCE (1000 if not given). They are links, so SOURCE must stay where it is.
set -euo pipefail
source=$(realpath -- "$1") folder=${2%/} size=${3:-1000}
[ ! -e "$folder" ] || { echo "split.sh: $folder exists" >&2; exit 1; }
rm -rf -- "$folder.new"
mkdir -p -- "$folder.new/tree"
chunks=$(realpath -- "$folder.new")

number=0
while mapfile -d '' -n "$size" -t documents && [ ${#documents[@]} -gt 0 ]; do
    number=$((number + 1))
    cp --symbolic-link --parents --target-directory="$chunks/tree" -- "${documents[@]}"
    mv -- "$chunks/tree$source" "$chunks/$number"
done < <(find "$source" -xtype f -iname '*.mif' -print0 | LC_ALL=C sort -z)
[ "$number" -gt 0 ] || { echo "split.sh: there is no .mif document in $source" >&2; exit 1; }

rm -r -- "$chunks/tree"
mv -- "$chunks" "$folder"
