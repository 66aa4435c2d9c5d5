#!/usr/bin/python3
# SPDX-License-Identifier: MIT
# asyncssh as the server, on a free port of 127.0.0.1, for "visitor" with "warehouse7"; a bash on a
# real pty. It sends MSG_IGNORE before every packet.
# Usage: asyncssh_server.py CIPHER [REKEY_BYTES]
import asyncio
import os
import sys

import server_tools

try:
    import asyncssh
except ImportError:
    server_tools.skip("python3-asyncssh is missing")


class Server(asyncssh.SSHServer):
    def begin_auth(self, username):
        return True

    def password_auth_supported(self):
        return True

    def validate_password(self, username, password):
        return (username, password) == (server_tools.USER, server_tools.PASSWORD)


async def write_all(process, master):
    loop = asyncio.get_running_loop()
    while True:
        try:
            data = await loop.run_in_executor(None, os.read, master, 16384)
        except OSError:
            data = b""
        if not data:
            break
        process.stdout.write(data)
        await process.stdout.drain()
    process.exit(0)


async def read_all(process, master):
    loop = asyncio.get_running_loop()
    while True:
        data = await process.stdin.read(4096)
        if not data:
            break
        while data:
            count = await loop.run_in_executor(None, os.write, master, data)
            data = data[count:]


async def serve_shell(process):
    columns, rows = process.get_terminal_size()[:2]
    pid, master = server_tools.start_shell(process.get_terminal_type(), columns, rows)
    reading = asyncio.ensure_future(read_all(process, master))
    try:
        await write_all(process, master)
    finally:
        reading.cancel()
        server_tools.end_shell(pid, master)


async def main():
    options = {}
    if len(sys.argv) > 2:
        options["rekey_bytes"] = int(sys.argv[2])
    server = await asyncssh.create_server(
        Server,
        "127.0.0.1",
        0,
        server_host_keys=[asyncssh.generate_private_key("ssh-dss")],
        process_factory=serve_shell,
        line_editor=False,
        encoding=None,
        kex_algs=["diffie-hellman-group1-sha1"],
        encryption_algs=[sys.argv[1]],
        mac_algs=["hmac-sha1"],
        compression_algs=["none"],
        signature_algs=["ssh-dss"],
        **options,
    )
    server_tools.announce(server.sockets[0].getsockname()[1])
    server_tools.end_with_standard_input()
    await server.wait_closed()


asyncio.run(main())
