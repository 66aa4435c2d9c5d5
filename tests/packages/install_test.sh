#!/bin/sh
# SPDX-License-Identifier: MIT
# The package installed, upgraded, removed while it runs, and purged: in a root of its own, which is
# a layer over the machine's in a mount namespace. Nothing of it reaches the machine, and it ends
# with this script. Exit code 77: not possible here.
# Usage: install_test.sh PACKAGE DEMO_HOST
set -eu

# The outer half has the folder and takes it away: nothing that the inner half mounts is seen here,
# so nothing of the machine's can be below the folder.
if [ -z "${QUILL_OUTER_NAMESPACE:-}" ]; then
    user=
    [ "$(id -u)" = 0 ] || user="--user --map-root-user"
    unshare $user --mount --propagation private --pid --fork --kill-child --mount-proc true 2>/dev/null || {
        echo "install_test.sh: there are no namespaces here" >&2
        exit 77
    }
    folder=$(mktemp -d "${TMPDIR:-/tmp}/quill-install.XXXXXX")
    code=0
    TMPDIR=$folder QUILL_OUTER_NAMESPACE=$(readlink /proc/self/ns/mnt) \
        unshare $user --mount --propagation private --pid --fork --kill-child --mount-proc "$0" "$@" || code=$?
    ! grep -qF "$folder" /proc/mounts || { echo "install_test.sh: $folder is mounted on" >&2; exit 1; }
    rm -rf --one-file-system "$folder"
    exit $code
fi
[ "$(readlink /proc/self/ns/mnt)" != "$QUILL_OUTER_NAMESPACE" ] || exit 1
. "$(dirname "$0")/../support/outside.sh"
# The inner half removes nothing.
clean_up() {
    for each in $started; do kill "$each" 2>/dev/null || :; done
    wait
}
need Xvfb xdotool xwininfo import convert dpkg dpkg-deb chroot mount socat
package=$(realpath "$1")
demo=$2

# The layer.
cannot() {
    echo "install_test.sh: no layer can be mounted over the machine's root" >&2
    exit 77
}
mkdir "$work/layer"
mount -t tmpfs none "$work/layer" || cannot
layer=$work/layer/upper root=$work/layer/root
mkdir "$layer" "$work/layer/work" "$root"
mount -t overlay none -o "lowerdir=/,upperdir=$layer,workdir=$work/layer/work" "$root" 2>/dev/null || cannot
# Single devices, and never the machine's folder of them.
mount -t proc none "$root/proc" || cannot
mount -t tmpfs none "$root/dev" || cannot
for device in null zero full random urandom tty; do
    : >"$root/dev/$device"
    mount --bind "/dev/$device" "$root/dev/$device" || cannot
done
ln -s /proc/self/fd "$root/dev/fd"
mkdir -m 1777 "$root/dev/shm"
inside() { chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 "$@"; }
dpkg_quietly() { inside dpkg --force-not-root "$@" >"$work/dpkg" 2>&1 || fail "dpkg $*: $(cat "$work/dpkg")"; }
dpkg_quietly --purge quill
mkdir -p "$root/home/tester" "$root/package"
cp "$package" "$root/package/new.deb"
find "$layer" | sort >"$work/before"

# An older one, with a file that the newer one has no more.
dpkg-deb -R "$package" "$work/old"
sed -i 's/^Version: .*/Version: 1.0/' "$work/old/DEBIAN/control"
echo old >"$work/old/usr/share/doc/quill/old.txt"
dpkg-deb --root-owner-group -Znone -b "$work/old" "$root/package/old.deb" >/dev/null
dpkg_quietly -i /package/old.deb
[ -e "$root/usr/share/doc/quill/old.txt" ] || fail "the older package is not there"
dpkg_quietly -i /package/new.deb
[ ! -e "$root/usr/share/doc/quill/old.txt" ] || fail "a file of the older package is left"
version=$(dpkg-deb -f "$package" Version)
[ "$(inside dpkg-query -W -f '${Status} ${Version}' quill)" = "install ok installed $version" ] || fail "not installed"
dpkg_quietly -i /package/new.deb
dpkg_quietly --verify quill
[ ! -s "$work/dpkg" ] || fail "files differ from the package: $(cat "$work/dpkg")"

# What the desktop finds.
grep -q '^x-scheme-handler/telnet=.*quill.desktop' "$root/usr/share/applications/mimeinfo.cache" ||
    fail "the desktop knows no handler of telnet://"
grep -q '^x-scheme-handler/ssh=.*quill.desktop' "$root/usr/share/applications/mimeinfo.cache" ||
    fail "the desktop knows no handler of ssh://"
[ "$(inside TERM=quill tput cols)" = 80 ] || fail "the terminal's description is not found"
[ -n "$(inside man -w quill)" ] || fail "the manual page is not found"

