#!/usr/bin/env bash
# package_test.sh ARCHITECTURE: examines the packages in build/package/ARCHITECTURE/, and installs,
# uses, upgrades, removes and purges them in a new Debian of their own. Those of another
# architecture run by an emulator. Ends at the first fault; the last line is the result.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
source scripts/building.sh
source scripts/package_source.sh
source scripts/roots.sh
enterMounts "$0" "$@"

own=$(dpkg --print-architecture)
readonly own
readonly architecture=$1
readonly out=$PWD/build/package/$architecture
readonly root=$rootsFolder/test-$architecture
readonly scratch=$root.scratch
readonly older=0.0.9-1
readonly log=$rootsFolder/test-$architecture.log

emulated=
if [[ $architecture != "$own" ]]; then
    emulated=yes
fi
passed=0
notRun=0
cleaning=()

finish() {
    local status=$? command
    for command in "${cleaning[@]}"; do
        eval "$command" || true
    done
    if ((status == 0)); then
        echo "$passed checks of the packages for $architecture passed, none failed, $notRun not run."
    else
        echo "FAILED after $passed checks that passed; the whole log is $log"
    fi
}
trap finish EXIT
trap 'exit 130' INT TERM

# check NAME COMMAND...: the command must succeed; of a function, every step.
check() {
    local name=$1 status=0
    shift
    printf '\n== %s ==\n' "$name" >>"$log"
    set +e # within a condition, a function would go on behind a step that fails
    (
        set -e
        "$@"
    ) >"$log.step" 2>&1 </dev/null
    status=$?
    set -e
    if ((status != 0)); then
        cat "$log.step" >>"$log"
        tail -n 40 "$log.step" >&2
        echo "FAILED: $name"
        exit 1
    fi
    cat "$log.step" >>"$log"
    passed=$((passed + 1))
    echo "ok: $name"
}

omit() {
    notRun=$((notRun + 1))
    echo "NOT RUN: $1"
}

# await COMMAND...: until it succeeds, 20 seconds at most.
await() {
    local i
    for ((i = 0; i < 200; ++i)); do
        if "$@"; then
            return 0
        fi
        sleep 0.1
    done
    echo "in vain: $*"
    return 1
}

# asUser COMMAND...: as an ordinary user of the root.
asUser() {
    inRoot "$root" setpriv --reuid=1000 --regid=1000 --clear-groups env HOME=/home/reader \
        USER=reader XDG_RUNTIME_DIR=/run/user/1000 QT_QPA_PLATFORM=offscreen no_proxy=127.0.0.1 "$@"
}

# shellcheck disable=SC2016  # the field is for dpkg-query
version() { inRoot "$root" dpkg-query --show --showformat='${Version}' tidebrook; }

lint() {
    lintian --allow-root --fail-on error,warning --tag-display-limit 0 "$out"/*.changes
}

# The programs are position-independent, with read-only relocations and no executable stack.
checkPrograms() {
    local unpacked=$scratch/unpacked program
    rm -rf "$unpacked"
    for program in "$out"/*.deb; do
        dpkg-deb --extract "$program" "$unpacked"
    done
    for program in feedlarkd tidebrookctl; do
        readelf --dynamic "$unpacked/usr/bin/$program" >"$unpacked/dynamic"
        ! grep -E 'NEEDED.*(Gui|Widgets|xcb|wayland)' "$unpacked/dynamic" || return 1
    done
    for program in "$unpacked"/usr/bin/*; do
        readelf --file-header --program-headers --dynamic --wide "$program" >"$unpacked/headers"
        grep 'Type: *DYN (Position-Independent' "$unpacked/headers"
        grep 'FLAGS_1.*NOW.*PIE' "$unpacked/headers"
        grep GNU_RELRO "$unpacked/headers"
        grep 'GNU_STACK.* RW ' "$unpacked/headers"
    done
    desktop-file-validate "$unpacked"/usr/share/applications/*.desktop
    appstreamcli validate --pedantic --no-net "$unpacked"/usr/share/metainfo/*.xml
}

# Without the compiler cache, and in a folder of another name.
checkSameBytes() {
    local again=$scratch/built-again deb
    exportSource "$again/in-another-folder/tidebrook"
    CCACHE_DISABLE=1 buildPackages "$again/in-another-folder/tidebrook"
    for deb in "$out"/*.deb; do
        cmp "$deb" "$again/in-another-folder/${deb##*/}"
    done
    rm -rf "$again"
}

# The packages with an older version in their place of the new one.
makeOlder() {
    local deb folder=$scratch/older
    for deb in "$out"/tidebrook_*.deb "$out"/tidebrook-core_*.deb; do
        rm -rf "$folder"
        dpkg-deb --raw-extract "$deb" "$folder"
        sed -i "s/^Version: .*/Version: $older/; s/tidebrook-core (= [^)]*)/tidebrook-core (= $older)/" "$folder/DEBIAN/control"
        dpkg-deb --root-owner-group --build "$folder" "$root/packages/older/"
    done
    rm -rf "$folder"
}

# The packages of others that ours depend on, so that what is compared later are ours alone.
installOthers() {
    local windows core
    windows=$(dpkg-deb --field "$out"/tidebrook_*.deb Depends | sed 's/, tidebrook-core ([^)]*)//')
    core=$(dpkg-deb --field "$out"/tidebrook-core_*.deb Depends)
    inRoot "$root" apt-get -q update
    inRoot "$root" apt-get -q satisfy --yes --no-install-recommends "$windows, $core, python3, systemd"
}

