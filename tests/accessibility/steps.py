# SPDX-License-Identifier: MIT
"""The steps of the screen reader's test; each has its own program and bus.

Usage: steps.py PROGRAM WORK-FOLDER STEP
"""
import os
import pathlib
import signal
import socket
import struct
import subprocess
import sys
import threading
import time

from reader import *


def names_and_roles(path, work):
    host, program = in_session(path, work)
    eventually(lambda: has(main_window(), "active"), "the window to be the active one")
    find("push button", "disconnect")
    bar = find("tool bar", "Toolbar")
    names = [each.get_name() for each in children(bar)]
    assert names[:4] == ["swap toolbar", "disconnect", "cut", "paste"], names
    assert all(names), names
    assert {each.get_role_name() for each in children(bar)} == {"push button"}
    menus = find("menu bar")
    assert [each.get_name() for each in children(menus)] == ["File", "Fx", "Keys", "Settings"]
    find("menu item", "Properties...")
    find("status bar", "online row: 1 column: 1")
    find("check box", "Keyboard")
    assert {"focused", "focusable", "multi-line", "showing"} <= states(terminal())
    program.end()


def rows_and_cursor(path, work):
    host, program = in_session(path, work)
    screen = terminal()
    host.send("\033[2J\033[3;1Hdock 4\033[7;5Hna\xefve caf\xe9 \x80\033[9;1H\033)0\016lqk\017 box"
              "\033[5;11H\033[1m12 pallets\033[0m\033[5;16H")
    eventually(lambda: "box" in text_of(screen), "the host's text")
    rows = text_of(screen).split("\n")
    assert len(rows) == 24, len(rows)
    assert rows[2] == "dock 4" and rows[4] == "          12 pallets", rows
    assert rows[6] == "    na\xefve caf\xe9 \u20ac", rows[6]
    assert rows[8] == "\u250c\u2500\u2510 box", rows[8]
    assert caret(screen) == (4, 15), caret(screen)
    # A row by the offset of the caret, as a reader asks for the line it is in.
    here = Atspi.Text.get_text_at_offset(screen, Atspi.Text.get_caret_offset(screen),
                                         Atspi.TextBoundaryType.LINE_START)
    assert here.content.strip() == "12 pallets", here.content
    # The cursor is a place of the text also behind a row's end.
    host.send("\033[20;41H")
    eventually(lambda: caret(screen) == (19, 40), "the cursor behind the end of a row")
    # Cells lie below and beside each other.
    first = Atspi.Text.get_character_extents(screen, 0, Atspi.CoordType.SCREEN)
    offset = text_of(screen).index("pallets")
    word = Atspi.Text.get_character_extents(screen, offset, Atspi.CoordType.SCREEN)
    assert first.width > 0 and first.height > 0
    assert word.x == first.x + 13 * first.width and word.y == first.y + 4 * first.height
    assert Atspi.Text.get_offset_at_point(screen, word.x + 1, word.y + 1,
                                          Atspi.CoordType.SCREEN) == offset
    program.end()


def lines_are_heard(path, work):
    host, program = in_session(path, work)
    screen = terminal()
    heard = Heard("object:text-changed", "object:text-caret-moved")
    host.send("\033[2J\033[Horder 4711 accepted\r\n")
    eventually(lambda: "order 4711 accepted" in heard.spoken(), "the new line")
    eventually(lambda: any(each[0] == "object:text-caret-moved" and each[4] == "terminal"
                           for each in heard.events), "the cursor's move")
    assert caret(screen) == (1, 0)
    # Only what is new is said of a row.
    heard.events.clear()
    host.send("qty: ")
    eventually(lambda: heard.spoken() == "qty: ", "the prompt alone")
    # A full screen that scrolls: the line that comes is said, those that move are not.
    host.send("\033[2J\033[H" + "\r\n".join(f"line {i} of stock" for i in range(1, 25)))
    eventually(lambda: "line 24 of stock" in heard.spoken(), "the full screen's last line")
    # What the program says of the screen comes before its answer.
    eventually(lambda: "line 24 of stock" in text_of(screen), "a full screen")
    heard.events.clear()
    host.send("\r\nlast line")
    eventually(lambda: "last line" in heard.spoken(), "the line that scrolled in")
    assert heard.spoken().strip() == "last line", heard.spoken()
    assert heard.texts("object:text-changed:delete") == ["line 1 of stock\n"], heard.events
    program.end()


