#!/usr/bin/env bash
# lint_test.sh FOLDER: fails when a formatter complains of a manual page in it. 77 when there is no
# formatter, or no page.
set -euo pipefail
shopt -s nullglob
readonly pages=("$1"/*.[1-9])
((${#pages[@]} > 0)) || exit 77
command -v man >/dev/null && command -v mandoc >/dev/null || exit 77
complaints=$(
    for page in "${pages[@]}"; do
        # Of scdoc's own are the empty paragraphs.
        mandoc -T lint -W warning "$page" | grep -v 'skipping paragraph macro' || true
        MANROFFSEQ='' man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null || echo "$page"
    done
)
[[ -z $complaints ]] || { echo "$complaints"; exit 1; }
