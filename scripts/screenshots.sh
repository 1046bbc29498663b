#!/usr/bin/env bash
# Renders every screen and dialog into build/screenshots/, light and dark: on the smallest upright
# and wide devices, on a phone with two pixels to a logical one, and on a small and a large desktop.
# Those that the documents show, in docs/screenshots/, are replaced.

set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
source scripts/building.sh

build release screenshots
work=$(mktemp --directory)
trap 'rm -r "$work"' EXIT

# photograph WIDTH HEIGHT SCALE: on a screen of that size in logical pixels.
photograph() {
    printf '{"screens": [{"name": "device", "x": 0, "y": 0, "width": %d, "height": %d, %s}]}' \
        "$(($1 * $3))" "$(($2 * $3))" '"logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1' \
        >"$work/screens.json"
    env XDG_RUNTIME_DIR="$work" QT_SCALE_FACTOR="$3" LC_ALL=C.UTF-8 \
        QT_QPA_PLATFORM="offscreen:configfile=$work/screens.json" \
        build/release/bin/screenshots build/screenshots
}

photograph 240 320 1
photograph 320 240 1
photograph 360 720 2
photograph 1366 768 1
photograph 2560 1440 1
for shown in docs/screenshots/*.png; do
    [[ $shown == */today-x11.png ]] && continue # of a whole desktop, made by hand
    cp "build/screenshots/${shown##*/}" docs/screenshots/
done
echo "The pictures are in build/screenshots/; those in docs/screenshots/ are new."
