# SPDX-License-Identifier: MIT
"""Messages to a window of X.

x_window.py maximize WINDOW: asks the window manager to maximise it.
x_window.py ping WINDOW: ends once its program has answered, and so has taken all that X sent it before.
"""
import ctypes
import select
import sys

PATIENCE = 20  # seconds
CLIENT_MESSAGE = 33
STRUCTURE_NOTIFY, SUBSTRUCTURE_NOTIFY, SUBSTRUCTURE_REDIRECT = 0x20000, 0x80000, 0x100000


class Message(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("message", ctypes.c_ulong),
                ("format", ctypes.c_int), ("data", ctypes.c_long * 5), ("room", ctypes.c_long * 16)]


x11 = ctypes.CDLL("libX11.so.6")
x11.XOpenDisplay.restype = ctypes.c_void_p
x11.XDefaultRootWindow.restype = x11.XInternAtom.restype = ctypes.c_ulong
x11.XInternAtom.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int]
x11.XSendEvent.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_long, ctypes.c_void_p]
display = ctypes.c_void_p(x11.XOpenDisplay(None))
root = x11.XDefaultRootWindow(display)
window = int(sys.argv[2])


def atom(name):
    return x11.XInternAtom(display, name, 0)


def send(to, mask, name, *data):
    message = Message(type=CLIENT_MESSAGE, display=display.value, window=window, message=atom(name), format=32)
    message.data[:len(data)] = data
    x11.XSendEvent(display, ctypes.c_ulong(to), 0, mask, ctypes.byref(message))
    x11.XSync(display, 0)


def maximize():
    wide, high = (atom(b"_NET_WM_STATE_MAXIMIZED_" + side) for side in (b"HORZ", b"VERT"))
    send(root, SUBSTRUCTURE_NOTIFY | SUBSTRUCTURE_REDIRECT, b"_NET_WM_STATE", 1, wide, high, 1, 0)


def is_answer(event):
    return (event.type == CLIENT_MESSAGE and event.message == atom(b"WM_PROTOCOLS")
            and event.data[0] == atom(b"_NET_WM_PING") and event.data[2] == window)


def ping():
    x11.XSelectInput(display, ctypes.c_ulong(root), ctypes.c_long(STRUCTURE_NOTIFY | SUBSTRUCTURE_NOTIFY))
    send(window, 0, b"WM_PROTOCOLS", atom(b"_NET_WM_PING"), 0, window)
    event = Message()
    while True:
        while x11.XPending(display):
            x11.XNextEvent(display, ctypes.byref(event))
            if is_answer(event):
                return
        if not select.select([x11.XConnectionNumber(display)], [], [], PATIENCE)[0]:
            sys.exit("the window's program does not answer")


{"maximize": maximize, "ping": ping}[sys.argv[1]]()
