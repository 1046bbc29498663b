#!/usr/bin/env bash
# fuzz.sh [--seconds N] [--corpus FOLDER] [TARGET...]: runs the fuzzers, or these, one after another,
# and reports a line for each. What it finds it keeps in build/fuzz/findings/, and then fails.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
source scripts/building.sh

readonly all=(feed opml dates device page http)
readonly findings=build/fuzz/findings
seconds=60
folders=()
targets=()
while (($# > 0)); do
    case $1 in
        --seconds) seconds=${2:-} && shift ;;
        --corpus) folders+=("${2:-}") && shift ;;
        *) targets+=("$1") ;;
    esac
    shift || true
done
((${#targets[@]} > 0)) || targets=("${all[@]}")
for target in "${targets[@]}"; do
    if [[ " ${all[*]} " != *" $target "* || ! $seconds =~ ^[1-9][0-9]*$ ]]; then
        echo "fuzz: the targets are ${all[*]}; --seconds takes a number, --corpus a folder" >&2
        exit 2
    fi
done
for folder in "${folders[@]}"; do
    [[ -d $folder ]] || { echo "fuzz: \"$folder\" is no folder" >&2 && exit 2; }
done

# The devices are synced to the disk all the time, so they lie in memory where that is possible.
temporary=$(mktemp --directory --tmpdir="$([[ -w /dev/shm ]] && echo /dev/shm || echo /tmp)")
trap 'rm -rf "$temporary"' EXIT
export TMPDIR=$temporary QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8
export ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1 UBSAN_OPTIONS=print_stacktrace=1
export LSAN_OPTIONS="suppressions=$PWD/tests/lsan_suppressions.txt:print_suppressions=0"

# The longest input, in bytes: a page is of a description, which has 3,000 characters. A thread of
# the server that ends just then looks like a leak, so answers are examined for leaks at the end only.
optionsOf() {
    case $1 in
        page) echo -max_len=6100 ;;
        http) echo -max_len=20000 -detect_leaks=0 ;;
        *) echo -max_len=20000 ;;
    esac
}

# report TARGET SECONDS LOG STATUS: how often it ran, how much code it reached, what it found.
report() {
    local executions reached found
    executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$3" | tail -n 1)
    reached=$(sed -n 's/^#.* cov: \([0-9]*\) .*/\1/p' "$3")
    reached=${reached:-0}
    found=$(sed -n 's/.*Test unit written to //p' "$3")
    if [[ -z $found ]]; then
        found=$( (($4 == 0)) && echo "no finding" || echo "failed")
    fi
    printf '%-7s %9s executions %6d s  %5d edges reached, %4d of them new  %s\n' "$1" \
        "${executions:-?}" "$2" "${reached##*$'\n'}" \
        "$((${reached##*$'\n'} - ${reached%%$'\n'*}))" "$found"
}

# What the fuzzer finds it keeps for the next run, in a corpus that grows beside the small one.
fuzz() {
    local target=$1 log=build/fuzz/$1.log grown=build/fuzz/corpus/$1 status=0 begin=$SECONDS
    mkdir -p "$grown" "$findings"
    # shellcheck disable=SC2046  # several options
    "build/fuzz/bin/fuzz_$target" $(optionsOf "$target") -len_control=0 -dict=tests/fuzz/words.dict \
        -max_total_time="$seconds" -timeout=60 -report_slow_units=60 -rss_limit_mb=2048 \
        -print_final_stats=1 \
        -artifact_prefix="$findings/$target-" "$grown" "tests/fuzz/corpus/$target" \
        "${folders[@]}" >"$log" 2>&1 || status=$?
    report "$target" "$((SECONDS - begin))" "$log" "$status"
    if ((status != 0)); then
        failed=1
        grep -E -m 12 'does not hold|ERROR: |SUMMARY: |^ +#[0-9]+ .*tidebrook' "$log" || tail -n 20 "$log"
    fi
}

build fuzz
failed=0
for target in "${targets[@]}"; do
    fuzz "$target"
done
exit "$failed"
