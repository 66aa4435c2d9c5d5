// SPDX-License-Identifier: MIT
// The server's side of SSH-2 (RFC 4253), on GMP and libcrypto. It uses nothing of protocol/ssh/ or
// crypto/, so independent code checks what the client sends. Its numbers are fixed.
#ifndef QUILL_TESTS_SSH2_SCRIPTED_SERVER_H
#define QUILL_TESTS_SSH2_SCRIPTED_SERVER_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// ---------------------------------------------------------------- wire forms

std::string U32(uint32_t value);
std::string Str(const std::string& bytes);        // a `string`
std::string Mpint(const std::string& magnitude);  // an `mpint` of big-endian bytes
std::string Message(int number, const std::string& rest = "");
std::string Hex(const std::string& bytes);

// ---------------------------------------------------------------- the client's randomness

// The random bytes that the client draws after it has seeded its generator from this clock. Create
// it before the client seeds: both use the single generator of the process.
struct Tape {
    explicit Tape(int milliseconds);
    std::string Take(size_t count);
    std::string Rest() const;
    std::vector<uint8_t> bytes;
    size_t at = 0;
};

// ---------------------------------------------------------------- the server

struct CipherStream;  // one direction of CBC

struct ScriptedServer {
    std::string line = "SSH-2.0-scripted_1.0 with a comment\r\n";
    bool blowfish = false;
    uint32_t sent = 0, received = 0;               // packets
    bool keyed = false;                            // both directions encrypted and with a MAC
    std::string client_kex_init, server_kex_init;  // payloads
    std::string secret =                           // the exponent, in hexadecimal digits
        "a1b2c3d4e5f60718293a4b5c6d7e8f90123456789abcdef0fedcba9876543210";
    std::string public_value, agreed;  // hexadecimal; set if not computed from the exponent
    std::string e, f, k;               // mpints
    std::string hash, session_id;
    std::shared_ptr<CipherStream> to_client, from_client;
    std::string mac_to_client, mac_from_client;  // keys
};

// The next packet to the client, with the least padding allowed plus `more` blocks.
std::string Seal(ScriptedServer& server, const std::string& payload, int more = 0);
// The same with packet_length and padding from the test; `body` follows the length field.
std::string SealBody(ScriptedServer& server, uint32_t packet_length, const std::string& body);

// Takes the next packet of the client off `wire` and returns its payload. Fails the test and
// returns "broken" if the length, the padding (drawn from the tape) or the MAC is wrong.
std::string Open(ScriptedServer& server, Tape& tape, std::string* wire);

// The same wherever the padding comes from; it is put into *padding, which stays as it was where
// the packet is broken.
std::string Unseal(ScriptedServer& server, std::string* wire, std::string* padding);
bool PacketWaits(const ScriptedServer& server, const std::string& wire);  // a whole one

std::string ServerKexInit(const std::string& cookie = std::string(16, 'c'));
// The KEXINIT that the client must send; with an empty `cipher` it lacks the two cipher lists.
std::string ClientKexInit(Tape& tape, const std::string& cipher);
// The client's public value, computed from the exponent on the tape.
std::string ClientPublic(Tape& tape);

std::string HostKeyBlob();
std::string SignatureBlob(const std::string& hash);  // with a correct signature of the hash

// KEXDH_REPLY for the client's e; computes k and hash.
std::string KexDhReply(ScriptedServer& server, const std::string& client_line);
// Uses the new keys in both directions, after both NEWKEYS.
void InstallKeys(ScriptedServer& server);

#endif
