# shellcheck shell=bash
# Debian systems of their own, in folders below build/package/roots/, to build and try packages in.

readonly rootsFolder=$PWD/build/package/roots

# enterMounts SCRIPT ARGUMENT...: runs the script anew in namespaces of its own, so that what it
# mounts and starts ends with it. Returns where the script is in these already.
enterMounts() {
    if [[ ${tidebrookMounts:-} == own ]]; then
        return 0
    fi
    if ((EUID != 0)) || ! unshare --mount --pid --fork true 2>/dev/null; then
        echo "dev: this makes a Debian system in a folder, which takes root (sudo ./dev ...) and" \
            "the right to mount and to make namespaces." >&2
        exit 1
    fi
    exec env tidebrookMounts=own unshare --mount --propagation private --pid --fork --kill-child \
        --mount-proc "$@"
}

# The lines "URI SUITE COMPONENT" of Debian's packages that this machine uses.
debianSources() {
    local lines
    # shellcheck disable=SC2016  # the names are for apt-get
    lines=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME) $(COMPONENT)' \
        "Created-By: Packages" "Origin: Debian" 2>/dev/null | sort -u | grep ' bookworm' || true)
    echo "${lines:-http://deb.debian.org/debian bookworm main}"
}

# emulate PROCESSOR: programs for it run by an emulator. This alone concerns the whole machine; a line
# in `cleaning` undoes it.
emulate() {
    local name=/proc/sys/fs/binfmt_misc/qemu-$1
    [[ -e /proc/sys/fs/binfmt_misc/register ]] ||
        mount --types binfmt_misc binfmt_misc /proc/sys/fs/binfmt_misc
    if [[ ! -e $name ]]; then
        cat "/usr/lib/binfmt.d/qemu-$1.conf" >/proc/sys/fs/binfmt_misc/register
        cleaning+=("echo -1 >$name")
    fi
}

# unpackRoot ARCHITECTURE FOLDER: a small, new Debian 12 in the folder. A copy of it is kept.
unpackRoot() {
    local processor=$1 folder=$2 kept=$rootsFolder/bare-$1.tar uri suite component
    if [[ ! -e $kept ]]; then
        echo "Making a bare Debian for $processor, which takes some minutes ..."
        rm -rf --one-file-system "$rootsFolder/bare"
        mkdir -p "$rootsFolder"
        uri=$(debianSources | awk '$2 == "bookworm" { print $1; exit }')
        debootstrap --arch="$processor" --variant=minbase bookworm "$rootsFolder/bare" "$uri" \
            >"$rootsFolder/debootstrap.log" || {
            tail "$rootsFolder/debootstrap.log" >&2
            return 1
        }
        rm -f "$rootsFolder"/bare/var/cache/apt/archives/*.deb
        tar --create --file="$kept.new" --directory="$rootsFolder/bare" .
        mv "$kept.new" "$kept"
        rm -rf --one-file-system "$rootsFolder/bare"
    fi
    rm -rf --one-file-system "$folder"
    mkdir -p "$folder"
    tar --extract --file="$kept" --directory="$folder"
    debianSources | while read -r uri suite component; do
        echo "deb $uri $suite $component"
    done >"$folder/etc/apt/sources.list"
    cp --dereference /etc/resolv.conf "$folder/etc/resolv.conf"
    printf '#!/bin/sh\nexit 101\n' >"$folder/usr/sbin/policy-rc.d" # no service starts in here
    chmod +x "$folder/usr/sbin/policy-rc.d"
}

# mountRoot FOLDER: what its programs need of the running system. Its devices are the harmless ones,
# and its own: whatever is deleted in there, those of this machine stay.
mountRoot() {
    local device
    mount --types proc proc "$1/proc"
    mount --rbind /sys "$1/sys"
    mount --types tmpfs -o mode=755 tmpfs "$1/dev"
    for device in null zero full random urandom tty; do
        cp --archive "/dev/$device" "$1/dev/"
    done
    mkdir "$1/dev/pts" "$1/dev/shm"
    chmod 1777 "$1/dev/shm"
    mount --types devpts -o newinstance,ptmxmode=0666 devpts "$1/dev/pts"
    ln -s pts/ptmx "$1/dev/ptmx"
    ln -s /proc/self/fd "$1/dev/fd"
    mount --types tmpfs tmpfs "$1/run"
    mount --types tmpfs tmpfs "$1/tmp"
}

# inRoot FOLDER COMMAND...: as root, with nothing of this machine's environment.
inRoot() {
    local folder=$1
    shift
    chroot "$folder" /usr/bin/env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 \
        DEBIAN_FRONTEND=noninteractive "$@" </dev/null
}

# installInRoot FOLDER PACKAGE...
installInRoot() {
    local folder=$1
    shift
    inRoot "$folder" apt-get -q install --yes --no-install-recommends "$@"
}
