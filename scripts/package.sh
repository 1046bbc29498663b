#!/usr/bin/env bash
# package.sh [ARCHITECTURE]: builds the Debian packages into build/package/ARCHITECTURE/, from what
# is tracked. Those of another architecture are built in a root of their own, because their libraries
# would replace some of this machine's.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
source scripts/building.sh
source scripts/package_source.sh
source scripts/roots.sh

own=$(dpkg --print-architecture)
readonly own
readonly architecture=${1:-$own}
readonly out=build/package/$architecture

# A root that has all to build for the other architecture is kept.
buildCrossed() {
    local root=$rootsFolder/cross-$architecture
    if [[ ! -e $root/made ]]; then
        unpackRoot "$own" "$root"
        mountRoot "$root"
        inRoot "$root" dpkg --add-architecture "$architecture"
        inRoot "$root" apt-get -q update
        installInRoot "$root" build-essential "crossbuild-essential-$architecture" ccache fakeroot
        mkdir -p "$root/build" "$root/ccache"
        touch "$root/made"
    else
        mountRoot "$root"
    fi
    mkdir -p build/package/ccache
    mount --bind "$out" "$root/build"
    mount --bind build/package/ccache "$root/ccache"
    inRoot "$root" sh -c "cd /build/tidebrook && apt-get -q build-dep --yes \
        --no-install-recommends -a $architecture -P cross,nocheck ./"
    inRoot "$root" env CCACHE_DIR=/ccache DEB_BUILD_OPTIONS="nocheck parallel=$(jobLimit)" \
        sh -c "cd /build/tidebrook && dpkg-buildpackage -us -uc -b -a $architecture -Pcross,nocheck"
}

if [[ $architecture == "$own" ]]; then
    if command -v ccache >/dev/null; then
        CCACHE_DIR=$(ccache --get-config cache_dir) # the build has a home of its own
        export CCACHE_DIR
    fi
    exportSource "$out/tidebrook"
    buildPackages "$out/tidebrook"
else
    enterMounts "$0" "$@"
    exportSource "$out/tidebrook"
    log=$out/build.log
    echo "Building the packages for $architecture; the log is $log ..."
    set +e # within a condition, the function would go on behind a step that fails
    (
        set -e
        buildCrossed
    ) >"$log" 2>&1
    status=$?
    set -e
    if ((status != 0)); then
        tail -n 40 "$log" >&2
        exit 1
    fi
fi
echo "The packages are in $out/:"
(cd "$out" && ls -- *.deb)
