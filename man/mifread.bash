# Completion of mifread for bash.

_mifread()
{
    local cur prev words cword split
    _init_completion -s || return

    case $prev in
        -d | --directory)
            _filedir -d
            return
            ;;
        -o | --output | --report | --files-from)
            _filedir
            return
            ;;
        --plugin)
            _filedir so
            return
            ;;
        --encoding)
            COMPREPLY=($(compgen -W 'auto mif windows-1252 utf-8' -- "$cur"))
            return
            ;;
        -j | --jobs | --buffer | --max-memory | --max-output | --max-work | --max-input | --timeout)
            return
            ;;
    esac
    $split && return

    local single='--help --output --max-memory --max-output --max-work --max-input --timeout --buffer --encoding --plugin'
    local many="$single --directory --files-from --null --recursive --jobs --plain --fail-fast --dry-run --report --quiet"
    local batch="$many --update"
    local -A options=(
        [text]=$batch
        [html]="$batch --embed-pictures"
        [json]="$batch --objects"
        [objects]="$many --json"
        [info]="$batch --json"
        [tokens]="$single --extended"
    )
    local command=${words[1]}
    if ((cword == 1)); then
        COMPREPLY=($(compgen -W "${!options[*]} --help --version" -- "$cur"))
    elif [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "${options[$command]-}" -- "$cur"))
    else
        _filedir mif
    fi
} &&
    complete -F _mifread mifread
