#!/usr/bin/env bash
# readme_test.sh COMPILER README DOCUMENT MIFREAD ARGUMENT...: the README's example compiles with the further compiler
# arguments, and prints the same text as mifread.
set -euo pipefail
compiler=$1 readme=$2 document=$3 mifread=$4
shift 4
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
sed -n '/^```cpp$/,/^```$/p' "$readme" | sed '/^```/d' >"$folder/example.cpp"
"$compiler" "$folder/example.cpp" -o "$folder/example" "$@"
diff <("$folder/example" "$document") <("$mifread" text --plain "$document")
