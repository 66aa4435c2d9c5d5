# SPDX-License-Identifier: MIT
# The packages that ./run and ./test need from the system's package manager (Debian 12, Ubuntu 24.04),
# and their installation. Both source this file; plain POSIX sh.

# Two names for the same package: the first one that is installed or available is used.
# NAME|OTHER is written with a bar.
PACKAGES_BUILD="g++ cmake ninja-build qt6-base-dev libsqlite3-dev binutils-mingw-w64-x86-64 ncurses-bin"
PACKAGES_SHOW="fonts-dejavu-core"
PACKAGES_HEADLESS="xvfb"
PACKAGES_WINDOWS="cmake ninja-build g++-mingw-w64-x86-64 g++-mingw-w64-i686 nsis zip"
PACKAGES_DEB="dpkg-dev librsvg2-bin"
# libkrb5-3 is for the unpacked telnetd of the peer tests, libvterm-dev for the benchmarks,
# python3-pycryptodome for the SSH-1 test server, googletest and Wine for the Windows program;
# locales for its code pages, iproute2 for the network that its dial is tried in; libncurses-dev,
# ncurses-term and the programs after it for the terminal's description; openbox and what follows for
# the package and its window; clang-format and clang-tidy, in the one version that the project uses, for
# the style; weston to qt6-wayland for the tests under Wayland, dbus to gir1.2-atspi
# for those of a screen reader.
PACKAGES_TEST="libgtest-dev clang libclang-rt-dev|libclang-rt-14-dev|libclang-rt-18-dev
    xvfb xauth x11-utils xdotool xclip imagemagick socat libkrb5-3 libvterm-dev libbenchmark-dev
    libgmp-dev libssl-dev openssh-client python3-asyncssh python3-paramiko python3-twisted
    python3 python3-pycryptodome googletest wine wine64 locales iproute2
    weston sway grim qt6-wayland dbus-daemon dbus-bin at-spi2-core python3-gi gir1.2-atspi-2.0
    libncurses-dev ncurses-term vim nano less mc dialog htop procps tmux w3m
    clang-format-14 clang-tidy-14 openbox lintian desktop-file-utils appstream man-db groff-base binutils"
# The compilers of the other processors: each is a download of 45 MB and takes 160 MB on disk.
device_packages() {
    echo qemu-user
    for device; do
        case $device in
            armel) echo g++-arm-linux-gnueabi ;;
            *) echo "g++-$device-linux-gnu" ;;
        esac
    done
}
TOOLS_BUILD="c++ cmake ninja tic x86_64-w64-mingw32-windres"

is_installed() {
    [ "$(dpkg-query -W -f '${Status}' "$1" 2>/dev/null)" = "install ok installed" ]
}

can_be_had() {
    [ -n "$(apt-cache madison "$1" 2>/dev/null)" ]
}

as_root() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        echo "This needs root and there is no sudo: $*" >&2
        return 1
    fi
}

# Prints the names of missing packages, one alternative of each choice.
missing_packages() {
    for choice; do
        found=
        first=
        for name in $(echo "$choice" | tr '|' ' '); do
            if is_installed "$name"; then
                found=yes
                break
            fi
            [ -n "$first" ] || ! can_be_had "$name" || first=$name
        done
        [ -n "$found" ] || echo "${first:-${choice%%|*}}"
    done
}

all_can_be_had() {
    for name; do
        can_be_had "$name" || return 1
    done
}

apt_quietly() {
    as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=300 "$@" \
        >"$packages_log" 2>&1
}

install_with_apt() {
    packages_log=$(mktemp "${TMPDIR:-/tmp}/quill-packages.XXXXXX")
    missing=$(missing_packages "$@")
    if [ -n "$missing" ] && ! all_can_be_had $missing; then
        echo "Fetching the package lists ..."
        apt_quietly update || cat "$packages_log" >&2
        missing=$(missing_packages "$@")
    fi
    if [ -n "$missing" ]; then
        echo "Installing:" $missing
        if ! apt_quietly install -y --no-install-recommends $missing; then
            # The package lists may be older than the servers' packages.
            apt_quietly update &&
                apt_quietly install -y --no-install-recommends $missing || {
                tail -n 20 "$packages_log" >&2
                rm -f "$packages_log"
                echo "These packages could not be installed:" $missing >&2
                return 1
            }
        fi
    fi
    rm -f "$packages_log"
}

# install_packages PACKAGES...: installs what is missing. Without apt-get it prints the list and
# succeeds if the tools for building are there.
install_packages() {
    if command -v apt-get >/dev/null && command -v dpkg-query >/dev/null; then
        install_with_apt "$@"
        return
    fi
    echo "There is no apt-get here. These packages (Debian's names) are needed:"
    for choice; do echo "    ${choice%%|*}"; done
    for tool in $TOOLS_BUILD; do
        command -v "$tool" >/dev/null || {
            echo "$tool is missing; install it and start again." >&2
            return 1
        }
    done
}

# configure_preset PRESET [CMAKE OPTIONS...] and build_preset PRESET [TARGETS...]: print only the
# builder's progress line, on a terminal; they show the log if something fails.
configure_preset() {
    mkdir -p build
    cmake --preset "$@" >"build/$1-configure.log" 2>&1 || {
        tail -n 40 "build/$1-configure.log" >&2
        return 1
    }
}

build_preset() {
    preset=$1
    shift
    targets=
    [ $# -eq 0 ] || targets="--target $*"
    if [ -t 1 ]; then
        cmake --build --preset "$preset" -j "$(job_count)" $targets
        return
    fi
    cmake --build --preset "$preset" -j "$(job_count)" $targets >"build/$preset-build.log" 2>&1 || {
        grep -A 15 FAILED "build/$preset-build.log" >&2 || tail -n 40 "build/$preset-build.log" >&2
        return 1
    }
}

job_count() { echo "${QUILL_JOBS:-$(getconf _NPROCESSORS_ONLN)}"; }
