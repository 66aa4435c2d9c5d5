// SPDX-License-Identifier: MIT
// The scripted server.
#include "tests/ssh1/scripted_host.h"

#include <gtest/gtest.h>
#include <cstring>

#include "crypto/hashes.h"
#include "crypto/packet_checks.h"
#include "tests/ssh1/outside.h"
#include "text/bytes.h"

namespace {

const uint8_t* Bytes(const std::string& text) {
    return reinterpret_cast<const uint8_t*>(text.data());
}
uint8_t* Bytes(std::string& text) { return reinterpret_cast<uint8_t*>(text.data()); }
int Size(const std::string& text) { return static_cast<int>(text.size()); }

std::string Md5(const std::string& text) {
    Md5Context context;
    std::string digest(kMd5Size, 0);
    Md5Init(&context);
    Md5Update(&context, Bytes(text), Size(text));
    Md5Final(&context, Bytes(digest));
    return digest;
}

// The content behind the padding of block type 2. The exponent 1 leaves the block unencrypted.
std::string Unpad(const std::string& block) {
    EXPECT_EQ(block.substr(0, 2), std::string("\0\2", 2));
    const size_t end = block.find('\0', 2);
    if (end == std::string::npos) {
        ADD_FAILURE() << "no end of the padding";
        return "";
    }
    return block.substr(end + 1);
}

// The inner block may contain a zero byte, so the inner size says where the outer padding ends.
std::string Unpad(const std::string& block, size_t inner) {
    EXPECT_EQ(block.find('\0', 2), block.size() - inner - 1) << "padding of the outer key";
    return block.substr(block.size() - inner);
}

std::string WithChecksum(const std::string& content, uint32_t spoil) {
    return content + Uint32(Crc32(Bytes(content), Size(content)) ^ spoil);
}

}  // namespace

std::string Uint32(uint32_t value) {
    std::string bytes(4, 0);
    StoreBig(Bytes(bytes), value);
    return bytes;
}

std::string String(const std::string& bytes) {
    return Uint32(static_cast<uint32_t>(bytes.size())) + bytes;
}

std::string Ssh1Number(const std::string& magnitude) {
    std::string bytes(2, 0);
    StoreBig(Bytes(bytes), static_cast<uint16_t>(8 * magnitude.size()));
    return bytes + magnitude;
}

std::string Join(std::initializer_list<std::string> packets) {
    std::string all;
    for (const std::string& packet : packets) all += packet;
    return all;
}

std::string ScriptedHost::Key(const std::string& modulus) const {
    return Uint32(static_cast<uint32_t>(8 * modulus.size())) + Ssh1Number("\1") +
           Ssh1Number(modulus);
}

std::string ScriptedHost::PublicKeyData() const {
    return cookie + Key(server_modulus) + Key(host_modulus) + Uint32(0) + Uint32(ciphers) +
           Uint32(1u << 3);
}

std::string ScriptedHost::PublicKey() { return Packet(2, PublicKeyData()); }

std::string ScriptedHost::SessionId() const { return Md5(host_modulus + server_modulus + cookie); }

bool ScriptedHost::TakeSessionKey() {
    const std::vector<Message> sent = Sent();
    if (sent.size() != 1 || sent[0].type != 3) return false;
    const std::string& data = sent[0].data;
    const size_t outer = std::max(host_modulus.size(), server_modulus.size());
    const size_t inner = std::min(host_modulus.size(), server_modulus.size());
    EXPECT_EQ(data.size(), 1 + 8 + 2 + outer + 4);
    if (data.size() != 1 + 8 + 2 + outer + 4) return false;
    EXPECT_EQ(data.substr(1, 8), cookie);
    key_bits = LoadBig<uint16_t>(Bytes(data) + 9);
    client_flags = LoadBig<uint32_t>(Bytes(data) + data.size() - 4);
    session_key = Unpad(Unpad(data.substr(11, outer), inner));
    EXPECT_EQ(session_key.size(), 32u);
    if (session_key.size() != 32) return false;
    session_id = SessionId();
    for (size_t i = 0; i < session_id.size(); i++)
        session_key[i] = static_cast<char>(session_key[i] ^ session_id[i]);
    cipher = static_cast<BYTE>(data[0]);
    Schedule();
    return true;
}

void ScriptedHost::Schedule() {
    const uint8_t* key = Bytes(session_key);
    for (int i = 0; i < 3; i++) {
        DesSetKey(LoadBig<uint32_t>(key + 8 * i), LoadBig<uint32_t>(key + 8 * i + 4), &des_out[i]);
        des_in[i] = des_out[i];
    }
    blowfish_out = {};
    BlowfishSetKey(&blowfish_out, key, 32);
    blowfish_in = blowfish_out;
}

std::string ScriptedHost::Seal(const std::string& body) {
    std::string sealed = body;
    uint8_t* out = Bytes(sealed);
    if (cipher == kDesNumber) DesCbcEncrypt(out, out, Size(body), &des_out[0]);
    if (cipher == kTripleDesNumber) TripleDesPassesEncrypt(out, out, Size(body), des_out);
    if (cipher == kBlowfishNumber) BlowfishLittleCbcEncrypt(out, out, Size(body), &blowfish_out);
    return sealed;
}

std::string ScriptedHost::Open(const std::string& body) {
    std::string plain = body;
    uint8_t* out = Bytes(plain);
    if (cipher == kDesNumber) DesCbcDecrypt(out, out, Size(body), &des_in[0]);
    if (cipher == kTripleDesNumber) TripleDesPassesDecrypt(out, out, Size(body), des_in);
    if (cipher == kBlowfishNumber) BlowfishLittleCbcDecrypt(out, out, Size(body), &blowfish_in);
    return plain;
}

std::string ScriptedHost::Packet(int type, const std::string& data, uint32_t spoil) {
    const uint32_t length = static_cast<uint32_t>(data.size()) + 5;
    const std::string padding(8 - length % 8, 'p');
    const std::string content = padding + static_cast<char>(type) + data;
    return Uint32(length) + Seal(WithChecksum(content, spoil));
}

std::string ScriptedHost::ShortPacket(uint32_t length, uint32_t spoil) {
    const size_t body = length + 8 - length % 8;
    return Uint32(length) + Seal(WithChecksum(std::string(body - 4, 'p'), spoil));
}

std::vector<Message> ScriptedHost::Sent() {
    std::vector<Message> messages;
    std::string wire = Wire();
    while (!wire.empty()) {
        const uint32_t length = wire.size() < 4 ? 0 : LoadBig<uint32_t>(Bytes(wire));
        const size_t padding = 8 - length % 8;
        if (length < 5 || wire.size() < 4 + length + padding) {
            ADD_FAILURE() << "no packet: " << testing::PrintToString(wire);
            break;
        }
        const std::string body = Open(wire.substr(4, padding + length));
        const std::string content = body.substr(0, body.size() - 4);
        EXPECT_EQ(Crc32(Bytes(content), Size(content)),
                  LoadBig<uint32_t>(Bytes(body) + content.size()))
            << "checksum";
        messages.push_back({static_cast<BYTE>(content[padding]), content.substr(padding + 1),
                            content.substr(0, padding)});
        wire.erase(0, 4 + padding + length);
    }
    return messages;
}
