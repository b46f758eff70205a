#!/usr/bin/env bash
# manual_test.sh MIFREAD MANUAL EXAMPLES: the examples in the source of the manual page work, in a folder that holds the
# example documents. They are all its literal blocks, a command line to a line.
set -uo pipefail
manual=$(realpath -- "$2") examples=$3
mifread=$1
source "$(dirname -- "$0")/support/cli.sh"
mkdir programs work
ln -s "$mifread" programs/mifread
PATH=$PWD/programs:$PATH
sed -n '/^```$/,/^```$/p' "$manual" | grep -v '^```$' >lines
[ -s lines ] || fail 'no examples'

cd work || exit 1
while read -r line <&3; do
    rm -rf ./*
    mkdir manuals
    cp "$examples"/*.mif .
    cp "$examples"/*.mif manuals
    gzip --keep handbook.mif
    find . | sort >../before
    bash -o pipefail -c "$line" >../out 2>../err || fail "$line: exit code $?"
    grep -v 'documents: . converted$' ../err && fail "$line: messages"
    [ -s ../out ] || ! find . | sort | cmp -s - ../before || fail "$line: no result"
done 3<../lines
finish
