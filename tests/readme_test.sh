#!/usr/bin/env bash
# readme_test.sh COMPILER README MIFREAD ARGUMENT...: the README's example compiles with the further compiler
# arguments, and prints the same text as mifread.
set -euo pipefail
compiler=$1 readme=$2 mifread=$3
shift 3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
sed -n '/^```cpp$/,/^```$/p' "$readme" | sed '/^```/d' >"$folder/example.cpp"
"$compiler" "$folder/example.cpp" -o "$folder/example" "$@"
cat >"$folder/a.mif" <<'END'
<MIFFile 8.00>
<Page <PageType BodyPage> <TextRect <ID 1> > >
<TextFlow
 <Para <PgfNumString `1.\t'> <ParaLine <TextRectID 1> <String `Größe: '> <Char Tab> <String `5 < 6'> <Char HardReturn> > >
 <Para <ParaLine <String `\xe4 end'> > >
>
END
"$folder/example" "$folder/a.mif" >"$folder/text"
diff "$folder/text" <("$mifread" text "$folder/a.mif")
[ "$(wc -l <"$folder/text")" -eq 3 ]
