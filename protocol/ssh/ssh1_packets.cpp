// SPDX-License-Identifier: MIT
// Building and checking the packets of SSH-1.
#include "protocol/ssh/ssh1.h"

#include "crypto/packet_checks.h"
#include "crypto/random.h"
#include "protocol/ssh/ssh_session.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "text/bytes.h"

constexpr int kLengthSize = 4;
constexpr int kCrcSize = 4;
constexpr int kLeastLength = 1 + kCrcSize;

static int PaddingOf(uint32_t length) {
    return kCipherBlockSize - static_cast<int>(length % kCipherBlockSize);
}

// `body` is the size from the padding to the checksum.
static bool TooLarge(uint64_t body) { return body >= kSshReassemblySize; }

// Returns the size from the padding to the checksum, a multiple of 8. It can exceed 32 bits.
static uint64_t BodyOf(uint32_t length) {
    return uint64_t{length} + static_cast<uint64_t>(PaddingOf(length));
}

static bool ChecksumHolds(const BYTE* body, int length) {
    return Crc32(body, length - kCrcSize) == LoadBig<uint32_t>(body + length - kCrcSize);
}

BYTE* Ssh1BeginPacket(BYTE type, int dataLength) {
    Ssh1State& ssh1 = session.ssh1;
    ssh1.sendLength = 1 + dataLength + kCrcSize;
    BYTE* at = ssh1.sendBuf + kLengthSize + PaddingOf(static_cast<uint32_t>(ssh1.sendLength));
    *at = type;
    return at + 1;
}

void Ssh1SendPacket() {
    Ssh1State& ssh1 = session.ssh1;
    const uint32_t length = static_cast<uint32_t>(ssh1.sendLength);
    const int body_length = static_cast<int>(BodyOf(length));
    BYTE* body = ssh1.sendBuf + kLengthSize;
    StoreBig(ssh1.sendBuf, length);
    for (int i = 0; i < PaddingOf(length); ++i) body[i] = RandomByte();
    StoreBig(body + body_length - kCrcSize, Crc32(body, body_length - kCrcSize));
    if (ssh1.ssh1Cipher) ssh1.ssh1Cipher->encrypt(body, body_length);
    SshSendPacketBytes(ssh1.sendBuf, kLengthSize + body_length);
}

void Ssh1SendString(BYTE type, const void* bytes, int length) {
    PutBlock(Ssh1BeginPacket(type, 4 + length), bytes, length);
    Ssh1SendPacket();
}

uint64_t Ssh1PacketSize(const BYTE* packet) {
    const uint64_t body = BodyOf(LoadBig<uint32_t>(packet));
    return TooLarge(body) ? kLengthSize : kLengthSize + body;
}

bool Ssh1OpenPacket(const BYTE* bytes, int length, Ssh1Packet* packet) {
    Ssh1State& ssh1 = session.ssh1;
    const uint32_t stated = LoadBig<uint32_t>(bytes);
    const uint64_t body = BodyOf(stated);
    if (TooLarge(body)) {
        Ssh1EndSession(TEXT("Illegal SSH message. Out of memory"));
        return false;
    }
    if (kLengthSize + body != static_cast<uint64_t>(length)) return false;
    const int body_length = length - kLengthSize;
    std::memcpy(ssh1.packetBuf, bytes + kLengthSize, static_cast<size_t>(body_length));
    if (ssh1.ssh1Cipher) ssh1.ssh1Cipher->decrypt(ssh1.packetBuf, body_length);
    if (!ChecksumHolds(ssh1.packetBuf, body_length)) {
        Ssh1EndSession(TEXT("SSH message with illegal CRC checksum. Session must close!!!"));
        return false;
    }
    if (stated < kLeastLength) return false;
    const BYTE* type = ssh1.packetBuf + PaddingOf(stated);
    *packet = {*type, type + 1, static_cast<int>(stated) - kLeastLength};
    return *type != MSG_IGNORE && *type != MSG_DEBUG;
}

void Ssh1EndSession(LPCWSTR text) {
    const SessionMark served = CurrentSession();
    ShowError(text);
    if (SshSessionIsCurrent(served)) CloseSession();
}
