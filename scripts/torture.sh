#!/usr/bin/env bash
# torture.sh [OPTIONS] [CASE...]: builds what the torture needs, and runs it among mounts of its own.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
source scripts/building.sh

preset=release
targets=(torture ui_tests app_tests)
launcher=()
if [[ " $* " == *" --tsan "* ]]; then
    preset=tsan
    targets=(torture)
    launcher=(underThreadSanitizer)
fi
cmake --preset "$preset" >/dev/null # finds what was installed since the last time
build "$preset" "${targets[@]}"
mapping=()
if ((EUID != 0)); then
    mapping=(--map-root-user)
fi
export TORTURE_BIN=$PWD/build/$preset/bin PYTHONDONTWRITEBYTECODE=1
"${launcher[@]}" unshare "${mapping[@]}" --mount python3 tests/torture/torture.py "$@"