# Started to the painted window, as the menu starts an address.
open_screen
: >"$work/host"
"$demo" >"$work/host" &
ends_with_us $!
port=$(first_line "$work/host")
# What passes between the program and the host is in two files.
: >"$work/sent"
: >"$work/received"
socat -d -d -lf"$work/relay.log" -r "$work/sent" -R "$work/received" \
    TCP4-LISTEN:0,bind=127.0.0.1,reuseaddr,fork,nodelay "TCP4:127.0.0.1:${port##*:},nodelay" &
ends_with_us $!
await 10 grep -q 'listening on' "$work/relay.log" || fail "no relay"
port=$(sed -n 's/.*listening on .*127\.0\.0\.1:\([0-9]*\).*/\1/p' "$work/relay.log")
received() { tr -d '\000' <"$work/received" | grep -aq "$1"; }
start() {
    inside HOME=/home/tester DISPLAY="$DISPLAY" QT_QPA_PLATFORM=xcb XDG_RUNTIME_DIR=/home/tester \
        "$@" 2>"$work/err" &
    client=$!
    ends_with_us $client
}
start $(sed -n "s|^Exec=\(.*\) %u|\1 telnet://127.0.0.1:$port|p" "$root/usr/share/applications/quill.desktop")
find_window
await 20 received 'login:' || fail "the host did not answer: $(cat "$work/err")"
# rows_of_text: the rows of pixels of the terminal that have more than its background. The bars are above
# and below it.
rows_of_text() {
    width=$(xwininfo -id "$window" | sed -n 's/^ *Width: //p') height=$(xwininfo -id "$window" | sed -n 's/^ *Height: //p')
    import -window "$window" -crop "${width}x$((height - 140))+0+60" +repage "$work/text.png" &&
        convert "$work/text.png" -colorspace Gray -depth 8 gray:- |
        od -An -v -tu1 -w"$width" | awk '{ for (i = 2; i <= NF; ++i) if ($i != $1) { rows++; next } } END { print rows + 0 }'
}
painted() { [ "$(rows_of_text)" -ge 10 ]; }
await 20 painted || fail "the window is not painted: $(cat "$work/err")"

# Removed while it runs: the session goes on, and ends as ever.
dpkg_quietly -r quill
[ ! -e "$root/usr/bin/quill" ] || fail "the program is left"
kill -0 $client || fail "the program ended with its package"
rows=$(rows_of_text)
! received 'assword:' || fail "the host asks for the password too early"
has_more_rows() { [ "$(rows_of_text)" -gt "$rows" ]; }
xdotool windowfocus --sync "$window" type --delay 20 anna
xdotool key Return
await 10 received 'assword:' || fail "the session stands still without the package"
await 10 has_more_rows || fail "without the package the window does not show what the host sends"
rows=$(rows_of_text)
xdotool key ctrl+shift+plus
await 10 has_more_rows || fail "the letters did not grow"
kill -TERM $(pgrep -P $client -x quill || echo $client)
code=0
wait $client || code=$?
[ $code -eq 0 ] || fail "the program ended with $code: $(cat "$work/err")"
settings=$root/home/tester/.local/share/quill
[ -s "$settings/registry.db" ] || fail "the settings were not saved"

# Installed again, the settings are still the user's.
dpkg_quietly -i /package/new.deb
size=$(inside HOME=/home/tester quill --export | sed -n 's/^fsize = //p')
[ "$size" = 9 ] || fail "the font's size is '$size' in place of 9"

# Purged, nothing is left but the settings. The package manager's own records, the logs and the
# caches that it has made anew do not count, unless they name the program.
dpkg_quietly --purge quill
find "$layer" | sort >"$work/after"
left=$(comm -13 "$work/before" "$work/after" |
    grep -vE "^$layer/(home|package|tmp|run|var/lib/dpkg|var/log|var/cache|var/tmp|root)(/|\$)" |
    while read -r path; do
        [ -d "$path" ] && continue
        case $path in
            */icon-theme.cache | */mimeinfo.cache) ! grep -qa quill "$path" || echo "$path" ;;
            *) echo "$path" ;;
        esac
    done)
[ -z "$left" ] || fail "left behind: $left"
named=$(cd "$layer" && find . -name '*quill*' ! -path './home/*' ! -path './tmp/*' -print)
[ -z "$named" ] || fail "left behind: $named"
[ "$(cd "$root/home/tester" && find . -type f | sort | tr '\n' ' ')" = \
    "./.local/share/quill/registry.db ./.local/share/quill/window.cfg " ] ||
    fail "of the user: $(cd "$root/home/tester" && find . -type f)"
echo "installed over an older one, removed while running, purged: only the settings are left"
