// SPDX-License-Identifier: MIT
// A conversation of the client with a scripted server in memory: what the input says about it, the
// wire between the two with its one fault, and what came of it.
#ifndef QUILL_FUZZ_SSH_CONVERSATION_H
#define QUILL_FUZZ_SSH_CONVERSATION_H

#include <cstdint>
#include <string>
#include <vector>

inline constexpr char kUser[] = "visitor";
inline constexpr char kPassword[] = "a password of 30 bytes, no less";

enum class FaultKind : uint8_t {
    kNone,
    kWireBit,        // one bit of the sealed packet is wrong
    kWireByte,       // one of its first bytes is wrong: its length, until it is encrypted
    kDrop,           // the packet does not come
    kDouble,         // it comes twice
    kSwap,           // it comes after the next one
    kCutShort,       // its last bytes do not come, and the next packet follows at once
    kPayloadBit,     // one bit is wrong before it is sealed
    kPayloadShort,   // the last bytes are missing before it is sealed
    kPayloadLength,  // four bytes, where a length may be, are another number before it is sealed
    kKinds,
};

struct Fault {
    FaultKind kind = FaultKind::kNone;
    size_t packet = 0;  // of the server; its identification line is packet 0
    size_t place = 0;
    uint8_t value = 0;
};

inline bool OnWire(const Fault& fault) {
    return fault.kind >= FaultKind::kWireBit && fault.kind <= FaultKind::kCutShort;
}

// What the server sends once there is a shell, and what the user types then.
struct Piece {
    int kind = 0;
    std::string text;
    std::string typed;
};

struct Script {
    bool ssh2 = false;
    uint32_t ssh_type = 0;  // 0..2
    bool refuses_first = false;
    bool ends = false;       // the server ends the session
    bool asks = false;       // the password is not remembered
    bool has_user = true;    // there is a user name
    bool has_cipher = true;  // SSH-1: the server has the user's cipher
    std::vector<Piece> pieces;
};

struct Outcome {
    std::string display;                // bytes that the terminal got
    std::vector<std::string> messages;  // of the client, from the message number on
    std::vector<std::string> boxes;
    int closes = 0;
    int sign_ons = 0;
    bool operator==(const Outcome&) const = default;
};

// One run. `silent_from`: packets from this one on do not come. Without `cuts` each packet comes as
// one chunk.
struct Run {
    Fault fault;
    size_t silent_from = SIZE_MAX;
    std::vector<size_t> cuts;

    bool struck = false;     // the fault has come
    std::string cut_off;     // by it
    bool made_good = false;  // the next packet begins with what was cut off
    bool line_came = false;  // the client's
    size_t packets = 0;      // that the server has sent
    std::string pending;     // on the wire, not delivered yet
    std::string held;        // that the next packet overtakes
    Outcome outcome;
    std::string wire;  // of the client, not read yet
    std::string sent;  // data that the client was given for its host while there was a shell
};
extern Run run;

[[noreturn]] void Break(const char* what);
void Require(bool holds, const char* what);

// The payload of the next packet, as the fault leaves it.
std::string Spoiled(const std::string& payload);
void Carry(const std::string& sealed);  // the next packet of the server
void Flush();                           // delivers what is on the wire
void Type(const std::string& bytes);    // the user
std::string TakeWire();                 // what the client has sent behind its line

// The first packet of the server that is encrypted, and all of the conversation.
inline constexpr size_t kFirstSealed1 = 2, kFirstSealed2 = 4;
void TalkSsh1(const Script& script);
void TalkSsh2(const Script& script);

#endif
