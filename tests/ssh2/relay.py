#!/usr/bin/python3
# SPDX-License-Identifier: MIT
# A relay in front of a server that sends its line and its first packet in one chunk. It keeps what
# follows the line until the client's line has arrived.
# Usage: relay.py --standard-input PORT     for the client on standard input, a socket
# Imported: start(PORT) listens for clients and returns its own port.
import socket
import sys
import threading
import time


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


def connect(port):
    """Retries, because the server may still be starting."""
    for attempt in range(100):
        try:
            return socket.create_connection(("127.0.0.1", port))
        except ConnectionRefusedError:
            time.sleep(0.1)
    sys.exit("relay.py: no server")


def relay(client, port):
    server = connect(port)
    for each in (client, server):
        each.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
    client.sendall(read_line(server))
    server.sendall(read_line(client))
    threading.Thread(target=copy, args=(client, server), daemon=True).start()
    copy(server, client)
    client.close()


def start(port):
    listener = socket.create_server(("127.0.0.1", 0))

    def accept():
        while True:
            client = listener.accept()[0]
            threading.Thread(target=relay, args=(client, port), daemon=True).start()

    threading.Thread(target=accept, daemon=True).start()
    return listener.getsockname()[1]


if __name__ == "__main__":
    relay(socket.socket(fileno=0), int(sys.argv[2]))
