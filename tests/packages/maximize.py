# SPDX-License-Identifier: MIT
"""Asks the window manager to maximise a window: maximize.py WINDOW."""
import ctypes
import sys


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
state, wide, high = (x11.XInternAtom(display, b"_NET_WM_STATE" + end, 0)
                     for end in (b"", b"_MAXIMIZED_HORZ", b"_MAXIMIZED_VERT"))
message = Message(type=33, display=display.value, window=int(sys.argv[1]), message=state, format=32)
message.data[:] = [1, wide, high, 1, 0]
x11.XSendEvent(display, x11.XDefaultRootWindow(display), 0, 0x180000, ctypes.byref(message))
x11.XSync(display, 0)
