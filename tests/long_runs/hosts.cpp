// SPDX-License-Identifier: MIT
// What the hosts share, and the Telnet host.
#include "tests/long_runs/hosts.h"

#include <poll.h>
#include <sys/socket.h>

const HostKind* const host_kinds[kHostKinds] = {&telnet_kind, &ssh1_kind, &ssh2_kind};

static constexpr size_t kPiece = 65536;

static bool Readable(const LongHost& host, int milliseconds) {
    pollfd entry = {host.net.connection, POLLIN, 0};
    return poll(&entry, 1, milliseconds) > 0;
}

void Serve(LongHost& host, int milliseconds) {
    std::string piece(kPiece, '\0');
    while (!host.gone && Readable(host, milliseconds)) {
        const ssize_t got = recv(host.net.connection, piece.data(), piece.size(), 0);
        host.gone = got <= 0;
        if (host.gone) return;
        host.wire.append(piece, 0, static_cast<size_t>(got));
        host.kind->take(host);
        host.kind->flush(host);
    }
}

void BeginSession(LongHost& host, const HostKind& kind, unsigned cipher) {
    host.kind = &kind;
    host.wire.clear();
    host.held.clear();
    host.shown.clear();
    host.received.clear();
    host.line.clear();
    host.ready = host.gone = host.rekeying = false;
    host.rekeys = host.ssh1_state = 0;
    host.chat = static_cast<int>(cipher);
    kind.begin(host);
}

void Show(LongHost& host, const std::string& bytes) {
    host.held += bytes;
    host.shown += bytes;
    host.kind->flush(host);
}

// ---------------------------------------------------------------- Telnet

static const char kOpening[] = "\xff\xfd\x18\xff\xfb\x01\xff\xfb\x03\xff\xfd\x03";

static const std::string kNegotiations[] = {
    std::string("\xff\xfd\x18", 3),
    std::string("\xff\xfa\x18\x01\xff\xf0", 6),
    std::string("\xff\xfb\x03\xff\xfd\x03", 6),
    std::string("\xff\xfd\x1f\xff\xfb\x05\xff\xfe\x05", 9),
    std::string("\xff\xfb\x00\xff\xfc\x00", 6),
    std::string("\xff\xfe\x18\xff\xfd\x18", 6),
    std::string("\xff\xfd\xc8\xff\xfe\xc8\xff\xfc\x27", 9),
    std::string("\xff\xfa\x18\x00VT220\xff\xf0", 11),
    std::string("\xff\xfa\x1f\x00\x50\x00\x18\xff\xf0", 9),
};

// Byte by byte with a moment between, or as one.
static void StirTelnet(LongHost& host, unsigned random) {
    const std::string& bytes = kNegotiations[random % std::size(kNegotiations)];
    const size_t cut = random / 16 % bytes.size();
    host.net.Send(bytes.substr(0, cut));
    if (random & 4) Serve(host, 1);
    host.net.Send(bytes.substr(cut));
}

static void BeginTelnet(LongHost& host) {
    host.ready = true;
    host.net.Send(kOpening);
}

static void TakeTelnet(LongHost& host) {
    host.received += host.wire;
    host.wire.clear();
}

static void FlushTelnet(LongHost& host) {
    host.net.Send(host.held);
    host.held.clear();
}

const HostKind telnet_kind = {"telnet", 0, 1, BeginTelnet, TakeTelnet, FlushTelnet, StirTelnet};
