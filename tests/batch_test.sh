#!/usr/bin/env bash
# batch_test.sh MIFREAD EXAMPLES DOCUMENTS: many documents and folders at once.
set -uo pipefail
mifread=$1 examples=$2 documents=$3
source "$(dirname -- "$0")/support/cli.sh"

mkdir -p in/a/b empty
cp "$examples/letter.mif" in/a/b/one.MIF
cp "$examples/handbook.mif" in/a/two.mif
cp "$documents/formats.mif" in/text.mif
echo 'no document' >in/a/notes.txt
expect() { "$mifread" text "$1" 2>/dev/null; }

# Folders: their documents in the order of their names, and the tree kept.
run 0 '3 documents: 3 converted' text -r in
cat <(expect in/a/b/one.MIF) <(expect in/a/two.mif) <(expect in/text.mif) | cmp - out || fail 'a folder'
mv out joined
run 0 '' text -r in -d made/results -q
[ "$(cd made/results && find . -type f | sort | xargs)" = './a/b/one.txt ./a/two.txt ./text.txt' ] || fail 'the tree'
cat made/results/{a/b/one,a/two,text}.txt | cmp - joined || fail 'results beside each other'
run 3 'in: .*-r' text in
run 3 'empty: .*no .mif' text -r empty
run 2 'text.txt would be written twice' text in/text.mif in/text.mif -d made
run 2 'text.mif would be both read and written' text in/text.mif in/a/two.mif -o in/a/../text.mif
run 2 'read and written' text in/text.mif -d made --report in/text.mif
run 2 'standard output|- would be written twice' text in/text.mif --report -
run 2 'named twice' text - -
mkdir clash clash/x.txt && cp in/text.mif clash/x.mif && cp in/text.mif clash/x.txt/y.mif
run 1 'clash/x.mif: made/x.txt would be both a file and a folder' text -r clash -d made
cp in/text.mif clash/x.txt/y.MIF
run 3 'y.mif: .*twice: for clash/x.txt/y.MIF and clash/x.txt/y.mif' text -r clash/x.txt -d made
run 2 'exclude' text in/text.mif -d made -o result
run 3 'cannot make' text in/text.mif -d joined/results

# Only files and links to files are taken, whatever they are called.
mkdir odd 'odd/x.mif' && mkfifo odd/pipe.mif && ln -s ../in/text.mif odd/link.mif && ln -s . odd/loop
mkdir '[brackets]' && cp in/text.mif '[brackets]/[x].mif'
run 0 '' text '[brackets]/[x].mif' -q
run 0 '' text -r odd '[brackets]' -d made/odd -q
[ "$(cd made/odd && echo *)" = '[x].txt link.txt' ] || fail "odd files: $(ls made/odd)"
run 0 'odd/loop: a link to a folder' text -r odd
ln -s missing odd/gone.mif && ln -s missing odd/gone
run 1 'odd/gone: .*No such file' text -r odd
says 'failed: odd/gone.mif: cannot follow the link: No such file' err

# The report, or the list of objects, may be the first file in the folder for results.
run 0 '' text in/text.mif -d fresh/ --report fresh/reports/report.json && [ -e fresh/reports/report.json ] || fail 'a report'
run 0 '' objects "$documents/objects.mif" -d fresh/objects -o fresh/objects/list && [ -s fresh/objects/list ] || fail 'a list'

# The same output and messages whatever the number of threads, long parts in temporary files included.
for ((i = 0; i < 300; i++)); do cat in/a/two.mif; done >in/long.mif
for jobs in 1 2 7; do
    "$mifread" text -r in missing --jobs $jobs >out.$jobs 2>err.$jobs
    cmp out.1 out.$jobs && cmp err.1 err.$jobs || fail "--jobs $jobs"
done

# What fails is named where it happens and again at the end, and the others are converted.
printf 'PK\3\4' >in/a/broken.mif
head -c 5000 in/a/two.mif >in/cut.mif
run 1 'in/a/broken.mif: not a MIF' text -r in missing -d mixed --report report.json
says '7 documents: 4 converted, 1 converted with losses, 2 failed' err
says 'failed: in/a/broken.mif: not a MIF' err
[ "$(cd mixed && find . -type f | wc -l)" -eq 5 ] || fail 'results of a run with failures'
python3 - <<'END' || fail "the report: $(cat report.json)"
import json
report = json.load(open("report.json"))
status = {entry["input"]: entry["status"] for entry in report["documents"]}
assert status == {"in/a/b/one.MIF": "converted", "in/a/broken.mif": "not-mif", "in/a/two.mif": "converted",
                  "in/cut.mif": "losses", "in/long.mif": "converted", "in/text.mif": "converted",
                  "missing": "io-error"} , status
assert report["counts"] == {"converted": 4, "losses": 1, "leftAlone": 0, "failed": 2, "notBegun": 0} and report["exitCode"] == 1
assert report["documents"][0]["result"] == "mixed/a/b/one.txt"
END
run 4 'broken' text in/a/broken.mif in/a/two.mif --fail-fast --jobs 1 --report report.json; silent
says '2 documents: 0 converted, 1 not begun, 1 failed' err; says '"notBegun":1' report.json
run 5 'memory limit' text in/text.mif --max-memory 1k -d limited
run 5 'output limit' text in/long.mif --max-output 100k -d limited
[ -z "$(find limited -type f)" ] || fail 'a result of a document that reached a limit'

