#!/bin/sh
# SPDX-License-Identifier: MIT
# The Windows program as a person uses it: first start, import of the configuration file, a session
# with the demo host, keys, a second start, the end, and the content of the registry after it.
# Usage: session_test.sh QUILL.EXE DEMO_HOST
set -eu
top=$(cd "$(dirname "$0")/../.." && pwd)
program=$1 demo=$2
. "$top/tests/windows/wine.sh"
for tool in socat xclip; do
    command -v $tool >/dev/null || { echo "session_test.sh: $tool is missing" >&2; exit 77; }
done
start_screen
prepare_prefix

# The demo host, behind a relay that records what the program sends.
: >"$work/host"
run "$demo" >"$work/host"
port=$(first_line "$work/host")
start_relay "${port##*:}"

# A viewer for this test that keeps a copy of the page that it gets.
shown=$work/shown.htm
mkdir "$work/bin"
cat >"$work/bin/xdg-open" <<END
#!/bin/sh
page=\$(echo "\$1" | sed 's,^file://,,; s,%20, ,g')
echo "\$page" >"$shown.path"
cp "\$page" "$shown.new" && mv "$shown.new" "$shown"
END
chmod +x "$work/bin/xdg-open"
PATH=$work/bin:$PATH
wine reg add 'HKCR\.htm' /ve /f /d QuillPage >/dev/null
wine reg add 'HKCR\QuillPage\shell\open\command' /ve /f \
    /d '"C:\windows\system32\winebrowser.exe" "%1"' >/dev/null

fresh_device
cat >"$device_root/mconfig.cfg" <<END
# set up by the test
host = "127.0.0.1"
port = $relay_port
autoconnect = 1
termtype = "vt100"
color_bold = 0x1020
END
run wine "$program"
client=$last

await_notice
sleep 0.5
picture import
[ -e "$device_root/mconfig.cfg" ] || fail "the file was deleted before it was read"
answer_notice
[ ! -e "$device_root/mconfig.cfg" ] || fail "the configuration file is still there"
[ "$(setting host)" = 127.0.0.1 ] || fail "host was not imported: $(setting host)"
[ "$(setting termtype)" = vt100 ] || fail "termtype was not imported"
[ "$(setting port)" = "$(printf '0x%x' "$relay_port")" ] || fail "port was not imported"
[ "$(setting color_bold)" = 0x1020 ] || fail "color_bold was not imported"

# The login; the next page has two rows in reverse video.
await 20 received "login:" || fail "the host's question did not come"
await 10 is_painted || fail "the host's text was not painted"
type_line anna
await 10 received "assword" || fail "the host asked for no password"
type_line secret
await 10 received "Main menu" || fail "the host showed no menu"
sent "anna" || fail "the name did not arrive at the host"
sent "secret" || fail "the password did not arrive at the host"
await 10 has_reverse_rows || fail "the host's reverse rows were not painted"
picture menu

# Each key reaches the host once, with the bytes of the key table.
begin_sent
expected=
while read -r key bytes; do
    expected=$expected$bytes
    press "$key" sent_is "$expected" || fail "after $key the keys sent $(sent_bytes)"
