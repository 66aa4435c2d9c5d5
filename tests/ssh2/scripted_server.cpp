// SPDX-License-Identifier: MIT
// The server's side of SSH-2: packets, keys, signature and key exchange.
#include "tests/ssh2/scripted_server.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/ssh2/judge.h"

namespace {

// ---------------------------------------------------------------- numbers

const char kPrime[] =
    "FFFFFFFFFFFFFFFFC90FDAA22168C234C4C6628B80DC1CD129024E088A67CC74020BBEA63B139B22514A08798E3404"
    "DD"
    "EF9519B3CD3A431B302B0A6DF25F14374FE1356D6D51C245E485B576625E7EC6F44C42E9A637ED6B0BFF5CB6F406B7"
    "ED"
    "EE386BFB5A899FA5AE9F24117C4B1FE649286651ECE65381FFFFFFFFFFFFFFFF";
const char kSignatureSecret[] = "7f6e5d4c3b2a19080716253443526170ffeeddcc";

// A host key of 1,024 bits, made for these tests.
const char kHostKeyP[] =
    "8823b57905acd21a17e7f5eacf502cf66747fa5bc3957188e2833cc5e900413eb4b540dfed89f0aa"
    "ea2274b0fcc2b24c948048f03b59d6d1c4d94c9baeeddd77b6e07bbc24dff50832ebd1653d2874c2"
    "f6f4d70fbe96b654968286b946c871dcc4abd0e062cea0be8e0f83112209ad1a4519ebbf7d3bce0a"
    "0ff3bb9845ab2a89";
const char kHostKeyQ[] = "f02d183c1f51866c5b4588fae9d38b8e56dc4419";
const char kHostKeyG[] =
    "6319de8cce3db9c07af92f69a6d6e7e6dd06a7432aadfbef756b76764c0bf7a8293b9577fecd1669"
    "df323d6aed9a3bc3e6a325d686eb057fb3ba651d5c6876b498eac8ebcafd34d8cea638bb28f09844"
    "8a232fa2b90f8041f16a2d6ddfba6a827b8ed50a221dbafed9a5e03403eb8427503279b54ab45eed"
    "792da50aa4cbad1c";
const char kHostKeyY[] =
    "350aaba6e9adb3279ceabcb8c75b3bac42f2611272d9b5dc40ba58e5e89c465ce743b68eb581008b"
    "522e18766e8eb3b28e2e050839fadf42904d32cb66eb3f767943b81309e3c95acf7015dc5c8e939d"
    "fe1d91f95b155e899d4bde29123f532e38173495c86006e0ac1f4fc2a60029202784871859be3749"
    "5d82ea9d1b945d70";
const char kHostKeyX[] = "190c9ea56946691124eea0c902d7e6aa8001bf8f";

std::string BytesOf(const std::string& hex) {
    std::string bytes;
    for (size_t i = hex.size() % 2; i <= hex.size(); i += 2) {
        const size_t from = i < 2 ? 0 : i - 2;
        if (i > 0) bytes += static_cast<char>(std::stoi(hex.substr(from, i - from), nullptr, 16));
    }
    return bytes;
}

std::string MpintOf(const char* hex) { return Mpint(BytesOf(hex)); }

// ---------------------------------------------------------------- hashes

std::string Mac(const std::string& key, uint32_t sequence, const std::string& packet) {
    return JudgeHmacSha1(key, U32(sequence) + packet);
}

std::string KeyMaterial(const ScriptedServer& server, char letter) {
    const std::string first = JudgeSha1(server.k + server.hash + letter + server.session_id);
    return first + JudgeSha1(server.k + server.hash + first);
}

// ---------------------------------------------------------------- packets

std::string LeastPadding(size_t payload, int more) {
    size_t padding = 4;
    while ((5 + payload + padding) % 8) padding++;
    return std::string(padding + 8 * static_cast<size_t>(more), 'p');
}

size_t LengthOf(const std::string& packet) {
    size_t length = 0;
    for (size_t i = 0; i < 4; ++i) length = length << 8 | static_cast<unsigned char>(packet[i]);
    return length;
}

std::string Broken(const std::string& why, std::string* wire) {
    ADD_FAILURE() << why << "; " << wire->size() << " bytes wait: " << Hex(wire->substr(0, 64));
    wire->clear();
    return "broken";
}

}  // namespace