# A place that cannot be written to spoils one document, or the joined output, and nothing else.
mkdir places && : >places/objects
run 1 'objects.mif: .*cannot make' objects "$documents"/{objects,tables}.mif -d places --report report.json
[ -e places/tables/50.txt ] && says '"failed":1' report.json || fail 'objects of the other document'
run 3 'cannot write' text in/text.mif -o /dev/full --report report.json
says '"exitCode": 3' report.json
"$mifread" text in/text.mif missing -o result 2>/dev/full; [ $? -eq 1 ] && expect in/text.mif | cmp - result || fail 'full'
"$mifread" text in/text.mif missing -o result 2>&-; [ $? -eq 1 ] && expect in/text.mif | cmp - result || fail 'closed'

# Objects of several documents, each in its own folder.
run 0 '2 documents' objects --plain "$documents"/{objects,tables}.mif -d objects
diff -r objects/objects "$documents/objects" || fail 'objects of several documents'
[ "$(grep -c '^ID' out)" -eq 1 ] || fail 'one heading'
cut -f 6 out | tail -n +2 | xargs ls >/dev/null || fail 'the paths of the objects'

# Only documents that are not older than their results are converted again.
mkdir changing && cp in/text.mif changing/old.mif && cp in/text.mif changing/same.mif && cp in/text.mif changing/new.mif
run 0 '' text -q -r changing -d texts
for name in old same new; do echo kept >texts/$name.txt; touch -d '2020-01-02' texts/$name.txt; done
touch -d '2020-01-01' changing/old.mif; touch -d '2020-01-02' changing/same.mif; touch -d '2020-01-03' changing/new.mif
cp -a texts before
run 1 'missing.mif: cannot open' text -r changing missing.mif -d texts --update --dry-run
printf '%s\n' 'changing/new.mif -> texts/new.txt' 'changing/old.mif: left alone' 'changing/same.mif -> texts/same.txt' |
    cmp - out && diff -r texts before || fail "the plan: $(cat out)"
run 0 '3 documents: 2 converted, 1 left alone' text -r changing -d texts --update --report report.json
says kept texts/old.txt; cmp texts/same.txt texts/new.txt && cmp texts/new.txt <(expect in/text.mif) || fail 'updated'
says '"leftAlone":1' report.json; says '"status":"left-alone"' report.json
run 2 'directory' text changing/old.mif --update
run 0 '' objects "$documents/objects.mif" -d planned -o list --report report.new --dry-run
grep -q 'objects.mif -> planned/$' out && says 'report -> report.new' out && says 'objects -> list' out || fail 'a plan'
[ ! -e planned ] && [ ! -e list ] && [ ! -e report.new ] || fail 'a dry run wrote'

# Lists of documents.
printf 'in/text.mif\n\nin/a/b/one.MIF\r\nmissing.mif' >list
run 1 'missing.mif: .*No such' text in/a/two.mif --files-from list
cat <(expect in/a/two.mif) <(expect in/text.mif) <(expect in/a/b/one.MIF) | cmp - out || fail 'a list'
printf 'odd\nname.mif\0in/text.mif\0' >names && cp in/text.mif $'odd\nname.mif'
"$mifread" text -q --files-from - -0 <names >out && cmp out <(expect in/text.mif; expect in/text.mif) || fail 'names'
run 3 'names: byte 12: a NUL' text --files-from names
run 3 'unlisted: .*No such' text --files-from unlisted
run 2 'named twice' text - --files-from -
run 2 'read and written' text --files-from list -o list
printf 'in/text.mif\nchanging/../in/text.mif' >list
run 3 'text.mif: .*written twice' text --files-from list -d made
run 2 'FILE is required' text -q

# A run that is killed leaves no half-written result under a final name; one that is asked to end leaves nothing else.
mkdir many
for ((i = 0; i < 150; i++)); do cp in/a/two.mif many/$i.mif; done
for signal in KILL TERM HUP; do
    rm -rf made
    setsid "$mifread" text -r many in/long.mif -d made -q --report report.json &
    until [ -n "$(ls made 2>/dev/null | head -1)" ]; do sleep 0.01; done
    kill -s $signal $!
    wait $! 2>/dev/null
    [ $? -eq $((128 + $(kill -l $signal))) ] || fail "the exit status after $signal"
    for result in made/*.txt; do
        [ "$result" = made/long.txt ] || cmp "$result" mixed/a/two.txt || fail "half a result after $signal"
    done
    [ $signal = KILL ] && continue
    [ -z "$(find made -name '.*.tmp')" ] || fail "a temporary file after $signal"
    says '"interrupted": true' report.json
done

mkfifo pipe
sleep 10 >pipe &
"$mifread" text - <pipe &
sleep 0.5
kill $!
wait $! 2>/dev/null
[ $? -eq 143 ] || fail 'waiting for a pipe'

# A terminal is shown progress, which is gone at the end; nobody else is.
script -qec "$mifread text -r many in/long.mif --jobs 1 -d made" screen </dev/null >/dev/null
grep -qE '\[#* *\] +[0-9]+%.* of .* documents .*/s' screen || fail "no progress: $(tail -c 300 screen)"
tail -n 3 screen | grep -qaP '\r\x1b\[K' || fail 'progress is left'

finish
