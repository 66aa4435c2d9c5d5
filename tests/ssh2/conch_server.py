#!/usr/bin/python3
# SPDX-License-Identifier: MIT
# Twisted's conch as the server, behind a relay that delays its first packet, on a free port of
# 127.0.0.1, for "visitor" with "warehouse7"; a bash on a real pty.
# Usage: conch_server.py CIPHER
import hashlib
import os
import sys
import threading
import warnings

import relay
import server_tools

warnings.simplefilter("ignore")
try:
    from twisted.conch import avatar
    from twisted.conch.ssh import _kex, factory, keys, session, transport, userauth, connection
    from twisted.cred import checkers, portal
    from twisted.internet import reactor
    from twisted.python import components
    from zope.interface import implementer
    from cryptography.hazmat.primitives.asymmetric import dsa
except ImportError:
    server_tools.skip("python3-twisted is missing")


@implementer(_kex._IFixedGroupKexAlgorithm)
class Group1:
    """Conch no longer offers this group, but its code for fixed groups still supports it."""

    preference = 9
    hashProcessor = hashlib.sha1
    generator = 2
    prime = int(
        "FFFFFFFFFFFFFFFFC90FDAA22168C234C4C6628B80DC1CD129024E088A67CC74020BBEA63B139B22514A0879"
        "8E3404DDEF9519B3CD3A431B302B0A6DF25F14374FE1356D6D51C245E485B576625E7EC6F44C42E9A637ED6B"
        "0BFF5CB6F406B7EDEE386BFB5A899FA5AE9F24117C4B1FE649286651ECE65381FFFFFFFFFFFFFFFF",
        16,
    )


_kex._kexAlgorithms[b"diffie-hellman-group1-sha1"] = Group1()


class Visitor(avatar.ConchUser):
    def __init__(self):
        super().__init__()
        self.channelLookup[b"session"] = session.SSHSession


@implementer(session.ISession)
class Shell:
    def __init__(self, user):
        self.term = None

    def getPty(self, term, window, modes):
        rows, columns = window[:2]
        self.term = (term.decode(), columns, rows)

    def openShell(self, protocol):
        self.pid, self.master = server_tools.start_shell(*self.term)
        protocol.makeConnection(self)
        self.protocol = protocol
        self.may_write = threading.Event()
        self.may_write.set()
        threading.Thread(target=self.copy_out, daemon=True).start()

    def copy_out(self):
        while True:
            self.may_write.wait()
            try:
                data = os.read(self.master, 4096)
            except OSError:
                break
            done = threading.Event()
            reactor.callFromThread(lambda: (self.protocol.outReceived(data), done.set()))
            done.wait()
        reactor.callFromThread(self.protocol.processEnded, Ended())

    # The transport of the session's protocol.
    def write(self, data):
        while data:
            data = data[os.write(self.master, data):]

    def loseConnection(self):
        server_tools.end_shell(self.pid, self.master)

    def pauseProducing(self):
        self.may_write.clear()

    def resumeProducing(self):
        self.may_write.set()

    def eofReceived(self):
        pass

    def closed(self):
        if hasattr(self, "pid"):
            server_tools.end_shell(self.pid, self.master)

    def windowChanged(self, window):
        pass


class Ended:
    class value:
        exitCode = 0
        signal = None


components.registerAdapter(Shell, Visitor, session.ISession)


class Realm:
    def requestAvatar(self, name, mind, *interfaces):
        return interfaces[0], Visitor(), lambda: None


class Transport(transport.SSHServerTransport):
    supportedKeyExchanges = [b"diffie-hellman-group1-sha1"]
    supportedPublicKeys = [b"ssh-dss"]
    supportedMACs = [b"hmac-sha1"]
    supportedCompressions = [b"none"]


class Factory(factory.SSHFactory):
    protocol = Transport
    services = {b"ssh-userauth": userauth.SSHUserAuthServer, b"ssh-connection": connection.SSHConnection}

    def __init__(self, key):
        self.publicKeys = {b"ssh-dss": key.public()}
        self.privateKeys = {b"ssh-dss": key}


Transport.supportedCiphers = [sys.argv[1].encode()]
users = checkers.InMemoryUsernamePasswordDatabaseDontUse()
users.addUser(server_tools.USER.encode(), server_tools.PASSWORD.encode())
server = Factory(keys.Key(dsa.generate_private_key(1024)))
server.portal = portal.Portal(Realm(), [users])
port = reactor.listenTCP(0, server, interface="127.0.0.1")
server_tools.announce(relay.start(port.getHost().port))
server_tools.end_with_standard_input()
reactor.run(installSignalHandlers=False)
