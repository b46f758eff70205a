#!/usr/bin/env bash
# make-dictionary.sh: prints a libFuzzer dictionary: all words that the reader's sources compare a document with, which
# are its string literals, statement names opened as statements too, and the signs of the format.
set -euo pipefail
cd -- "$(dirname -- "$0")/.."

names() { grep -ohP '^ .*\w\("\K\w+(?=")' src/reader/drive/{statement,extended}_table.cpp; }
words() { git ls-files 'src/*.cpp' | xargs grep -hv '^ *#include' | grep -oP '"(\\.|[^"\\])+"' | sort -u; }

[ "$(names | wc -l)" -ge 196 ]
words
names | sed 's/.*/"<& "/'
cat <<'END'
"`"
"'>"
"> "
">>>"
"\x0a"
"\x0d\x0a"
"\\\\x8a "
"\xc3\xbc"
"\xe2\x82\xac"
"\\\\t"
"\\\\>"
"\\\\Q"
"&\\\\x\x0a"
"=EndInset\x0a"
"\x0a&"
"\x0a&%v"
"\x0a="
"define(a, b)"
"include (a)"
"2147483647"
"4294967296"
"-1"
"0x1p9"
"1e400"
END
