#!/usr/bin/env bash
# torture.sh [OPTIONS] [CASE...]: builds what the torture needs, and runs it among mounts of its own.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
source scripts/building.sh

build release torture
mapping=()
if ((EUID != 0)); then
    mapping=(--map-root-user)
fi
export TORTURE_BIN=$PWD/build/release/bin PYTHONDONTWRITEBYTECODE=1
exec unshare "${mapping[@]}" --mount python3 tests/torture/torture.py "$@"