struct CipherStream {
    bool blowfish, encrypt;
    std::string key, iv;  // the vector of the next block

    std::string Run(const std::string& text) {
        const std::string result = JudgeCipher(blowfish, encrypt, key, iv, text);
        const std::string& sealed = encrypt ? result : text;
        if (sealed.size() >= 8) iv = sealed.substr(sealed.size() - 8);
        return result;
    }
};

std::string U32(uint32_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 0xff);
    return bytes;
}

std::string Str(const std::string& bytes) {
    return U32(static_cast<uint32_t>(bytes.size())) + bytes;
}

std::string Mpint(const std::string& magnitude) {
    const size_t first = magnitude.find_first_not_of('\0');
    if (first == std::string::npos) return Str("");
    const std::string bytes = magnitude.substr(first);
    return Str(static_cast<unsigned char>(bytes[0]) & 0x80 ? '\0' + bytes : bytes);
}

std::string Message(int number, const std::string& rest) {
    return static_cast<char>(number) + rest;
}

std::string Hex(const std::string& bytes) {
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (const char c : bytes) {
        text += digits[static_cast<unsigned char>(c) >> 4];
        text += digits[c & 15];
    }
    return text;
}

Tape::Tape(int milliseconds) {
    std::srand(static_cast<unsigned>(milliseconds % 1000 % 37));
    while (bytes.size() < 8192)
        if (const int value = std::rand()) bytes.push_back(static_cast<uint8_t>(value & 0xff));
}

std::string Tape::Take(size_t count) {
    at += count;
    return std::string(bytes.begin() + static_cast<long>(at - count),
                       bytes.begin() + static_cast<long>(at));
}

std::string Tape::Rest() const {
    return std::string(bytes.begin() + static_cast<long>(at), bytes.end());
}

std::string SealBody(ScriptedServer& server, uint32_t packet_length, const std::string& body) {
    const std::string packet = U32(packet_length) + body;
    const uint32_t sequence = server.sent++;
    if (!server.keyed) return packet;
    return server.to_client->Run(packet) + Mac(server.mac_to_client, sequence, packet);
}

std::string Seal(ScriptedServer& server, const std::string& payload, int more) {
    const std::string padding = LeastPadding(payload.size(), more);
    const std::string body = static_cast<char>(padding.size()) + payload + padding;
    return SealBody(server, static_cast<uint32_t>(body.size()), body);
}

std::string Unseal(ScriptedServer& server, std::string* wire, std::string* padding) {
    const size_t mac_size = server.keyed ? 20 : 0;
    if (wire->size() < 16 + mac_size) return Broken("no packet", wire);
    std::string packet = wire->substr(0, 8);
    if (server.keyed) packet = server.from_client->Run(packet);
    const size_t size = 4 + LengthOf(packet);
    if (size % 8 || size < 16 || wire->size() < size + mac_size)
        return Broken("a packet of " + std::to_string(size) + " bytes", wire);
    const std::string rest = wire->substr(8, size - 8);
    packet += server.keyed ? server.from_client->Run(rest) : rest;
    const uint32_t sequence = server.received++;
    if (server.keyed && wire->substr(size, 20) != Mac(server.mac_from_client, sequence, packet))
        return Broken("a wrong MAC", wire);
    const size_t count = static_cast<unsigned char>(packet[4]);
    if (count + 6 > size) return Broken("no payload", wire);
    const std::string payload = packet.substr(5, size - 5 - count);
    if (count != LeastPadding(payload.size(), 0).size())
        return Broken("padding of " + std::to_string(count) + " bytes", wire);
    *padding = packet.substr(size - count);
    wire->erase(0, size + mac_size);
    return payload;
}

