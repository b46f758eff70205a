# For the shell tests of mifread: a folder of their own to work in, and checks that count failures. The test sets mifread.
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
failures=0

fail() {
    echo "FAILED: $*"
    failures=$((failures + 1))
}

# run CODE MESSAGE ARGUMENT...: mifread ends with CODE, and says MESSAGE (a pattern; empty for nothing) on standard error.
run() {
    local code=$1 message=$2
    shift 2
    "$mifread" "$@" >out 2>err
    local result=$?
    [ "$result" -eq "$code" ] || fail "mifread $*: exit code $result, not $code; $(cat err)"
    if [ -n "$message" ]; then
        grep -qE -- "^mifread: .*$message" err || fail "mifread $*: no '$message' in: $(cat err)"
    elif [ -s err ]; then
        fail "mifread $*: unexpected: $(cat err)"
    fi
}

says() { grep -qF -- "$1" "$2" || fail "no '$1' in $2"; }
silent() { [ ! -s out ] || fail "something was printed: $(head -c 100 out)"; }

# finish: the result of the whole test.
finish() { [ "$failures" -eq 0 ]; }
