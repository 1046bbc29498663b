#!/usr/bin/env bash
# test.sh PRESET: builds the preset and runs its tests. The last line counts them, whatever came
# before; the exit status is 0 only if tests ran and all of them passed.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
source scripts/building.sh

readonly preset=$1
readonly log=build/$preset/tests.log

# How many tests run at once. Most wait more than they compute, but not where a sanitizer slows them.
testLimit() {
    if [[ $preset == release ]]; then
        echo "$((2 * $(jobLimit)))"
    else
        jobLimit
    fi
}

# One number from CTest's line for each test that has ended; a skipped test has not passed.
countTests() {
    local lines
    lines=$(grep -E '^ *[0-9]+/[0-9]+ +Test +#[0-9]+: ' "$log" || true)
    passed=$(grep -cE ' +Passed +[0-9.]+ sec$' <<<"$lines" || true)
    skipped=$(grep -cE '\*\*\*(Skipped|Not Run \(Disabled\)) ' <<<"$lines" || true)
    failed=$(($(grep -c . <<<"$lines" || true) - passed - skipped))
}

passed=0
skipped=0
failed=0
status=0
if build "$preset"; then
    env -u CLICOLOR_FORCE ctest --test-dir "build/$preset" --parallel "$(testLimit)" \
        --output-on-failure --no-tests=error --timeout 600 2>&1 | tee "$log" || status=$?
    countTests
else
    echo "The build failed, so no test ran."
    status=1
fi
if ((status == 0 && passed == 0)); then
    echo "No test ran."
    status=1
fi
if ((skipped > 0)); then
    echo "Skipped or disabled, and counted as neither passed nor failed: $skipped"
fi
echo "$passed passed, $failed failed"
exit "$((status != 0 || failed > 0))"