def selection_is_read(path, work):
    host, program = in_session(path, work)
    screen = terminal()
    host.send("\033[2J\033[3;1Hdock 4 is open\033[4;1H12 pallets\033[10;1H")
    eventually(lambda: "pallets" in text_of(screen), "the host's text")
    assert Atspi.Text.get_n_selections(screen) == 0
    heard = Heard("object:text-selection-changed")

    def middle(word):
        place = Atspi.Text.get_character_extents(screen, text_of(screen).index(word), Atspi.CoordType.SCREEN)
        return place.x + place.width // 2, place.y + place.height // 2

    def drag(first, last):
        (left, top), (right, bottom) = first, last
        subprocess.run(["xdotool", "mousemove", str(left), str(top), "mousedown", "1", "mousemove",
                        str(right), str(bottom), "mouseup", "1"], check=True, timeout=PATIENCE)

    def selected():
        ranges = [Atspi.Text.get_selection(screen, i) for i in range(Atspi.Text.get_n_selections(screen))]
        return [text_of(screen)[each.start_offset:each.end_offset] for each in ranges]

    # Letter by letter, as the stylus marks it.
    drag(middle("is open"), middle("pen"))
    eventually(lambda: selected() == ["is op"], "the selection of a row")
    eventually(lambda: heard.events, "a word of the selection")
    # Where the stylus marks several rows, each has its piece of the columns.
    heard.events.clear()
    rows = ["ck", " p"]
    drag(middle("ck 4"), middle("pallets"))
    eventually(lambda: selected() == rows, "the selection of two rows")
    # Only the stylus selects, and only the host moves the cursor.
    Atspi.Text.set_selection(screen, 0, 0, 4)
    Atspi.Text.add_selection(screen, 0, 4)
    Atspi.Text.remove_selection(screen, 0)
    Atspi.Text.set_caret_offset(screen, 0)
    assert selected() == rows, selected()
    assert caret(screen) == (9, 0), caret(screen)
    # Text from the host drops it.
    eventually(lambda: heard.events, "a word of the second selection")
    heard.events.clear()
    host.send("\033[11;5H")
    eventually(lambda: Atspi.Text.get_n_selections(screen) == 0, "the end of the selection")
    eventually(lambda: heard.events, "a word of its end")
    eventually(lambda: caret(screen) == (10, 4), "the cursor where the host has put it")
    host.answered()
    program.end()


def buttons_by_action(path, work):
    host, program = in_session(path, work)
    find("push button", "disconnect")
    press(find("push button", "P5"))
    host.await_bytes(b"\033[15~")
    press(find("menu item", "Arrow Up"))
    host.await_bytes(b"\033[A")
    press(find("menu item", "About..."))
    about = dialog("")
    press(find("push button", "OK", top=about))
    eventually(lambda: not has(about, "showing"), "the end of the dialog")
    host.answered()
    # The soft keyboard: its keys by their names.
    panel = find("check box", "Keyboard")
    assert panel.do_action(0)
    key = find("push button", "q")
    press(key)
    host.await_bytes(b"q")
    program.end()


def titles_that_do_not_fit(path, work):
    """Each is a menu item all the same, and the terminal goes on while its menu is open."""
    host = Host()
    program = Program(path, work, host.port, ["--screen", "120x320"])
    press(find("push button", "OK", top=dialog("Quill Telnet")))
    host.accept()
    host.send("\r")
    main_window("[127.0.0.1]")
    find("menu item", "Disconnect...")  # the bar is that of a session
    screen = terminal()
    titles = children(find("menu bar"))
    assert [each.get_name() for each in titles] == ["File", "Fx", "Keys", "Settings"]
    for title in titles:
        def is_open():
            return any(has(each, "showing") for each in children(title))

        assert title.get_action_name(0) == "ShowMenu" and title.do_action(0)
        eventually(is_open, f"the menu {title.get_name()}")
        host.send(f"\033[2J\033[Hbelow {title.get_name()}")
        eventually(lambda: text_of(screen).startswith(f"below {title.get_name()}"), "the host's text")
        assert is_open()
        assert title.do_action(0)
        eventually(lambda: not is_open(), f"the end of the menu {title.get_name()}")
    program.end()


