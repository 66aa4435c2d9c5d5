// Building, gathering and checking of packets.
#include "protocol/ssh/ssh1.h"

#include "crypto/packet_checks.h"
#include "crypto/random.h"
#include "protocol/ssh/ssh_session.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "text/bytes.h"

namespace {

constexpr int kLengthSize = 4;
constexpr int kCrcSize = 4;
constexpr int kLeastLength = 1 + kCrcSize;

int PaddingOf(uint32_t length) {
    return kCipherBlockSize - static_cast<int>(length % kCipherBlockSize);
}

// From padding to checksum.
bool TooLarge(uint64_t body) { return body >= kSshReassemblySize; }

// Bytes from padding to checksum, a multiple of 8; may be beyond 32 bits.
uint64_t BodyOf(uint32_t length) {
    return uint64_t{length} + static_cast<uint64_t>(PaddingOf(length));
}

// What the packet at the front needs to be handled. One that is too large never comes whole: its
// length alone is enough.
uint64_t NeededOf(const BYTE* packet) {
    const uint64_t body = BodyOf(LoadBig<uint32_t>(packet));
    return TooLarge(body) ? kLengthSize : kLengthSize + body;
}

// Handles the whole packets at the front, and stops where one of them ends the session.
void HandleWholePackets(SOCKET served) {
    SshState& ssh = session.ssh;
    int at = 0;
    while (ssh.recvFill - at >= kLengthSize) {
        const uint64_t needed = NeededOf(ssh.recvBuf + at);
        if (static_cast<uint64_t>(ssh.recvFill - at) < needed) break;
        Ssh1HandlePacket(ssh.recvBuf + at, static_cast<int>(needed));
        if (!SshSessionStands(served)) return;
        at += static_cast<int>(needed);
    }
    ssh.recvFill -= at;
    std::memmove(ssh.recvBuf, ssh.recvBuf + at, static_cast<size_t>(ssh.recvFill));
}

bool ChecksumHolds(const BYTE* body, int length) {
    return Crc32(body, length - kCrcSize) == LoadBig<uint32_t>(body + length - kCrcSize);
}

}  // namespace

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
    for (int i = 0; i < PaddingOf(length); i++) body[i] = RandomByte();
    StoreBig(body + body_length - kCrcSize, Crc32(body, body_length - kCrcSize));
    if (ssh1.ssh1Cipher) ssh1.ssh1Cipher->encrypt(body, body_length);
    SshSendPacketBytes(ssh1.sendBuf, kLengthSize + body_length);
}

void Ssh1SendString(BYTE type, const void* bytes, int length) {
    PutBlock(Ssh1BeginPacket(type, 4 + length), bytes, length);
    Ssh1SendPacket();
}

void Ssh1TakeChunk(const BYTE* bytes, int count) {
    SshState& ssh = session.ssh;
    const SOCKET served = session.socket.load(std::memory_order_acquire);
    if (count > kSshReassemblySize - ssh.recvFill) {
        ShowError(TEXT("SSH out of memory"));
        if (!SshSessionStands(served)) return;
        ssh.recvFill = 0;
    }
    std::memcpy(ssh.recvBuf + ssh.recvFill, bytes, static_cast<size_t>(count));
    ssh.recvFill += count;
    HandleWholePackets(served);
}

void Ssh1HandlePacket(const BYTE* bytes, int length) {
    Ssh1State& ssh1 = session.ssh1;
    const uint32_t stated = LoadBig<uint32_t>(bytes);
    const uint64_t body = BodyOf(stated);
    if (TooLarge(body)) return Ssh1EndSession(TEXT("Illegal SSH message. Out of memory"));
    if (kLengthSize + body != static_cast<uint64_t>(length)) return;
    const int body_length = length - kLengthSize;
    std::memcpy(ssh1.packetBuf, bytes + kLengthSize, static_cast<size_t>(body_length));
    if (ssh1.ssh1Cipher) ssh1.ssh1Cipher->decrypt(ssh1.packetBuf, body_length);
    if (!ChecksumHolds(ssh1.packetBuf, body_length)) {
        return Ssh1EndSession(TEXT("SSH message with illegal CRC checksum. Session must close!!!"));
    }
    if (stated < kLeastLength) return;
    const BYTE* type = ssh1.packetBuf + PaddingOf(stated);
    if (*type == MSG_IGNORE || *type == MSG_DEBUG) return;
    Ssh1RunState(*type, type + 1, static_cast<int>(stated) - kLeastLength);
}
