# SPDX-License-Identifier: MIT
"""A screen reader's side of the accessibility bus, the program it reads, and a host for it."""
import os
import pathlib
import signal
import socket
import subprocess
import time
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib

warnings.simplefilter("ignore", DeprecationWarning)
PATIENCE = 20  # seconds
Atspi.set_timeout(5000, 15000)


def eventually(condition, what, patience=PATIENCE):
    """What `condition` yields, once it is true; the bus's events have their turn meanwhile."""
    end = time.monotonic() + patience
    while True:
        while GLib.MainContext.default().iteration(False):
            pass
        try:
            found = condition()
        except GLib.Error:  # an object that has just gone
            found = None
        if found:
            return found
        assert time.monotonic() < end, f"in vain: {what}"
        time.sleep(0.02)


def follow_changes():
    """As a screen reader does, from the start."""
    follow_changes.heard = Heard("object:children-changed", "object:state-changed",
                                 "object:property-change", "window")


# ------------------------------------------------------------------ the host and the program


class Host:
    """Takes one connection at a time and keeps what it is sent."""

    def __init__(self):
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.listener.setblocking(False)
        self.port = self.listener.getsockname()[1]
        self.peer = None
        self.got = b""

    def accept(self):
        def taken():
            try:
                self.peer = self.listener.accept()[0]
            except BlockingIOError:
                return False
            self.peer.setblocking(False)
            return True

        eventually(taken, "a connection to the host")

    def send(self, text):
        self.peer.setblocking(True)
        self.peer.sendall(text.encode("latin-1") if isinstance(text, str) else text)
        self.peer.setblocking(False)

    def await_bytes(self, wanted):
        def came():
            try:
                self.got += self.peer.recv(4096)
            except BlockingIOError:
                pass
            return wanted in self.got

        eventually(came, f"{wanted!r} at the host")

    def answered(self):
        """The program is alive: it says where the cursor is when it is asked."""
        self.got = b""
        self.send("\033[6n")
        self.await_bytes(b"R")


class Program:
    def __init__(self, path, work, port=None, extra=()):
        self.root = pathlib.Path(work) / "root"
        self.root.mkdir(exist_ok=True)
        if port:
            (self.root / "mconfig.cfg").write_text(
                f'host = "127.0.0.1"\nport = {port}\nautoconnect = 1\n')
        self.process = subprocess.Popen([path, "--root", str(self.root), "--scale", "1", *extra])

    def end(self):
        """As a signal ends it: regularly."""
        self.process.send_signal(signal.SIGTERM)
        code = self.process.wait(PATIENCE)
        assert code == 0, f"the program ended with {code}"


def in_session(path, work):
    """The program in a session, its notice of the import answered by the button's action."""
    host = Host()
    program = Program(path, work, host.port)
    press(find("push button", "OK", top=dialog("Quill Telnet")))
    host.accept()
    host.send("\r")  # a session is up with the host's first byte
    main_window("[127.0.0.1]")
    find("status bar", "online row: 1 column: 1")
    return host, program


# ------------------------------------------------------------------ what a screen reader sees


def children(thing):
    return [thing.get_child_at_index(i) for i in range(thing.get_child_count())]


def windows():
    """Asked for anew: the toolkit tells of new windows by making them active alone."""
    desktop = Atspi.get_desktop(0)
    desktop.clear_cache()
    programs = [each for each in children(desktop) if each and each.get_name() == "quill"]
    for each in programs:
        each.clear_cache()
    return [window for each in programs for window in children(each) if window]


def all_below(thing):
    yield thing
    for each in children(thing):
        if each:
            yield from all_below(each)


def states(thing):
    return {state.value_nick for state in thing.get_state_set().get_states()}


def has(thing, state):
    return state in states(thing)


def shown_window(role, title):
    for each in windows():
        if each.get_role_name() == role and title in each.get_name() and has(each, "showing"):
            return each
    return None


def main_window(title="Quill Telnet"):
    return eventually(lambda: shown_window("frame", title), f"a window with {title} in its title")


def dialog(title):
    def found():
        return shown_window("dialog", title) or shown_window("alert", title)

    return eventually(found, f"a dialog {title}")


def find(role, name=None, top=None):
    """The first thing of that role and name that there is in the window."""

    def found():
        for each in all_below(top or main_window()):
            if each.get_role_name() == role and name in (None, each.get_name()):
                return each
        return None

    return eventually(found, f"{role} {name}")


def terminal():
    return find("terminal")


def press(thing):
    """By the thing's own action."""
    names = [thing.get_action_name(i) for i in range(thing.get_n_actions())]
    assert "Press" in names, f"{thing.get_name()} can do {names}"
    assert thing.do_action(names.index("Press"))


def text_of(thing):
    return Atspi.Text.get_text(thing, 0, Atspi.Text.get_character_count(thing))


def caret(thing):
    """Row and column, from 0."""
    before = Atspi.Text.get_text(thing, 0, Atspi.Text.get_caret_offset(thing))
    return before.count("\n"), len(before.rsplit("\n", 1)[-1])


class Heard:
    """Events of a kind, from now on."""

    def __init__(self, *kinds):
        self.events = []
        self.listener = Atspi.EventListener.new(self.take)
        for kind in kinds:
            assert self.listener.register(kind)
        # The bus tells the program of the listener first, and then asks it for its windows.
        eventually(lambda: windows() is not None, "the answer of a program")

    def take(self, event):
        try:
            role, data = event.source.get_role_name(), event.any_data
            if isinstance(data, Atspi.Accessible):
                data = data.get_role_name()
        except GLib.Error:  # it has gone meanwhile
            return
        self.events.append((event.type, event.detail1, event.detail2, data, role))

    def added(self):
        """The roles of what has come below something else."""
        return [each[3] for each in self.events if each[0] == "object:children-changed:add"]

    def texts(self, kind):
        return [each[3] for each in self.events if each[0].startswith(kind)]

    def spoken(self):
        return "".join(self.texts("object:text-changed:insert"))