def fill_in(box, name, text):
    edit = find("text", name, top=box)
    assert has(edit, "editable")
    assert Atspi.EditableText.set_text_contents(edit, text)
    eventually(lambda: text_of(edit) == text, f"{name} to read {text}")


def dialog_filled_in(path, work):
    host = Host()
    program = Program(path, work)
    main_window()
    press(find("menu item", "Connect..."))
    box = dialog("Connect")
    fill_in(box, "UNIX Host IP Address", "127.0.0.1")
    press(find("push button", "Advanced...", top=box))
    advanced = dialog("Connect Advanced")
    fill_in(advanced, "Port", str(host.port))
    exit_with_session = find("check box", "Exit on session termination", top=advanced)
    assert exit_with_session.do_action(0)
    eventually(lambda: has(exit_with_session, "checked"), "the mark")
    blowfish = find("radio button", "Blowfish", top=advanced)
    assert blowfish.do_action(0)
    eventually(lambda: has(blowfish, "checked"), "the cipher's mark")
    assert not has(find("radio button", "3-DES", top=advanced), "checked")
    press(find("push button", "OK", top=advanced))
    eventually(lambda: not shown_window("dialog", "Connect Advanced"), "the end of the dialog")
    press(find("push button", "OK", top=box))
    host.accept()
    main_window("[127.0.0.1]")
    host.send("\033[2J\033[Hwelcome")
    eventually(lambda: text_of(terminal()).startswith("welcome"), "the host's greeting")
    # The session ends, and with it the program, as the dialog was told.
    host.peer.close()
    assert program.process.wait(PATIENCE) == 0


TOLD = ("text", "password text", "list", "check box", "radio button", "combo box", "push button", "page tab")


def controls_of(box):
    """Role and name of each that a person uses, as a reader goes through them."""
    found = [(each.get_role_name(), each.get_name()) for each in all_below(box)
             if has(each, "showing") and has(each, "focusable") and each.get_role_name() in TOLD]
    nameless = [each for each in found if not each[1]]
    assert not nameless, f"without a name: {nameless}"
    twice = {each for each in found if found.count(each) > 1}
    assert not twice, f"not told apart: {twice}"
    return found


def has_controls(box, *wanted):
    """As rows of role and names."""
    rows = {(role, name) for role, *names in wanted for name in names}
    eventually(lambda: set(controls_of(box)) == rows,
               f"{sorted(rows)} in place of {sorted(controls_of(box))}")


def closes(box, button):
    title = box.get_name()
    press(find("push button", button, top=box))
    eventually(lambda: not shown_window("dialog", title), f"the end of {title}")


ANSWERS = ("push button", "OK", "Cancel")


def controls_of_each_dialog(path, work):
    """Every control has a name of its own, and what is entered by it is there when it is read again."""
    program = Program(path, work)
    main_window()
    press(find("menu item", "Auto Login..."))
    box = dialog("Auto Login")
    fields = ("Search 1", "Response 1", "Search 2", "Response 2")
    has_controls(box, ("text", *fields), ANSWERS)
    for field in fields:
        fill_in(box, field, "this is " + field)
    closes(box, "OK")
    press(find("menu item", "Auto Login..."))
    box = dialog("Auto Login")
    for field in fields:
        assert text_of(find("text", field, top=box)) == "this is " + field
    closes(box, "Cancel")

    press(find("menu item", "Font..."))
    box = dialog("Font")
    has_controls(box, ("list", "Font"), ("check box", "Bold", "Italic"), ANSWERS)
    faces = [each.get_name() for each in children(find("list", "Font", top=box))]
    assert faces and all(faces), faces
    assert find("check box", "Bold", top=box).do_action(0)
    eventually(lambda: has(find("check box", "Bold", top=box), "checked"), "the mark")
    closes(box, "Cancel")

    press(find("menu item", "Properties..."))
    box = dialog("Properties")
    tabs = ("page tab", "Other", "Toolbar", "Keyboard")
    has_controls(box, tabs, ("text", "Term type", "Modem connection name"), ANSWERS,
                 ("check box", "Hide status bar", "Screen follow the cursor", "Bell", "Show Negotiation",
                  "Hotspot x. xx. x: or xx:", "Keep Power on, if a session is active"))
    fill_in(box, "Term type", "quill")
    press(find("page tab", "Toolbar", top=box))
    has_controls(box, tabs, ("list", "Toolbar #1", "Toolbar #2", "Toolbar #3"), ANSWERS)
    press(find("page tab", "Keyboard", top=box))
    has_controls(box, tabs, ("list", "Key", "Keystroke"), ("push button", "Change"), ANSWERS)
    press(find("push button", "Change", top=box))
    change = dialog("Change")
    has_controls(change, ("text", "Keystroke"), ANSWERS)
    fill_in(change, "Keystroke", "dir\\015")
    closes(change, "OK")
    find("list item", "dir\\015", top=find("list", "Keystroke", top=box))
    closes(box, "OK")

    press(find("menu item", "Connect..."))
    box = dialog("Connect")
    has_controls(box, ("combo box", "UNIX Host IP Address"), ("text", "UNIX Host IP Address"),
                 ("push button", "Advanced...", "OK", "Cancel"))
    press(find("push button", "Advanced...", top=box))
    advanced = dialog("Connect Advanced")
    has_controls(advanced, ("text", "Port"), ANSWERS, ("radio button", "ssh-1 or", "ssh-2", "DES", "3-DES", "Blowfish"),
                 ("check box", "Make connection at program start", "Exit on session termination", "Confirm Exit",
                  "if [x] is tapped, stop program", "Secure Shell (SSH) Use port 22"))
    closes(advanced, "Cancel")
    closes(box, "Cancel")
    program.end()


