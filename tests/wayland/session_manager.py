#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A session manager for one client. Prints its address; when the client has saved itself, the command that
would start it again, one argument a line, "in FOLDER", and "saved". It shall save itself at its start and with
each line "save" of standard input; with another line it ends, and then the manager does. Before that it may go
and come again, as a client does that executes itself again.
"""
import ctypes
import select
import sys

ICE, SM = ctypes.CDLL("libICE.so.6"), ctypes.CDLL("libSM.so.6")
POINTER = ctypes.c_void_p
LOCAL, BOTH, SHUTDOWN, NOT_FAST, NO_QUESTIONS = 1, 2, 1, 0, 0
IDLE = 0.05  # seconds


class Value(ctypes.Structure):
    _fields_ = [("length", ctypes.c_int), ("value", POINTER)]


class Property(ctypes.Structure):
    _fields_ = [("name", ctypes.c_char_p), ("type", ctypes.c_char_p), ("count", ctypes.c_int),
                ("values", ctypes.POINTER(Value))]


class Callback(ctypes.Structure):
    _fields_ = [("procedure", POINTER), ("data", POINTER)]


# In the order of the library's structure; all arguments that are not looked at are pointers.
NEW_CLIENT = ctypes.CFUNCTYPE(ctypes.c_int, POINTER, POINTER, ctypes.POINTER(ctypes.c_ulong),
                              ctypes.POINTER(Callback), POINTER)
REGISTER = ctypes.CFUNCTYPE(ctypes.c_int, POINTER, POINTER, POINTER)
OTHER = ctypes.CFUNCTYPE(None, POINTER, POINTER, POINTER, POINTER)
PROPERTIES = ctypes.CFUNCTYPE(None, POINTER, POINTER, ctypes.c_int, ctypes.POINTER(ctypes.POINTER(Property)))
IO_ERROR = ctypes.CFUNCTYPE(None, POINTER)
ALLOW = ctypes.CFUNCTYPE(ctypes.c_int, POINTER)
NAMES = ("register", "interact", "interacted", "request", "phase2", "done", "close", "set", "delete", "get")
for procedure in (SM.SmsGenerateClientID, ICE.IceAcceptConnection):
    procedure.restype = POINTER
ICE.IceComposeNetworkIdList.restype = ctypes.c_char_p
client = None


@REGISTER
def register(connection, data, before):
    if before:
        return 0
    SM.SmsRegisterClientReply(POINTER(connection), POINTER(SM.SmsGenerateClientID(POINTER(connection))))
    SM.SmsSaveYourself(POINTER(connection), LOCAL, 0, NO_QUESTIONS, NOT_FAST)
    return 1


@PROPERTIES
def take(connection, data, count, properties):
    for each in properties[:count]:
        values = [ctypes.string_at(value.value, value.length).decode()
                  for value in each.contents.values[:each.contents.count]]
        if each.contents.name == b"RestartCommand":
            print(*values, sep="\n")
        elif each.contents.name == b"CurrentDirectory":
            print("in", *values)


@OTHER
def done(connection, data, *_):
    SM.SmsSaveComplete(POINTER(connection))
    print("saved", flush=True)


@OTHER
def ignore(*_):
    pass


@NEW_CLIENT
def new_client(connection, data, mask, callbacks, reason):
    global client
    client = connection
    mask[0] = (1 << len(NAMES)) - 1
    for index, name in enumerate(NAMES):
        procedure = {"register": register, "set": take, "done": done}.get(name, ignore)
        callbacks[index] = Callback(ctypes.cast(procedure, POINTER), None)
    return 1


@IO_ERROR
def has_gone(connection):
    pass  # the library would end the process


@ALLOW
def allow(name):
    return 1


def main():
    ICE.IceSetIOErrorHandler(has_gone)
    error = ctypes.create_string_buffer(256)
    assert SM.SmsInitialize(b"test", b"1", new_client, None, allow, len(error), error), error.value
    count, listeners = ctypes.c_int(), ctypes.POINTER(POINTER)()
    assert ICE.IceListenForConnections(ctypes.byref(count), ctypes.byref(listeners), len(error), error), error.value
    for each in listeners[:count.value]:
        ICE.IceSetHostBasedAuthProc(POINTER(each), allow)
    print(ICE.IceComposeNetworkIdList(count, listeners).decode(), flush=True)
    doors = {ICE.IceGetListenConnectionNumber(POINTER(each)): each for each in listeners[:count.value]}
    peers, ending = {}, False
    while True:
        for ready in select.select([sys.stdin, *doors, *peers], [], [])[0]:
            if ready in doors:
                status = ctypes.c_int()
                peer = ICE.IceAcceptConnection(POINTER(doors[ready]), ctypes.byref(status))
                peers[ICE.IceConnectionNumber(POINTER(peer))] = peer
            elif ready in peers:
                if ICE.IceProcessMessages(POINTER(peers[ready]), None, None) != 0:
                    if ending:
                        return
                    del peers[ready]
            elif not (word := sys.stdin.readline()):
                return
            elif word == "save\n":
                SM.SmsSaveYourself(POINTER(client), BOTH, SHUTDOWN, NO_QUESTIONS, NOT_FAST)
            else:
                ending = True
                SM.SmsDie(POINTER(client))


if __name__ == "__main__":
    main()
