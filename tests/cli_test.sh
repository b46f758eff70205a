#!/usr/bin/env bash
# cli_test.sh MIFREAD PLUGIN EXAMPLES DOCUMENTS: exit codes, messages and output files of mifread.
set -uo pipefail
mifread=$1 plugin=$2 letter=$3/letter.mif documents=$4
source "$(dirname -- "$0")/support/cli.sh"

body='<Page <PageType BodyPage> <TextRect <ID 9>>>'
printf '<MIFFile 5>%s<TextRectID 9><Para <String `one'"'"'>>\n<Para <String `tw' "$body" >truncated.mif
printf '<MIFFile 5>%s<TextRectID 9><String `one'"'"'>\n<String `%5000s'"'"'>\n<String `two'"'"'>' "$body" x >long.mif
printf '<MIFFile 5>%s<TextRectID 9><String `a\\x81 b'"'"'>' "$body" >good.mif
printf '<MIFFile 5>%s<TextRectID 9><Char Tab><String `\\x8d \\xd2 x'"'"'><Char HardReturn>' "$body" >accents.mif
printf '<MIFFile 5>%s<TextRectID 9><String `a\201b'"'"'>' "$body" >undefined.mif
head -c 20000 /dev/urandom >random
: >empty

# Usage, help and version.
run 2 'no command; give one of text, '
run 2 'there are text, .*mifread text good.mif\?' good.mif
run 2 'Did you mean: mifread text\?' txt good.mif
run 2 'max-memory: must be more than 0$' text --max-memory 0 good.mif
for limit in memory work input output; do
    for size in -5 +5 0x10 K 1.5; do run 2 "max-$limit: must be a number of bytes" text --max-$limit=$size good.mif; done
    run 2 "max-$limit: is too large" text --max-$limit 99999999999999999999 good.mif
    run 2 "max-$limit: must be more than 0" text --max-$limit 00 good.mif
done
run 5 ' 10 bytes' text --max-input 010 good.mif
for time in -1 nan inf 1e400 soon; do run 2 '--timeout: must be a number of seconds from 0 to 1e9$' text --timeout $time good.mif; done
"$mifread" --help 2>err >/dev/full; [ $? -eq 3 ] || fail 'help on a full disk'
{ printf '<MIFFile 5>%s<TextRectID 9>' "$body"; for i in {1..20000}; do echo "<Para <String \`line $i'>>"; done; } >lines.mif
for command in text json; do
    "$mifread" "$command" lines.mif 2>err | head -n 1 >out
    [ "${PIPESTATUS[0]}" -eq 141 ] && [ ! -s err ] || fail "$command: nobody reads the rest; $(cat err)"
done
"$mifread" --version 2>err >&-; [ $? -eq 3 ] || fail 'the version on a closed standard output'
run 2 'help' text
run 2 'help' text --nonsense good.mif
run 2 'help' text --buffer 0 good.mif
run 0 '' --help; says 'Exit codes' out
run 0 '' text --help; says '--buffer' out
run 0 '' --version; grep -qE '^mifread [0-9]+\.[0-9]+\.[0-9]+$' out || fail 'version'

# What is wrong with an input: a message and a code for each.
run 3 'missing: .*No such file' text missing
run 3 '\.: .*directory' text .
run 4 'empty: .*empty' text empty; silent
run 4 'random: .*MIF' text random; silent

# What a file is instead of a document.
printf '\xef\xbb\xbf<MIFFile 5>' >bom
iconv -t UTF-16 good.mif >utf16
iconv -t UTF-16LE good.mif >utf16le
iconv -t UTF-16BE good.mif >utf16be
iconv -t UTF-32 good.mif >utf32
iconv -t UTF-32BE good.mif >utf32be
printf '\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\1\0\0\0\1\x8\2\0\0\0' >picture
gzip -c good.mif >zipped
printf '<Book 5.00>' >book
printf '%%PDF-1.4\n' >pdf
run 4 'bom: .*byte order mark' text bom
run 4 'utf16: .*iconv -f UTF-16 ' text utf16
run 4 'utf16le: .*iconv -f UTF-16LE ' text utf16le
run 4 'utf16be: .*iconv -f UTF-16BE ' text utf16be
run 4 'utf32: .*iconv -f UTF-32 ' text utf32
run 4 'utf32be: .*iconv -f UTF-32BE ' text utf32be
run 4 'picture: .*type is image/png$' text picture
run 4 'zipped: .*gunzip' text zipped
run 4 'book: .*a book' text book
run 4 'pdf: .*type is application/pdf$' text pdf
run 1 'truncated.mif: byte [0-9]+: .*ends inside' text truncated.mif; says one out
run 1 'long.mif: byte [0-9]+: .*4096' text long.mif; says two out
run 1 'undefined.mif: .*Windows-1252' text --plain undefined.mif
run 5 'good.mif: .*buffer' text --buffer 37 good.mif
for command in text html json info tokens 'objects -d none'; do
    run 5 'good.mif: .*memory limit' $command --max-memory 12K good.mif
done
run 3 'No such file|cannot open' text --plugin ./missing.so good.mif
run 1 'missing' text missing empty good.mif
run 1 'missing' text missing good.mif
run 4 'empty' text random empty

# Text in UTF-8.
run 0 '' text accents.mif
printf '\tç“x\n' | cmp -s - out || fail "text: $(cat out)"

# Streams, plug-in and output files.
"$mifread" text "$letter" >whole || fail 'the letter'
"$mifread" text - <"$letter" | cmp - whole || fail 'standard input'
cat "$letter" | "$mifread" text - --buffer 4096 | cmp - whole || fail 'a pipe'
"$mifread" text --plugin "$plugin" "$letter" | cmp - whole || fail 'the plug-in'
run 0 '' text "$letter" -o result; cmp result whole || fail 'an output file'
echo kept >result
run 4 'random' text random -o result; says kept result
run 4 'random' text random -o new; [ ! -e new ] || fail 'an empty output file'
run 1 'ends inside' text truncated.mif -o new; says one new
run 3 'cannot' text "$letter" -o missing/result
run 3 'cannot write' text "$letter" -o /dev/full
"$mifread" text "$letter" 2>err >/dev/full; [ $? -eq 3 ] || fail 'a full standard output'

# Links, pipes and devices that the user names are written to, and stay what they are.
ln -s linked link; mkfifo fifo
cat fifo >piped &
for place in link fifo /dev/null; do run 0 '' text "$letter" -o $place; done
wait $!
"$mifread" text "$letter" -o /dev/fd/3 3>&1 | cmp - whole || fail 'a descriptor'
cmp linked whole && cmp piped whole && [ -h link ] && [ -p fifo ] && [ -c /dev/null ] || fail 'what is no file'
[ -z "$(ls -A | grep -F .tmp)" ] || fail 'a temporary file is left'

# The listing.
run 0 '' tokens "$letter"
[ "$(head -1 out)" = 'page-setup width=12240 height=15840 left=1440 top=1440 right=1440 bottom=1440' ] || fail 'tokens'

# Embedded objects, byte for byte.
run 0 '' objects --plain "$documents/objects.mif" -d objects
diff -r objects "$documents/objects" || fail 'the objects'
[ "$(wc -l <out)" -eq $(($(ls objects | wc -l) + 1)) ] || fail 'the list of objects'
run 4 'random' objects random -d none; [ ! -e none ] || fail 'an empty folder'
run 3 'cannot|exists|directory' objects "$documents/objects.mif" -d "$letter"

finish
