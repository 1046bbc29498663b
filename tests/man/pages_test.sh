#!/usr/bin/env bash
# pages_test.sh PROGRAMS PAGES: compares the commands and options that the manual pages name with
# those that the programs' help names.
set -euo pipefail
readonly programs=$1 pages=$2
# A program that does not know --help must neither go on nor touch the user's device.
export QT_QPA_PLATFORM=offscreen TIDEBROOK_HOME=/nonexistent
failures=0

# The options of a text, a line each.
options() {
    tr -d '*_' | grep -oE -e '(^|[^[:alnum:]-])--?[[:alpha:]][[:alnum:]-]*' | grep -oE -e '-.*' | sort -u
}

# section PAGE TITLE: a section of a page.
section() {
    sed -n "/^# $2\$/,/^# /p" "$pages/$1.1.scd"
}

# same WHAT PAGE HELP: fails unless both name the same, which is something.
same() {
    if [[ -z $2 || $2 != "$3" ]]; then
        printf '%s: the page (<) and the help (>) differ\n' "$1"
        diff <(echo "$2") <(echo "$3") || true
        failures=$((failures + 1))
    fi
}

for program in tidebrook tidebrook-today feedlarkd; do
    same "$program" "$(section $program OPTIONS | options)" \
        "$(timeout 20 "$programs/$program" --help | options)"
done

readonly ctl=$programs/tidebrookctl
same "tidebrookctl" "$(section tidebrookctl OPTIONS | options)" \
    "$("$ctl" help | sed -n '/^Options:/,$p' | options)"
named=$(section tidebrookctl COMMANDS)
commands=$("$ctl" help | sed -nE 's/^  ([a-z][a-z-]*).*/\1/p' | sort)
same "the commands" "$(sed -nE 's/^\*([a-z][a-z-]*)\*.*/\1/p' <<<"$named" | sort)" "$commands"
same "the commands that are completed" "$("$ctl" complete -- '' | cut -f 1 | sort)" "$commands"
for command in $commands; do
    # The name as well, for those that have no option.
    onPage=$(awk -v name="*$command*" '/^[^\t]/ { isThis = $1 == name } isThis' <<<"$named")
    same "$command" "$command $(options <<<"$onPage")" \
        "$command $("$ctl" help "$command" | options)"
done
exit "$((failures > 0))"