done <<'END'
Escape \033
BackSpace \010
Delete \177
Up \033[A
Home \2331~
F1 \217P
F5 \033[15~
F10 \033[21~
shift+F1 \033[25~
ctrl+1 \217P
ctrl+shift+2 \033[24~
END
[ ! -e "$shown" ] || fail "F1 in a session opened the help"

# The menus by the keyboard: the third entry of "Keys" is the up arrow. Nothing else is sent.
begin_sent
reaches_third_key() {
    for attempt in 1 2 3 4 5; do
        ! { open_menu alt+k && picture keys-menu && step_menu Down && step_menu Down; } || return 0
        leave_menu
    done
    return 1
}
reaches_third_key || fail "the menu of the keys cannot be used"
xdotool key Return
await 10 sent_is '\033[A' || fail "the entry of the menu sent $(sent_bytes)"

# The program opens its help page in the desktop's viewer.
press ctrl+shift+h cmp -s "$top/resources/telnet.htm" "$shown" || fail "the help page was not shown"
grep -q '/Quill/telnet.htm$' "$shown.path" || fail "the help page is $(cat "$shown.path")"

# If the page cannot be written into the device's folder, it is among the temporary files.
rm -f "$shown" "$device_root/telnet.htm"
mkdir "$device_root/telnet.htm"
press ctrl+shift+h cmp -s "$top/resources/telnet.htm" "$shown" || fail "no help page without its folder"
grep -q '/Quill telnet.htm$' "$shown.path" || fail "the other help page is $(cat "$shown.path")"
rmdir "$device_root/telnet.htm"

# A second start brings the first one to the front and ends.
windows_before=$(count_windows)
timeout 60 wine "$program" || fail "the second start ended with code $?"
[ "$(count_windows)" = "$windows_before" ] || fail "the second start left a window"
kill -0 "$client" || fail "the second start ended the first one"
begin_sent
xdotool key --delay 80 x
await 10 sent_is 'x' || fail "after the second start the keys went elsewhere: $(sent_bytes)"

# Copies from the screen with the stylus and pastes: the host gets the text and an Enter.
# Other programs get this from the clipboard: the text, followed only by zero bytes.
begin_sent
look_at 110x8+64+104
xdotool mousemove 64 108 mousedown 1 mousemove 120 108 mousemove 176 108 mouseup 1
await 10 looks_different || fail "the stylus selected nothing"
picture selection
clipboard() { timeout 5 xclip -selection clipboard -o -t UTF8_STRING >"$work/clipboard" 2>/dev/null; }
clipboard_is() { clipboard && tr -d '\000' <"$work/clipboard" | tr -d '\r' | cmp -s - "$work/wanted"; }
printf 'Good day, anna.\n' >"$work/wanted"
press ctrl+shift+c clipboard_is || fail "the clipboard holds $(od -An -c "$work/clipboard" | head -n 4)"
press ctrl+shift+v sent_is 'Good day, anna.\r' || fail "the clipboard sent $(sent_bytes)"

# A drag that leaves the window continues to the end of the row.
look_at 110x8+400+104
xdotool mousemove 64 108 mousedown 1 sleep 0.5 mousemove 120 108 sleep 0.5 mousemove 950 108
await 10 looks_different || fail "a drag out of the window does not go to the end of the row"
xdotool mouseup 1 mousemove 512 384
whole_row() { clipboard && grep -aq 'Good day, anna.*Terminal: vt100' "$work/clipboard"; }
press ctrl+shift+c whole_row || fail "a drag out of the window copied $(cat "$work/clipboard")"

# Larger text does not fit, so scroll bars appear. Then the program exits and saves everything.
press_and_see 300x8+22+72 ctrl+shift+KP_Add
press_and_see 300x8+22+72 ctrl+shift+KP_Add
sleep 1
picture larger
leave
[ "$(setting fsize)" = 0xa ] || fail "fsize: $(setting fsize)"
[ "$(setting key4)" = '\033[15~' ] || fail "key4: $(setting key4)"
[ "$(setting tbar0)" = 0x7 ] || fail "tbar0: $(setting tbar0)"
values=$(wine reg query "$settings_key" | grep -c REG_)
[ "$values" -eq 132 ] || fail "$values values in the registry"

# The next start shows no notice of the import.
run wine "$program"
client=$last
await 30 has_window "^$title  \[127.0.0.1\]$" || fail "no window at the second run"
! has_window '^Quill Telnet$' || fail "the notice came again"

# A dialog: OK saves the text of its first field at once.
open_by_keys '^Properties$' alt+s p
focus_on '^Properties$'
xdotool type --delay 40 vt102
picture properties
close_box '^Properties$' Return
has_termtype() { [ "$(setting termtype)" = vt102 ]; }
await 20 has_termtype || fail "termtype is $(setting termtype)"
leave
echo "$values values saved; pictures in $pictures"
