# shellcheck shell=bash
# Completion of tidebrook, tidebrook-today and feedlarkd for bash: the options that the help names.

_tidebrook_options() {
    COMPREPLY=()
    if [[ $3 == --home ]]; then
        compopt -o dirnames
        return
    fi
    local options
    options=$("$1" --help 2>/dev/null | grep -oE -e '--[a-z]+' | sort -u)
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$2")
}

complete -F _tidebrook_options tidebrook tidebrook-today feedlarkd
