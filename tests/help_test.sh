#!/usr/bin/env bash
# help_test.sh MIFREAD MANUAL COMPLETION: the source of the manual page and the completion for bash know the commands and
# options that the program's help tells, and no others.
set -uo pipefail
export LC_ALL=C # one order of names
manual=$(realpath -- "$2") completion=$(realpath -- "$3")
mifread=$1
source "$(dirname -- "$0")/support/cli.sh"
source /usr/share/bash-completion/bash_completion
source "$completion"

# section NAME: the first words of the lines in this section of a help on standard input, one name a line.
section() { sed -n "/^$1:/,/^\$/s/^  \([-a-z][-a-z0-9,]*\).*/\1/p" | tr , '\n' | sort; }
# complete_words WORD...: what is offered for the last of the words of a command line.
complete_words() {
    COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) COMP_LINE="$*" COMP_POINT=${#COMP_LINE} COMPREPLY=()
    _mifread mifread
    printf '%s\n' "${COMPREPLY[@]}" | sort
}
same() { diff "$2" "$3" || fail "$1"; }

"$mifread" --help >help
section Subcommands <help >commands
section Options <help >all
while read -r command; do
    "$mifread" "$command" --help | section Options >"$command"
    cat "$command" >>all
    same "completion of $command" <(grep '^--' "$command") <(complete_words mifread "$command" -)
done <commands
[ "$(wc -l <commands)" -gt 2 ] || fail "no commands in: $(cat help)"

same 'completion of commands' <(section Options <help | grep '^--' | sort - commands) <(complete_words mifread '')
same 'commands in the manual' commands <(sed -n '/^# COMMANDS/,/^# OPTIONS/s/^\*\([a-z]*\)\*$/\1/p' "$manual" | sort)
same 'the synopsis' commands <(sed -n 's/^\*mifread\* \*\([a-z]*\)\*.*/\1/p' "$manual" | sort)
same 'options in the manual' <(sort -u all) <(grep -P '^\t*\*-' "$manual" | grep -oP '\*\K--?[a-z0-9-]+(?=\*)' | sort -u)
same 'options that the manual speaks of' /dev/null <(grep -oP '\*\K--?[a-z0-9-]+(?=\*)' "$manual" | sort -u | comm -23 - <(sort -u all))

# Names of files.
mkdir -p folder/inner
touch folder/{one.mif,TWO.MIF,notes.txt,reader.so}
same 'documents' <(printf 'folder/%s\n' TWO.MIF inner one.mif) <(complete_words mifread text folder/)
same 'folders' <(echo folder/inner) <(complete_words mifread text -d folder/)
same 'plug-ins' <(printf 'folder/%s\n' inner reader.so) <(complete_words mifread text --plugin folder/)
same 'any file' <(ls -d folder/* | sort) <(complete_words mifread text --output folder/)
finish
