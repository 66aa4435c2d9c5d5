// SPDX-License-Identifier: MIT
// The server's side of SSH-1, with the real ciphers and checksums. Its public exponents are 1.
#include "fuzz/ssh_conversation.h"
#include "tests/ssh1/outside.h"
#include "tests/ssh1/scripted_host.h"

std::string Wire() {
    const std::string bytes = run.wire + TakeWire();
    run.wire.clear();
    return bytes;
}

static void Listen(ScriptedHost& host) {
    for (const Message& message : host.Sent())
        run.outcome.messages.push_back(static_cast<char>(message.type) + message.data);
}

static void Send(ScriptedHost& host, int type, const std::string& data) {
    const std::string payload = Spoiled(static_cast<char>(type) + data);
    if (payload.empty()) return Carry(host.ShortPacket(4));
    Carry(host.Packet(static_cast<uint8_t>(payload[0]), payload.substr(1)));
}

static void Say(ScriptedHost& host, int type, const std::string& data = "") {
    Send(host, type, data);
    Flush();
    Listen(host);
}

// False if the client does not take part. The answer to a key that is not the host's own cannot be
// read.
static bool ExchangeKeys(ScriptedHost& host) {
    const bool spoiled =
        run.fault.packet == run.packets && !OnWire(run.fault) && run.fault.kind != FaultKind::kNone;
    Send(host, 2, host.PublicKeyData());
    Flush();
    run.wire += TakeWire();
    return !spoiled && !run.wire.empty() && host.TakeSessionKey();
}

static void LogIn(ScriptedHost& host, const Script& script) {
    Say(host, 14);  // encrypted from here on
    Say(host, 15);  // a password is required
    if (script.refuses_first) {
        Say(host, 15);
        Say(host, 15);
    }
    Say(host, 14);  // the password is correct
    Say(host, 14);  // the terminal is granted
}

static void GoOn(ScriptedHost& host, const Piece& piece) {
    static const int kTypes[] = {17, 17, 17, 18, 18, 32, 36, 17};
    Send(host, kTypes[static_cast<size_t>(piece.kind) % std::size(kTypes)], String(piece.text));
    if (piece.typed.empty()) return;
    Flush();
    Type(piece.typed);
    Listen(host);
}

void TalkSsh1(const Script& script) {
    ScriptedHost host;
    if (!script.has_cipher) host.ciphers = 0;
    Carry("SSH-1.5-scripted\n");
    Flush();
    if (!ExchangeKeys(host)) return;
    LogIn(host, script);
    for (const Piece& piece : script.pieces) GoOn(host, piece);
    Flush();
    Listen(host);
    if (script.ends) Say(host, script.pieces.size() % 2 ? 1 : 20, Uint32(0));
}