prepareRoot() {
    unpackRoot "$architecture" "$root"
    mountRoot "$root"
    mkdir -p "$root/packages/older" "$root/run/user/1000"
    cp "$out"/tidebrook_*.deb "$out"/tidebrook-core_*.deb "$root/packages/"
    exportSource "$root/source/tidebrook"
    installOthers
    inRoot "$root" useradd --uid 1000 --user-group --create-home reader
    chown 1000:1000 "$root/run/user/1000"
    chmod 700 "$root/run/user/1000"
}

# What of the root's files is not the user's articles, and not the notes of apt and dpkg.
listFiles() {
    (cd "$root" && find . -xdev \
        \( -path ./var/cache -o -path ./var/log -o -path ./var/lib/apt -o -path './var/lib/dpkg/*-old' \
        -o -path ./packages -o -path ./source -o -path ./home/reader/.local \
        -o -path ./home/reader/.cache/fontconfig -o -name __pycache__ \) -prune -o -print | sort)
}

startFeeds() {
    : >"$root/tmp/feeds"
    asUser python3 -u -m http.server --bind 127.0.0.1 --directory /source/tidebrook/examples/feeds \
        0 >"$root/tmp/feeds" 2>&1 &
    for ((i = 0; i < 300; ++i)); do
        site=$(sed -nE 's|^Serving.* port ([0-9]+) .*|http://127.0.0.1:\1|p' "$root/tmp/feeds")
        [[ -z $site ]] || return 0
        sleep 0.1
    done
    return 1
}

# Qt has processes started in a way that qemu-user does not know.
startDownloader() {
    if [[ -n $emulated ]]; then
        asUser feedlarkd
    else
        asUser tidebrookctl service start
    fi
}

useOlder() {
    asUser mkdir -p /home/reader/.local/share/tidebrook/windows
    asUser touch /home/reader/.local/share/tidebrook/windows/RSSChannels.txt
    asUser tidebrookctl init
    asUser tidebrookctl add --create News Courier "$site/harbour_courier.xml"
    asUser tidebrookctl update
    asUser tidebrookctl mark Courier read
    asUser tidebrookctl add News Observer "$site/valley_observer.xml"
    startDownloader
    asUser tidebrookctl request News Observer
    asUser tidebrookctl setting UpdateInterval 3
}

# What a user has: channels with their counts, articles, settings.
dataOf() {
    asUser tidebrookctl channels && asUser tidebrookctl articles Courier &&
        asUser tidebrookctl articles Observer && asUser tidebrookctl setting
}

upgrade() {
    local before after process
    before=$(dataOf)
    process=$(asUser tidebrookctl service status)
    inRoot "$root" sh -c 'apt-get -q install --yes --no-install-recommends /packages/*.deb'
    [[ $(version) != "$older" ]]
    [[ $(asUser tidebrookctl service status) == "$process" ]]
    after=$(dataOf)
    diff <(echo "$before") <(echo "$after")
    asUser tidebrookctl request News Observer
    asUser tidebrookctl service stop
    startDownloader
    asUser tidebrookctl request News Courier
    [[ -z $(asUser tidebrookctl --quiet check) ]]
}

checkLeftovers() {
    listFiles | diff "$scratch/files-before" -
}

rm -rf --one-file-system "$log" "$scratch"
mkdir -p "$scratch"
check "lintian reports no error and no warning" lint
check "programs are hardened, the core has no windows, metadata is valid" checkPrograms
if [[ -n $emulated ]]; then
    emulate "$(dpkg-architecture --host-arch "$architecture" --query DEB_HOST_GNU_CPU 2>/dev/null)"
fi
check "a new Debian with what the packages depend on" prepareRoot
listFiles >"$scratch/files-before"
check "packages of an older version" makeOlder
check "installation of the older version" \
    inRoot "$root" sh -c 'apt-get -q install --yes --no-install-recommends /packages/older/*.deb'
startFeeds
readonly site
check "subscriptions, updates and the downloader of the older version" useOlder
check "the upgrade keeps all data and the running downloader" upgrade
check "the installed programs do their work" \
    asUser env EMULATED="$emulated" sh -c 'cd /source/tidebrook && debian/tests/installed-programs'
asUser tidebrookctl service stop
if [[ -z $emulated ]]; then
    source scripts/package_units_test.sh
else
    omit "the start of the downloader by other programs: qemu-user does not start processes as Qt does"
    omit "the units: no systemd runs by an emulator"
fi
dataBefore=$(dataOf)
check "removal" inRoot "$root" apt-get -q remove --yes tidebrook tidebrook-core
check "purge" inRoot "$root" apt-get -q purge --yes tidebrook tidebrook-core
check "nothing but the user's own data is left" checkLeftovers
check "installation of the new version on data of a removed one" \
    inRoot "$root" sh -c 'apt-get -q install --yes --no-install-recommends /packages/*.deb'
check "the data is still there" diff <(echo "$dataBefore") <(dataOf)
if [[ -z $emulated ]]; then
    check "two builds are the same bytes" checkSameBytes
else
    omit "two builds are the same bytes: that is tested for $own"
fi
