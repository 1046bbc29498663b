#!/usr/bin/env bash
# peers.sh [OPTIONS] [CASE...]: measures the programs of the bench build beside other readers.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
source scripts/packages.sh

installPackages "to measure other readers" "${peerTools[@]}"
for option in "$@"; do
    if [[ $option == --install ]]; then
        installPackages "to compare with" "${peerPackages[@]}"
    fi
done
export BENCH_BIN=$PWD/build/bench/bin PYTHONDONTWRITEBYTECODE=1
exec python3 bench/peers/peers.py "$@"
