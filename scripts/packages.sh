# shellcheck shell=bash
# The Debian packages that the commands need, and how they get onto the machine.

# shellcheck disable=SC2034  # the lists are used where this is sourced
buildPackages=(
    build-essential cmake ninja-build pkg-config
    qt6-base-dev qt6-svg-dev fonts-dejavu-core xdg-utils
    qt6-base-private-dev libwayland-dev wayland-protocols libxcb1-dev
    libsqlite3-dev libcurl4-openssl-dev libssl-dev libexpat1-dev libsystemd-dev zlib1g-dev
    libgtest-dev dbus-daemon ca-certificates
)
# shellcheck disable=SC2034
testPackages=(scdoc man-db mandoc openssl zsh fish)
# shellcheck disable=SC2034
benchPackages=(libxml2-dev valgrind)
# shellcheck disable=SC2034
peerTools=(python3 time strace xvfb xdotool x11-utils x11-apps dbus-daemon)
# shellcheck disable=SC2034
peerPackages=(newsboat sfeed quiterss rssguard liferea akregator)
# shellcheck disable=SC2034
torturePackages=(python3 xvfb openbox qt6-wayland qt6-wayland-dev qt6-declarative-dev)
# shellcheck disable=SC2034
packagePackages=(scdoc debhelper dpkg-dev lintian appstream desktop-file-utils)
# shellcheck disable=SC2034
rootPackages=(debootstrap debian-archive-keyring)
# shellcheck disable=SC2034
checkPackages=(clang clang-format clang-tidy)
# shellcheck disable=SC2034
fuzzPackages=(clang libclang-rt-dev llvm)

isInstalled() {
    [[ $(dpkg-query --show --showformat='${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

# installPackages PURPOSE PACKAGE...: installs those that are missing, and says so.
installPackages() {
    local purpose=$1 package
    local missing=() asRoot=()
    shift
    if ! command -v dpkg-query >/dev/null; then
        printf 'dev: this is not a Debian system; install the likes of these yourself: %s\n' \
            "$*" >&2
        return 0
    fi
    for package in "$@"; do
        isInstalled "$package" || missing+=("$package")
    done
    if ((${#missing[@]} == 0)); then
        return 0
    fi
    if ((EUID != 0)); then
        if ! command -v sudo >/dev/null; then
            printf 'dev: Debian packages are missing %s, and installing them takes root or sudo,\n' \
                "$purpose" >&2
            printf 'neither of which is there. Have this done first:\n  apt-get install %s\n' \
                "${missing[*]}" >&2
            return 1
        fi
        asRoot=(sudo)
    fi
    printf 'Installing the Debian packages that are missing %s: %s\n' "$purpose" "${missing[*]}"
    "${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q update
    "${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get -q install --yes --no-install-recommends "${missing[@]}"
}
