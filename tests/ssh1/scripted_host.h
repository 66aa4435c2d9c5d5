// SPDX-License-Identifier: MIT
// The server's side of a conversation; the test controls every byte. Its keys have the exponent 1,
// so that the test can read the session key from the encrypted number.
#ifndef QUILL_TESTS_SSH1_SCRIPTED_HOST_H
#define QUILL_TESTS_SSH1_SCRIPTED_HOST_H

#include <initializer_list>
#include <string>
#include <vector>

#include "crypto/block_ciphers.h"

inline constexpr int kDesNumber = 2;
inline constexpr int kTripleDesNumber = 3;
inline constexpr int kBlowfishNumber = 6;
inline constexpr uint32_t kAllCiphers = 1u << 2 | 1u << 3 | 1u << 6;

std::string Uint32(uint32_t value);
std::string String(const std::string& bytes);
std::string Ssh1Number(const std::string& magnitude);  // bit count: 8 for each byte

// Joins packets in order; operands of + may be evaluated in any order, and packets depend on it.
std::string Join(std::initializer_list<std::string> packets);

struct Message {
    int type;
    std::string data;
    std::string padding;
    bool operator==(const Message& other) const { return type == other.type && data == other.data; }
};

struct ScriptedHost {
    std::string host_modulus = std::string(128, '\xC5');
    std::string server_modulus = std::string(96, '\xA3');
    std::string cookie = "biscuits";
    uint32_t ciphers = kAllCiphers;

    // Parts of the public-key message, and the whole message as a packet.
    std::string Key(const std::string& modulus) const;
    std::string PublicKeyData() const;
    std::string PublicKey();
    std::string SessionId() const;

    // Reads the client's answer to it, takes the session key from the answer and uses it from then
    // on. False if there is no answer.
    bool TakeSessionKey();

    // A packet; `spoil` is xored into its checksum. A short packet states a length below 5 and has
    // no type and no data, only padding and a checksum.
    std::string Packet(int type, const std::string& data = "", uint32_t spoil = 0);
    std::string ShortPacket(uint32_t length, uint32_t spoil = 0);

    // The messages that the client has sent since the last call; fails on bytes that are no packet.
    std::vector<Message> Sent();

    int cipher = 0;  // the number that the client chose; 0: not encrypted
    std::string session_id;
    std::string session_key;
    uint32_t client_flags = 0;
    int key_bits = 0;  // the bit count of the encrypted key, as sent

    std::string Seal(const std::string& body);
    std::string Open(const std::string& body);
    void Schedule();
    DesContext des_out[3], des_in[3];
    BlowfishContext blowfish_out, blowfish_in;
};

// A new session in that state (0..5) with a host that has read everything sent so far.
ScriptedHost SessionInState(int state, uint32_t ssh_type = 1);

#endif
