// SPDX-License-Identifier: MIT
// The SSH-1 host.
#include "tests/long_runs/hosts.h"
#include "tests/ssh1/outside.h"
#include "tests/ssh1/scripted_host.h"
#include "text/bytes.h"

static std::string g_packet;

// ScriptedHost takes what was sent from here.
std::string Wire() {
    std::string packet;
    packet.swap(g_packet);
    return packet;
}

enum { kSuccess = 14, kFailure = 15, kStdin = 16, kStdout = 17, kIgnore = 32 };

static void Answer(LongHost& host, int type) { host.net.Send(host.ssh1->Packet(type)); }

static void BeginSsh1(LongHost& host) {
    host.ssh1 = std::make_shared<ScriptedHost>();
    host.net.Send("SSH-1.5-for long runs\n");
}

static void TakeMessage(LongHost& host) {
    const std::vector<Message> messages = host.ssh1->Sent();
    for (const Message& message : messages) {
        switch (message.type) {
            case 4:
                Answer(host, kFailure);  // a password is wanted
                break;
            case 9:
            case 10:
                Answer(host, kSuccess);
                break;
            case 12:
                host.ready = true;
                break;
            case kStdin:
                host.received += message.data.substr(4);
                break;
            default:
                break;
        }
    }
}

static void TakeKey(LongHost& host) {
    if (host.ssh1->TakeSessionKey()) Answer(host, kSuccess);
    host.ssh1_state = 2;
}

static size_t PacketSize(const std::string& wire) {
    if (wire.size() < 4) return 0;
    const auto* bytes = reinterpret_cast<const BYTE*>(wire.data());
    const uint32_t length = LoadBig<uint32_t>(bytes);
    return 4 + length + 8 - length % 8;
}

static bool TakeLine(LongHost& host) {
    const size_t end = host.wire.find('\n');
    if (end == std::string::npos) return false;
    host.wire.erase(0, end + 1);
    host.ssh1_state = 1;
    host.net.Send(host.ssh1->PublicKey());
    return true;
}

static void TakeSsh1(LongHost& host) {
    if (host.ssh1_state == 0 && !TakeLine(host)) return;
    for (size_t size = PacketSize(host.wire); size > 0 && host.wire.size() >= size;
         size = PacketSize(host.wire)) {
        g_packet = host.wire.substr(0, size);
        host.wire.erase(0, size);
        host.ssh1_state == 1 ? TakeKey(host) : TakeMessage(host);
    }
}

static constexpr size_t kMostData = 1000;

static void FlushSsh1(LongHost& host) {
    if (!host.ready) return;
    std::string packets;
    for (size_t at = 0; at < host.held.size(); at += kMostData)
        packets += host.ssh1->Packet(kStdout, String(host.held.substr(at, kMostData)));
    host.net.Send(packets);
    host.held.clear();
}

static void StirSsh1(LongHost& host, unsigned random) {
    if (host.ready)
        host.net.Send(host.ssh1->Packet(kIgnore, String(std::string(random % 999, 'i'))));
}

const HostKind ssh1_kind = {"ssh-1", 1, 0, BeginSsh1, TakeSsh1, FlushSsh1, StirSsh1};
