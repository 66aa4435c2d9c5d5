// SPDX-License-Identifier: MIT
// The SSH-2 host, which asks for new keys in the middle of the session.
#include <algorithm>

#include "tests/long_runs/hosts.h"
#include "tests/ssh2/scripted_server.h"

static constexpr uint32_t kClientChannel = 27;
static constexpr uint32_t kOwnChannel = 0xfedc0042;
static constexpr uint32_t kOwnWindow = 0x40000000;
static constexpr uint32_t kOwnPacket = 32768;
static constexpr size_t kMostData = 3000;

static void Send(LongHost& host, const std::string& payload) {
    host.net.Send(Seal(*host.ssh2, payload, host.chat / 4 % 5));
}

static uint32_t NumberAt(const std::string& bytes, size_t at) {
    uint32_t value = 0;
    for (size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
    return value;
}

static void OfferKeys(LongHost& host) {
    host.rekeying = true;
    host.ssh2->server_kex_init = ServerKexInit();
    Send(host, host.ssh2->server_kex_init);
}

static void BeginSsh2(LongHost& host) {
    host.ssh2 = std::make_shared<ScriptedServer>();
    host.ssh2->blowfish = host.chat % 3 == 2;
    host.window = 0;
    host.net.Send(host.ssh2->line);
}

static void OnKexInit(LongHost& host, const std::string& payload) {
    host.ssh2->client_kex_init = payload;
}

static void OnKexDhInit(LongHost& host, const std::string& payload) {
    host.ssh2->e = payload.substr(1);
    Send(host, KexDhReply(*host.ssh2, host.line));
    Send(host, Message(21));
}

static void OnNewKeys(LongHost& host, const std::string&) {
    InstallKeys(*host.ssh2);
    host.rekeying = false;
    ++host.rekeys;
}

static void OnServiceRequest(LongHost& host, const std::string&) {
    Send(host, Message(6, Str("ssh-userauth")));
}

static void OnUserauthRequest(LongHost& host, const std::string&) { Send(host, Message(52)); }

static void OnChannelOpen(LongHost& host, const std::string& payload) {
    host.window = NumberAt(payload, 1 + 4 + 7 + 4);
    Send(host,
         Message(91, U32(kClientChannel) + U32(kOwnChannel) + U32(kOwnWindow) + U32(kOwnPacket)));
}

static void OnChannelRequest(LongHost& host, const std::string& payload) {
    Send(host, Message(99, U32(kClientChannel)));
    if (payload.find("shell") != std::string::npos) host.ready = true;
}

static void OnChannelData(LongHost& host, const std::string& payload) {
    host.received += payload.substr(9);
}

static void OnWindowAdjust(LongHost& host, const std::string& payload) {
    host.window += NumberAt(payload, 5);
}

struct MessageRow {
    int number;
    void (*take)(LongHost& host, const std::string& payload);
};

static const MessageRow kMessages[] = {
    {5, OnServiceRequest}, {20, OnKexInit},         {21, OnNewKeys},
    {30, OnKexDhInit},     {50, OnUserauthRequest}, {90, OnChannelOpen},
    {93, OnWindowAdjust},  {94, OnChannelData},     {98, OnChannelRequest},
};

static void TakePayload(LongHost& host, const std::string& payload) {
    for (const MessageRow& row : kMessages)
        if (!payload.empty() && payload[0] == static_cast<char>(row.number))
            return row.take(host, payload);
}

static bool TakeLine(LongHost& host) {
    const size_t end = host.wire.find('\n');
    if (end == std::string::npos) return false;
    host.line = host.wire.substr(0, end);
    host.wire.erase(0, end + 1);
    OfferKeys(host);
    return true;
}

static void TakeSsh2(LongHost& host) {
    if (host.line.empty() && !TakeLine(host)) return;
    std::string padding;
    while (PacketWaits(*host.ssh2, host.wire))
        TakePayload(host, Unseal(*host.ssh2, &host.wire, &padding));
}

static void FlushSsh2(LongHost& host) {
    while (host.ready && !host.rekeying && !host.held.empty() && host.window > 0) {
        const size_t count = std::min({host.held.size(), host.window, kMostData});
        Send(host, Message(94, U32(kClientChannel) + Str(host.held.substr(0, count))));
        host.held.erase(0, count);
        host.window -= count;
    }
}

static void StirSsh2(LongHost& host, unsigned random) {
    if (!host.ready || host.rekeying) return;
    if (random & 1) return OfferKeys(host);
    Send(host, Message(2, Str(std::string(random / 2 % 999, 'i'))));
}

const HostKind ssh2_kind = {"ssh-2", 1, 1, BeginSsh2, TakeSsh2, FlushSsh2, StirSsh2};
