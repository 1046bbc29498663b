#!/usr/bin/env bash
# Opens the reader, or gives the tour where there is no display for it.

set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
source scripts/building.sh

hasDisplay() {
    local number
    if [[ -n ${WAYLAND_DISPLAY:-} ]]; then
        return 0
    fi
    case ${DISPLAY:-} in
        "") return 1 ;;
        :*)
            number=${DISPLAY#:}
            [[ -S /tmp/.X11-unix/X${number%%.*} ]]
            ;;
        *) return 0 ;; # on another machine
    esac
}

if hasDisplay; then
    build release tidebrook feedlarkd
    exec build/release/bin/tidebrook
fi
echo "There is no display to open the reader on; here is the tour instead."
exec scripts/tour.sh
