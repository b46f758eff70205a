#!/usr/bin/env bash
# contributing_test.sh ROOT COMPILER MIFREAD: the statement that CONTRIBUTING.md adds sets its property, in the text and
# in a format that is selected.
set -euo pipefail
root=$1 compiler=$2 mifread=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

cp -r -- "$root/src" "$root/include" "$folder"
cd "$folder"
sed -n '/^```diff$/,/^```$/p' "$root/CONTRIBUTING.md" | sed '/^```/d' | patch -p1 --quiet --fuzz=0
find src -name '*.cpp' -print0 |
    xargs -0 -P 2 -n 4 "$compiler" -std=c++20 -fPIC -DMIF_BUILDING_SHARED -fno-exceptions -fno-rtti -fvisibility=hidden -Isrc -Iinclude -c
"$compiler" -shared -Wl,-Bsymbolic-functions ./*.o -o libmifreader.so
cat >document.mif <<'END'
<MIFFile 5.50>
<PgfCatalog <Pgf <PgfTag `Line'> <PgfFont <FNumericUnderlining Yes>>>>
<Page <PageType BodyPage> <TextRect <ID 9>>>
<TextFlow <TextRectID 9>
 <Para <PgfTag `Line'> <String `selected'>>
 <Para <FNumericUnderlining No> <String `off'> <FNumericUnderlining Yes> <String `on'>>>
END
diff <("$mifread" tokens --plugin ./libmifreader.so document.mif | grep -E 'underline|text ') - <<'END'
attribute underline on
text "selected"
attribute underline off
text "off"
attribute underline on
text "on"
attribute underline off
END
