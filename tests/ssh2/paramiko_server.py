#!/usr/bin/python3
# SPDX-License-Identifier: MIT
# paramiko as the server, on a free port of 127.0.0.1, for "visitor" with "warehouse7"; a bash on a
# real pty. Triple DES is the only cipher that it shares with the client.
import os
import socket
import threading

import server_tools

try:
    import warnings

    warnings.simplefilter("ignore")
    import paramiko
except ImportError:
    server_tools.skip("python3-paramiko is missing")


class Server(paramiko.ServerInterface):
    def __init__(self):
        self.pty = None
        self.shell = threading.Event()

    def get_allowed_auths(self, username):
        return "password"

    def check_auth_password(self, username, password):
        good = (username, password) == (server_tools.USER, server_tools.PASSWORD)
        return paramiko.AUTH_SUCCESSFUL if good else paramiko.AUTH_FAILED

    def check_channel_request(self, kind, chanid):
        return paramiko.OPEN_SUCCEEDED

    def check_channel_pty_request(self, channel, term, width, height, *rest):
        self.pty = (term.decode(), width, height)
        return True

    def check_channel_shell_request(self, channel):
        self.shell.set()
        return True


def copy_in(channel, master):
    while True:
        data = channel.recv(4096)
        if not data:
            break
        while data:
            data = data[os.write(master, data):]


def serve(connection):
    transport = paramiko.Transport(connection)
    options = transport.get_security_options()
    options.kex = ["diffie-hellman-group1-sha1"]
    options.key_types = ["ssh-dss"]
    options.ciphers = ["3des-cbc"]
    options.digests = ["hmac-sha1"]
    transport.add_server_key(paramiko.DSSKey.generate(1024))
    server = Server()
    transport.start_server(server=server)
    channel = transport.accept(120)
    if channel is None or not server.shell.wait(30):
        transport.close()
        return
    pid, master = server_tools.start_shell(*server.pty)
    threading.Thread(target=copy_in, args=(channel, master), daemon=True).start()
    try:
        while True:
            channel.sendall(os.read(master, 16384))
    except OSError:
        pass
    channel.close()
    server_tools.end_shell(pid, master)


listener = socket.create_server(("127.0.0.1", 0))
server_tools.announce(listener.getsockname()[1])
server_tools.end_with_standard_input()
while True:
    threading.Thread(target=serve, args=(listener.accept()[0],), daemon=True).start()