bool PacketWaits(const ScriptedServer& server, const std::string& wire) {
    const size_t mac_size = server.keyed ? 20 : 0;
    if (wire.size() < 16 + mac_size) return false;
    std::string packet = wire.substr(0, 8);
    if (server.keyed) packet = CipherStream(*server.from_client).Run(packet);
    return wire.size() >= 4 + LengthOf(packet) + mac_size;
}

std::string Open(ScriptedServer& server, Tape& tape, std::string* wire) {
    std::string padding;
    const std::string payload = Unseal(server, wire, &padding);
    if (padding.empty()) return payload;
    if (padding != tape.Take(padding.size()))
        return Broken("padding that is not what the generator gave", wire);
    return payload;
}

std::string ServerKexInit(const std::string& cookie) {
    return Message(20, cookie + Str("diffie-hellman-group1-sha1") + Str("ssh-dss") +
                           Str("3des-cbc,blowfish-cbc") + Str("3des-cbc,blowfish-cbc") +
                           Str("hmac-sha1") + Str("hmac-sha1") + Str("none") + Str("none") +
                           Str("") + Str("") + std::string(5, '\0'));
}

std::string ClientKexInit(Tape& tape, const std::string& cipher) {
    const std::string ciphers = cipher.empty() ? "" : Str(cipher) + Str(cipher);
    return Message(20, tape.Take(16) + Str("diffie-hellman-group1-sha1") + Str("ssh-dss") +
                           ciphers + Str("hmac-sha1") + Str("hmac-sha1") + Str("none") +
                           Str("none") + std::string(13, '\0'));
}

std::string ClientPublic(Tape& tape) {
    const std::string bits = tape.Take(32);
    const std::string x(bits.rbegin(), bits.rend());
    return Mpint(JudgePower("\2", x, BytesOf(kPrime)));
}

std::string HostKeyBlob() {
    return Str("ssh-dss") + MpintOf(kHostKeyP) + MpintOf(kHostKeyQ) + MpintOf(kHostKeyG) +
           MpintOf(kHostKeyY);
}

std::string SignatureBlob(const std::string& hash) {
    const DssSecret secret = {BytesOf(kHostKeyP), BytesOf(kHostKeyQ), BytesOf(kHostKeyG),
                              BytesOf(kHostKeyX), BytesOf(kSignatureSecret)};
    return Str("ssh-dss") + Str(JudgeSignature(secret, JudgeSha1(hash)));
}

std::string KexDhReply(ScriptedServer& server, const std::string& client_line) {
    const std::string prime = BytesOf(kPrime), secret = BytesOf(server.secret);
    const bool given = !server.public_value.empty();
    server.f = Mpint(given ? BytesOf(server.public_value) : JudgePower("\2", secret, prime));
    server.k =
        Mpint(given ? BytesOf(server.agreed) : JudgePower(server.e.substr(4), secret, prime));
    const std::string line = server.line.substr(0, server.line.find_first_of("\r\n"));
    server.hash = JudgeSha1(Str(client_line) + Str(line) + Str(server.client_kex_init) +
                            Str(server.server_kex_init) + Str(HostKeyBlob()) + server.e + server.f +
                            server.k);
    return Message(31, Str(HostKeyBlob()) + server.f + Str(SignatureBlob(server.hash)));
}

void InstallKeys(ScriptedServer& server) {
    if (server.session_id.empty()) server.session_id = server.hash;
    const bool blowfish = server.blowfish;
    server.from_client = std::make_shared<CipherStream>(CipherStream{
        blowfish, false, KeyMaterial(server, 'C'), KeyMaterial(server, 'A').substr(0, 8)});
    server.to_client = std::make_shared<CipherStream>(CipherStream{
        blowfish, true, KeyMaterial(server, 'D'), KeyMaterial(server, 'B').substr(0, 8)});
    server.mac_from_client = KeyMaterial(server, 'E').substr(0, 20);
    server.mac_to_client = KeyMaterial(server, 'F').substr(0, 20);
    server.keyed = true;
}
