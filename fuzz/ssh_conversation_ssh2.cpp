// SPDX-License-Identifier: MIT
// The server's side of SSH-2, with the real ciphers, MAC and key exchange. It goes on whatever the
// client answers, but for a key exchange, which needs the client's part.
#include "fuzz/ssh_conversation.h"
#include "session/session_state.h"
#include "tests/ssh2/scripted_server.h"

static const uint32_t kServerChannel = 0xfedc0042, kClientChannel = 27;

namespace {

struct Server {
    ScriptedServer state;
    std::string client_kex_init, client_public;  // the last ones, empty until they have come
    bool client_new_keys = false;
    int exchanges = 0;
};

}  // namespace

static void TakeMessage(Server& server, const std::string& payload) {
    Require(!payload.empty() && payload != "broken", "the client's packet opens");
    run.outcome.messages.push_back(payload);
    if (payload[0] == 20) server.client_kex_init = payload;
    if (payload[0] == 30) server.client_public = payload.substr(1);
    if (payload[0] == 21) server.client_new_keys = true;
}

// The client's NEWKEYS is the last packet under the old keys, so there the server changes its own.
static void Listen(Server& server) {
    run.wire += TakeWire();
    while (!server.client_new_keys && !run.wire.empty()) {
        std::string padding;
        TakeMessage(server, Unseal(server.state, &run.wire, &padding));
    }
}

static void Send(Server& server, const std::string& payload) {
    Carry(Seal(server.state, Spoiled(payload)));
}

static void Say(Server& server, const std::string& payload) {
    Send(server, payload);
    Flush();
    Listen(server);
}

// False if the client did not take the server's NEWKEYS: what it says then is not sealed with these
// keys.
static bool InstallBoth(Server& server) {
    InstallKeys(server.state);
    server.client_new_keys = false;
    Flush();
    if (!session.ssh2.cipher || session.ssh2.keysPending) return false;
    Listen(server);
    return true;
}

// False if the client does not take part. The user types in the middle of it.
static bool ExchangeKeys(Server& server, const std::string& typed) {
    server.client_kex_init = server.client_public = "";
    server.state.server_kex_init =
        ServerKexInit(std::string(16, static_cast<char>(++server.exchanges)));
    Say(server, server.state.server_kex_init);
    Type(typed);
    if (server.client_kex_init.empty() || server.client_public.empty()) return false;
    server.state.client_kex_init = server.client_kex_init;
    server.state.e = server.client_public;
    Say(server, KexDhReply(server.state, "SSH-2.0-1.0.00"));
    if (!server.client_new_keys) return false;
    Send(server, Message(21));
    return InstallBoth(server);
}

static std::string Data(const std::string& text) {
    return Message(94, U32(kClientChannel) + Str(text));
}

static std::string Extended(const std::string& text) {
    return Message(95, U32(kClientChannel) + U32(1) + Str(text));
}

static std::string Ignored(const std::string& text) { return Message(2, Str(text)); }

static std::string Window(const std::string& text) {
    return Message(93, U32(kClientChannel) + U32(static_cast<uint32_t>(text.size())));
}

static std::string Request(const std::string& text) {
    return Message(98, U32(kClientChannel) + Str("exit-status") + Message(0) + Str(text));
}

static std::string (*const kPieces[])(const std::string&) = {Data,   Data,    Data,   Extended,
                                                             Window, Request, Ignored};

static bool GoOn(Server& server, const Piece& piece) {
    const size_t kind = static_cast<size_t>(piece.kind) % (std::size(kPieces) + 1);
    if (kind < std::size(kPieces)) {
        Send(server, kPieces[kind](piece.text));
    } else {
        Flush();
        Listen(server);
        return ExchangeKeys(server, piece.typed);
    }
    if (piece.typed.empty()) return true;
    Flush();
    Type(piece.typed);
    Listen(server);
    return true;
}

static void LogIn(Server& server, const Script& script) {
    Say(server, Message(6, Str("ssh-userauth")));
    if (script.refuses_first) Say(server, Message(51, Str("password") + Message(0)));
    Say(server, Message(52));
    Say(server, Message(91, U32(kClientChannel) + U32(kServerChannel) + U32(0) + U32(32768)));
    Say(server, Message(99, U32(kClientChannel)));
    Say(server, Message(99, U32(kClientChannel)));
}

void TalkSsh2(const Script& script) {
    Server server;
    server.state.blowfish = script.ssh_type == 2;
    Carry(server.state.line);
    Flush();
    if (!ExchangeKeys(server, "")) return;
    LogIn(server, script);
    for (const Piece& piece : script.pieces)
        if (!GoOn(server, piece)) return;
    Flush();
    Listen(server);
    if (script.ends) Say(server, Message(97, U32(kClientChannel)));
}
