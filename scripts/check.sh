#!/usr/bin/env bash
# Everything that a change must pass besides the tests of the release build. Every step is run,
# also behind one that failed.
# shellcheck disable=SC2317  # the steps are called by their names

set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
source scripts/building.sh

readonly folders='platform|res|store|feed|update|share|subscriptions|kit|app|ui|today|reader|service|ctl|tests|tools|bench'
results=()
failures=0

step() {
    local name=$1 result=passed
    shift
    printf '\n== %s ==\n' "$name"
    if ! "$@"; then
        result=FAILED
        failures=$((failures + 1))
    fi
    results+=("$result  $name")
}

checkFormat() {
    find . -regextype posix-extended -regex "\./($folders)/.*\.(h|cpp)" -print0 |
        xargs -0 --no-run-if-empty clang-format --dry-run -Werror
}

# Only this build compiles every file of ours, and each by itself.
runTidy() {
    build clang &&
        run-clang-tidy -quiet -j "$(jobLimit)" -p build/clang "^$PWD/($folders)/"
}

runAddressSanitizer() {
    env ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1 UBSAN_OPTIONS=print_stacktrace=1 \
        LSAN_OPTIONS=suppressions="$PWD/tests/lsan_suppressions.txt:print_suppressions=0" \
        scripts/test.sh asan
}

runThreadSanitizer() {
    underThreadSanitizer scripts/test.sh tsan
}

# The suites that start no programs and wait for no clock, which runs too fast for valgrind. Compiled
# regular expressions read whole blocks, beyond the end of a text, so they are not compiled.
runMemcheck() {
    local suite status=0
    build release || return 1
    for suite in feed res share store subscriptions update; do
        env TIDEBROOK_PAUSES=0 QT_ENABLE_REGEXP_JIT=0 valgrind --quiet --error-exitcode=1 \
            --leak-check=full --errors-for-leak-kinds=definite --suppressions=tests/valgrind.supp \
            "build/release/bin/${suite}_tests" --gtest_brief=1 || status=1
    done
    return "$status"
}

step "formatting" checkFormat
step "build with clang" build clang
step "clang-tidy" runTidy
step "tests under AddressSanitizer and UndefinedBehaviorSanitizer" runAddressSanitizer
step "tests under ThreadSanitizer" runThreadSanitizer
step "tests under valgrind" runMemcheck
step "fuzzers" scripts/fuzz.sh

printf '\n'
printf '%s\n' "${results[@]}"
exit "$((failures > 0))"
