# SPDX-License-Identifier: MIT
# Buses of the test's own, for the desktop and for screen readers; sourced after outside.sh. Nothing of
# the person's session is reached: the run-time folder and the settings are below $work.

export XDG_RUNTIME_DIR="$work/runtime" HOME="$work" GSETTINGS_BACKEND=memory
mkdir -m 700 "$XDG_RUNTIME_DIR"
unset AT_SPI_BUS_ADDRESS || :
launcher=/usr/libexec/at-spi-bus-launcher

has_screen_reader_bus() {
    dbus-send --session --print-reply --dest=org.freedesktop.DBus / \
        org.freedesktop.DBus.NameHasOwner string:org.a11y.Bus | grep -q 'boolean true'
}

# open_buses: sets DBUS_SESSION_BUS_ADDRESS, and SESSION_BUS and SCREEN_READER_BUS, the processes.
open_buses() {
    [ -x $launcher ] || { echo "$script: $launcher is missing" >&2; exit 77; }
    : >"$work/bus"
    dbus-daemon --session --nofork --print-address=3 3>"$work/bus" 2>/dev/null &
    SESSION_BUS=$!
    ends_with_us $SESSION_BUS
    DBUS_SESSION_BUS_ADDRESS=$(first_line "$work/bus")
    export DBUS_SESSION_BUS_ADDRESS
    $launcher --launch-immediately --a11y=1 >/dev/null 2>&1 &
    SCREEN_READER_BUS=$!
    ends_with_us $SCREEN_READER_BUS
    export SESSION_BUS SCREEN_READER_BUS
    # Whoever calls it before it is there has the bus start another one.
    await 20 has_screen_reader_bus || fail "no bus for screen readers"
    dbus-send --session --print-reply --dest=org.a11y.Bus /org/a11y/bus \
        org.freedesktop.DBus.Properties.Set string:org.a11y.Status string:IsEnabled \
        variant:boolean:true >/dev/null || fail "the bus for screen readers does not answer"
}
