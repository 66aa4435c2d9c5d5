# SPDX-License-Identifier: MIT
# Wine for 32-bit programs without an installation: the 64-bit Wine of the system with the 32-bit
# libraries of its package, which are downloaded and unpacked below build/. An installer runs in it, but
# a program with sockets does not, because Wine 8 does not start them there. Source this file after
# wine.sh and before prepare_prefix; it uses a separate prefix. Exit code 77: not possible here.
libraries32=$top/build/wine32-libraries
export WINEPREFIX="${QUILL_WINE_PREFIX:-$top/build/wine}32"

# A private list of packages, so that the machine's list does not change.
fetch_libraries32() {
    command -v apt-get >/dev/null && command -v dpkg-deb >/dev/null || return 1
    lists=$libraries32/apt
    mkdir -p "$lists/lists/partial" "$lists/cache/archives/partial"
    cat >"$lists/apt.conf" <<END
APT::Architecture "amd64";
APT::Architectures { "amd64"; "i386"; };
APT::Sandbox::User "root";
Dir::State "$lists";
Dir::State::status "/var/lib/dpkg/status";
Dir::Cache "$lists/cache";
END
    version=$(dpkg-query -W -f '${Version}' libwine) || return 1
    export APT_CONFIG="$lists/apt.conf"
    (cd "$lists" && { apt-get -qq update || :; } && apt-get -qq download "libwine:i386=$version") \
        >"$libraries32/fetch.log" 2>&1 || return 1
    dpkg-deb --fsys-tarfile "$lists"/libwine_*_i386.deb |
        tar x -C "$libraries32" --wildcards './usr/lib/*/wine/i386-windows/*' || return 1
    rm -rf "$lists"
    unset APT_CONFIG
    : >"$libraries32/ready"
}

if [ ! -e "$libraries32/ready" ]; then
    rm -rf "$libraries32"
    mkdir -p "$libraries32"
    fetch_libraries32 || { echo "$0: no libraries for a 32-bit Wine: $(tail -n 1 "$libraries32/fetch.log" 2>/dev/null)" >&2; exit 77; }
fi
for folder in "$libraries32"/usr/lib/*/wine; do export WINEDLLPATH="$folder"; done
