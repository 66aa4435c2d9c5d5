#!/usr/bin/python3
# A relay before a server that sends its line and its first packet in one chunk: it holds back what
# follows the line until the client's line has come.
# Usage: relay.py PORT      of the server on 127.0.0.1; prints its own
import socket
import sys
import threading

import server_tools


def copy(source, target):
    try:
        while data := source.recv(65536):
            target.sendall(data)
        target.shutdown(socket.SHUT_WR)
    except OSError:
        pass


def read_line(connection):
    line = b""
    while not line.endswith(b"\n"):
        byte = connection.recv(1)
        if not byte:
            break
        line += byte
    return line


def relay(client):
    client.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
    server = socket.create_connection(("127.0.0.1", int(sys.argv[1])))
    server.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
    client.sendall(read_line(server))
    server.sendall(read_line(client))
    threading.Thread(target=copy, args=(client, server), daemon=True).start()
    copy(server, client)
    client.close()


listener = socket.create_server(("127.0.0.1", 0))
server_tools.announce(listener.getsockname()[1])
server_tools.end_with_standard_input()
while True:
    threading.Thread(target=relay, args=(listener.accept()[0],), daemon=True).start()
