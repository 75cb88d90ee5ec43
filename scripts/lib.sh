# shellcheck shell=bash
# What the scripts of this folder share. Sourced, never run: `. "$(dirname "$0")/lib.sh"`.

set -euo pipefail

# The checkout, whatever folder the script was called from.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck disable=SC2034 # used by the scripts that source this file
readonly root

# What building and running take, and what the tests add to it. All are Debian's own packages.
# shellcheck disable=SC2034
build_packages=(
    build-essential cmake ninja-build pkg-config ccache
    libzstd-dev libsodium-dev libxxhash-dev libsqlite3-dev libfmt-dev libcli11-dev
    nlohmann-json3-dev libarchive-dev shared-mime-info zstd cmark-gfm
)
# What the window takes; nothing else needs Qt.
# shellcheck disable=SC2034
window_packages=(qt6-base-dev qt6-svg-dev)
# shellcheck disable=SC2034
test_packages=(
    libgtest-dev libgmock-dev librapidcheck-dev clang clang-format clang-tidy
    acl attr e2fsprogs libcap2-bin xvfb xdotool openbox
    desktop-file-utils libglib2.0-bin
)
# What draws the manual's pictures and the animation, which are kept with the sources.
# shellcheck disable=SC2034
picture_packages=(
    xvfb xdotool openbox imagemagick pngquant librsvg2-bin gifsicle bubblewrap fonts-noto-core
    x11-utils procps
)

# A heading between the steps of a script; bold on a terminal.
say() {
    if [ -t 1 ]; then
        printf '\n\033[1m== %s\033[0m\n' "$*"
    else
        printf '\n== %s\n' "$*"
    fi
}

die() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

# Where the build may run in parallel: the processors this process may use.
jobs_count() { nproc; }

# install_packages NAME...
#
# Installs what is missing with apt-get, as root or through sudo. Asks dpkg first, so that a machine
# that has everything needs neither rights nor a network.
install_packages() {
    local missing=() name
    command -v dpkg-query >/dev/null ||
        die "this machine has no dpkg; install by hand what Debian calls: $*"
    for name in "$@"; do
        # shellcheck disable=SC2016 # the braces are dpkg's
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null)" = installed ] ||
            missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return 0

    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null ||
            die "missing packages: ${missing[*]} (installing them takes root or sudo)"
        as_root=(sudo)
    fi
    say "Installing ${#missing[@]} packages: ${missing[*]}"
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q update
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get -q install -y --no-install-recommends "${missing[@]}"
}