def sign_on_is_filled_in(path, work):
    """An SSH server's first answer brings it up."""
    server = subprocess.Popen(
        ["/usr/bin/python3", "-B", str(pathlib.Path(__file__).parents[1] / "ssh2" / "paramiko_server.py")],
        stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    port = server.stdout.readline().decode().strip()
    if not port.isdigit():
        sys.exit(77)  # no such server here
    program = Program(path, work, extra=[f"ssh://127.0.0.1:{port}"])
    box = dialog("Sign on to the host")
    has_controls(box, ("text", "Sign on as"), ("password text", "Password"), ("check box", "Remember Password"), ANSWERS)
    fill_in(box, "Sign on as", "visitor")
    password = find("password text", "Password", top=box)
    assert Atspi.EditableText.set_text_contents(password, "warehouse7")
    eventually(lambda: Atspi.Text.get_character_count(password) == len("warehouse7"), "the password")
    assert "warehouse7" not in text_of(password), "the password is spoken"
    press(find("push button", "OK", top=box))
    eventually(lambda: text_of(terminal()).startswith("$"), "the session's prompt")
    program.end()
    server.communicate(timeout=PATIENCE)


def bars_that_change(path, work):
    """Menus and buttons are those of the moment, and a reader hears of the new ones."""
    host, program = in_session(path, work)
    find("menu item", "Disconnect...")
    find("push button", "disconnect")
    heard = Heard("object:children-changed")
    press(find("push button", "swap toolbar"))
    find("push button", "P11")
    eventually(lambda: "tool bar" in heard.added(), "news of the bar")
    press(find("menu item", "Disconnect..."))
    find("menu item", "Connect...")
    find("push button", "swap toolbar")
    program.end()


def message_box_is_read(path, work):
    host, program = in_session(path, work)
    host.peer.close()
    box = dialog("Error")
    find("label", "Connection to the UNIX Host has been closed...", top=box)
    press(find("push button", "OK", top=box))
    find("status bar", "offline row: 1 column: 1")
    program.end()


def bus_that_dies(path, work):
    host, program = in_session(path, work)
    heard = Heard("object:text-changed")
    host.send("before")
    eventually(lambda: "before" in heard.spoken(), "the text before")
    os.kill(int(os.environ["SCREEN_READER_BUS"]), signal.SIGKILL)
    for each in processes(work, "dbus-daemon", "at-spi2-registryd"):
        os.kill(each, signal.SIGKILL)
    host.send("\r\n".join(f"after {i}" for i in range(200)))
    host.answered()
    program.end()


def bus_that_is_not_there(path, work):
    for address in ("unix:path=" + work + "/nowhere", "", "nonsense:"):
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = address
        os.environ["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        host = Host()
        program = Program(path, work, host.port, ["--text", work + "/text"])
        host.accept()
        host.send("\033[2J\033[Hstill here")
        host.answered()
        assert program.process.wait(PATIENCE) == 0
        assert pathlib.Path(work, "text").read_text().startswith("still here")


def starts_and_types(path, work):
    """A person starts the program, reads what the host sends, and types."""
    host = Host()
    program = Program(path, work, host.port, ["--text", work + "/text"])
    host.accept()
    host.send("\033[2J\033[Hstill here")
    host.answered()
    assert program.process.wait(PATIENCE) == 0
    assert pathlib.Path(work, "text").read_text().startswith("still here")
    program = Program(path, work)
    host.accept()
    host.send("\r")
    subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--name", r"^Quill Telnet  \[127",
                    "windowfocus", "--sync", "key", "q"], check=True, timeout=PATIENCE)
    host.await_bytes(b"q")
    host.answered()
    program.end()


def listener(path, backlog=50):
    """A bus that takes connections, and that is all."""
    bus = socket.socket(socket.AF_UNIX)
    bus.bind(path)
    bus.listen(backlog)
    return bus


def bus_that_never_answers(path, work):
    bus = listener(work + "/mute")
    os.environ["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + work + "/mute"
    os.environ["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
    starts_and_types(path, work)
    bus.close()


def bus_with_a_full_queue(path, work):
    """It has stopped so long ago that no more connections fit into its queue."""
    folder = work + "/a bus, 100%"
    os.mkdir(folder)
    bus = listener(folder + "/mute", 0)
    waiting = []
    for each in range(10):
        waiting.append(socket.socket(socket.AF_UNIX))
        waiting[-1].setblocking(False)
        try:
            waiting[-1].connect(folder + "/mute")
        except BlockingIOError:
            break
    else:
        raise AssertionError("the queue takes ten connections")
    os.environ["DBUS_SESSION_BUS_ADDRESS"] = "unix:guid=00,path=" + work + "/a%20bus%2c%20100%25/mute"
    starts_and_types(path, work)
    bus.close()


def processes(work, *names):
    """Those of this test that run the programs of these names."""
    found = []
    for folder in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            words = (folder / "cmdline").read_bytes().split(b"\0")
            ours = work.encode() in (folder / "environ").read_bytes()
        except OSError:
            continue
        if ours and os.path.basename(words[0]).decode() in names:
            found.append(int(folder.name))
    return found


def stopped_while(action, path, work, stopped):
    """What is stopped is killed at the end: it would hear no other signal."""
    assert stopped
    for each in stopped:
        os.kill(each, signal.SIGSTOP)
    try:
        action(path, work)
    finally:
        for each in stopped:
            os.kill(each, signal.SIGKILL)


def readers_bus_that_never_answers(path, work):
    """The session's bus tells its address, and it takes connections."""
    buses = processes(work, "dbus-daemon")
    buses.remove(int(os.environ["SESSION_BUS"]))
    stopped_while(starts_and_types, path, work, buses)


def readers_bus_named_by_the_environment(path, work):
    bus = listener(work + "/mute")
    os.environ["AT_SPI_BUS_ADDRESS"] = "unix:path=" + work + "/mute"
    starts_and_types(path, work)
    bus.close()


def launcher_that_never_answers(path, work):
    """The one that the session's bus asks for the address of the other bus."""
    stopped_while(starts_and_types, path, work, [int(os.environ["SCREEN_READER_BUS"])])


def bus_behind_one_that_is_gone(path, work):
    """An address may be a list: a client takes the first bus of it that takes connections."""
    bus = listener(work + "/mute")
    os.environ["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={work}/gone;unix:path={work}/mute"
    os.environ["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
    starts_and_types(path, work)
    bus.close()


def signal_message():
    """A signal of the bus, as D-Bus writes it: the head, the fields, and no body."""
    def field(code, kind, text):
        return bytes([code, 1]) + kind + b"\0" + struct.pack("<I", len(text)) + text + b"\0"

    fields = b""
    for each in (field(1, b"o", b"/org/freedesktop/DBus"), field(2, b"s", b"org.freedesktop.DBus"),
                 field(3, b"s", b"NameAcquired")):
        fields += bytes(-len(fields) % 8) + each
    message = b"l\4\1\1" + struct.pack("<III", 0, 1, len(fields)) + fields
    return message + bytes(-len(message) % 8)


def chatter(bus):
    """Greets whoever calls, and sends signals for ever, but no answer."""
    def talk(peer):
        peer.recv(4096)
        peer.sendall(b"OK 00\r\n")
        while True:
            peer.sendall(signal_message())
            time.sleep(0.5)

    def safely(peer):
        try:
            talk(peer)
        except OSError:
            pass

    def serve():
        try:
            while True:
                threading.Thread(target=safely, args=(bus.accept()[0],), daemon=True).start()
        except OSError:
            pass

    threading.Thread(target=serve, daemon=True).start()


def bus_that_chatters_and_never_answers(path, work):
    bus = listener(work + "/chatter")
    chatter(bus)
    os.environ["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + work + "/chatter"
    os.environ["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
    starts_and_types(path, work)
    bus.close()


def launcher_that_takes_its_time(path, work):
    """A screen reader has the program all the same."""
    launcher = int(os.environ["SCREEN_READER_BUS"])
    os.kill(launcher, signal.SIGSTOP)
    program = Program(path, work)
    time.sleep(4)
    os.kill(launcher, signal.SIGCONT)
    main_window()
    find("push button", "swap toolbar")
    program.end()


CHOICE = "QUILL_CHOSEN_SCALE"
VARIABLES = ("DBUS_SESSION_BUS_ADDRESS", "AT_SPI_BUS_ADDRESS", "QT_SCALE_FACTOR", "QT_IM_MODULE", CHOICE)


def environment(path):
    pairs = (each.split("=", 1) for each in pathlib.Path(path).read_text().split("\0") if "=" in each)
    return {name: value for name, value in pairs if name in VARIABLES}


def programs_that_it_starts(path, work):
    """They have the environment of the person: itself, on a screen for which the usual scale is too
    large, and the viewer of the help page."""
    bus = listener(work + "/mute")
    os.environ["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + work + "/mute"
    viewer = pathlib.Path(work, "bin", "xdg-open")
    viewer.parent.mkdir()
    viewer.write_text(f"#!/bin/sh\ncat /proc/$$/environ >{work}/viewer\n: >{work}/viewed\n")
    viewer.chmod(0o755)
    os.environ["PATH"] = f"{viewer.parent}:{os.environ['PATH']}"
    given = {name: os.environ[name] for name in VARIABLES if name in os.environ}
    root = work + "/root"
    process = subprocess.Popen([path, "--root", root, "--screen", "700x500"])
    subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--name", "^Quill Telnet  ",
                    "windowfocus", "--sync", "key", "ctrl+shift+h"], check=True, timeout=2 * PATIENCE)
    assert environment(f"/proc/{process.pid}/environ") == given | {CHOICE: "1.25"}
    eventually(lambda: os.path.exists(work + "/viewed"), "the viewer")
    assert environment(work + "/viewer") == given, environment(work + "/viewer")
    process.send_signal(signal.SIGTERM)
    assert process.wait(PATIENCE) == 0
    bus.close()


def readers_bus_that_falls_silent(path, work):
    """A session is up and read by then."""
    host, program = in_session(path, work)
    heard = Heard("object:text-changed")
    host.send("before")
    eventually(lambda: "before" in heard.spoken(), "the text before")
    buses = processes(work, "dbus-daemon")
    buses.remove(int(os.environ["SESSION_BUS"]))

    def goes_on(*_):
        end = time.monotonic() + 5
        while time.monotonic() < end:
            host.send("\r\n".join(f"after {i}" for i in range(200)))
            host.answered()
        program.end()

    stopped_while(goes_on, path, work, buses)


def main():
    path, work, step = sys.argv[1:]
    follow_changes()
    steps = [names_and_roles, rows_and_cursor, selection_is_read, lines_are_heard, buttons_by_action,
             titles_that_do_not_fit, dialog_filled_in, controls_of_each_dialog, sign_on_is_filled_in, bars_that_change,
             message_box_is_read, bus_that_dies, bus_that_is_not_there, bus_that_never_answers,
             bus_with_a_full_queue, readers_bus_that_never_answers,
             readers_bus_named_by_the_environment, launcher_that_never_answers,
             bus_behind_one_that_is_gone, bus_that_chatters_and_never_answers,
             launcher_that_takes_its_time, programs_that_it_starts,
             readers_bus_that_falls_silent]
    {each.__name__: each for each in steps}[step](path, work)
    print(f"{step}: as told")


if __name__ == "__main__":
    main()
