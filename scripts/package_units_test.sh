# shellcheck shell=bash
# The units of the packages that package_test.sh has installed, under a real manager of the user's.
# shellcheck disable=SC2154  # package_test.sh sets root and log

readonly home=/home/reader/.local/share/tidebrook
# Where the manager may have its groups of processes.
if [[ -e /sys/fs/cgroup/cgroup.procs ]]; then
    groups=(/sys/fs/cgroup/tidebrook-test)
else
    groups=(/sys/fs/cgroup/unified/tidebrook-test /sys/fs/cgroup/systemd/tidebrook-test)
fi

stopManager() {
    asUser systemctl --user exit 2>/dev/null || true
    wait "$manager" || true
    find "${groups[@]}" -depth -type d -exec rmdir {} +
}

# The root becomes that of the process, since in one that is merely changed, as by chroot, the kernel
# makes no namespaces of users.
runManager() {
    # shellcheck disable=SC2016  # expanded by the inner shell
    exec unshare --mount --propagation private sh -c '
        mount --rbind "$0" "$0" && cd "$0" && pivot_root . . && umount --lazy . && cd / &&
            exec setpriv --reuid=1000 --regid=1000 --clear-groups env -i HOME=/home/reader \
                PATH=/usr/bin:/bin XDG_RUNTIME_DIR=/run/user/1000 QT_QPA_PLATFORM=offscreen \
                no_proxy=127.0.0.1 /lib/systemd/systemd --user' "$root" </dev/null
}

# The manager takes the system for one that systemd has started, and finds what that would have made.
startManager() {
    local group
    mkdir -p "$root/run/systemd/system" "$root/run/systemd/unit-root"
    for group in "${groups[@]}"; do
        mkdir -p "$group" && chown --recursive 1000:1000 "$group" || return 1
    done
    (
        for group in "${groups[@]}"; do
            echo "$BASHPID" >"$group/cgroup.procs"
        done
        runManager
    ) >"$root/tmp/manager" 2>&1 &
    manager=$!
    cleaning+=(stopManager)
    await isManaged && return 0
    cat "$root/tmp/manager"
    return 1
}

isManaged() { [[ $(asUser systemctl --user is-system-running 2>/dev/null) == running ]]; }

property() { asUser systemctl --user show --property="$2" --value "$1"; }

# The process that serves the device, as the unit's log and the command line name it.
server() { asUser tidebrookctl "$@" service status | sed -n 's/^running, as process //p'; }

examineUnits() {
    local unit exposure
    for unit in feedlarkd.service tidebrook-today.service; do
        asUser systemd-analyze --user verify --man=no "$unit" 2>&1 | tee "$root/tmp/verified"
        [[ ! -s $root/tmp/verified ]]
        exposure=$(asUser systemd-analyze --user security --offline=true --no-pager \
            "/usr/lib/systemd/user/$unit" | sed -n 's/.*exposure level for .*: \([0-9]*\)\.\([0-9]*\) .*/\1\2/p')
        echo "$unit: exposure ${exposure%?}.${exposure: -1}"
        ((exposure < 30))
    done
}

# shellcheck disable=SC2120  # await hands over the options
# isServedByUnit [OPTION...]: as tidebrookctl with these options finds the device.
isServedByUnit() {
    local process
    process=$(server "$@")
    [[ -n $process && $process == "$(property feedlarkd MainPID)" ]]
}

isInactive() { [[ $(property "$1" ActiveState) == inactive ]]; }

# Of the two, the package enables the downloader for everyone.
checkEnabled() {
    await isServedByUnit
    [[ $(asUser systemctl --user is-enabled tidebrook-today) == disabled ]]
}

checkWithoutDevice() {
    asUser systemctl --user stop feedlarkd
    inRoot "$root" mv "$home" "$home.aside"
    asUser systemctl --user start feedlarkd
    await isInactive feedlarkd
    [[ $(property feedlarkd Result)/$(property feedlarkd ExecMainStatus) == success/3 ]]
    inRoot "$root" mv "$home.aside" "$home"
}

checkDownloader() {
    local byHand
    asUser tidebrookctl service start
    byHand=$(server)
    asUser systemctl --user start feedlarkd
    await isServedByUnit
    [[ $(server) != "$byHand" ]]
    asUser tidebrookctl request News Observer
    asUser tidebrookctl service start
    isServedByUnit
    asUser tidebrookctl service stop
    await isInactive feedlarkd
    [[ $(property feedlarkd Result) == success ]]
}

# What a unit's program starts goes on after the unit.
checkStartFromUnit() {
    asUser systemd-run --user --quiet --property=Type=oneshot /usr/bin/tidebrookctl service start
    [[ -n $(server) ]]
    asUser tidebrookctl service stop
}

checkOtherRoot() {
    local variables=/home/reader/.config/environment.d
    asUser mkdir -p "$variables"
    asUser cp --archive "$home" /home/reader/card
    asUser sh -c "echo TIDEBROOK_HOME=/home/reader/card >$variables/tidebrook.conf"
    asUser systemctl --user daemon-reload
    asUser systemctl --user start feedlarkd
    await isServedByUnit --home /home/reader/card
    asUser tidebrookctl --home /home/reader/card request News Courier
    [[ -z $(server) ]]
    asUser systemctl --user stop feedlarkd
    asUser rm -r /home/reader/card /home/reader/.config
    asUser systemctl --user daemon-reload
}

isLocked() { [[ -e $1 ]] && grep -q ":$(stat --format=%i "$1") " /proc/locks; }

checkToday() {
    asUser systemctl --user start tidebrook-today
    await isLocked "$root$home/run/TODAY.lock"
    asUser systemctl --user stop tidebrook-today
    [[ $(property tidebrook-today Result)/$(property tidebrook-today ExecMainStatus) == success/0 ]]
}

check "the units are valid and their exposure is below 3" examineUnits
if startManager >>"$log" 2>&1; then
    check "the downloader is started at login, the Today item is not" checkEnabled
    check "without a device the downloader's unit ends quietly" checkWithoutDevice
    check "the downloader's unit takes over, serves and ends" checkDownloader
    check "a downloader that a unit's program starts goes on" checkStartFromUnit
    check "the downloader's unit serves the device root of the environment" checkOtherRoot
    check "the Today item's unit runs and ends" checkToday
else
    omit "the units under a manager: systemd --user does not run here"
fi
