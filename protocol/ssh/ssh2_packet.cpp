// SPDX-License-Identifier: MIT
// Packets of SSH-2: building and sending them, and reading the fields of received ones.
#include "protocol/ssh/ssh2.h"

#include "crypto/random.h"
#include "protocol/ssh/ssh_session.h"
#include "session/session_state.h"
#include "text/bytes.h"

constexpr int kHeadSize = 5;  // the length field and the padding's length
constexpr int kLeastPadding = 4;
constexpr int kLeastPacket = 16;

// The last of the three rules never applies once the first two have.
static int PaddingFor(int payloadLength) {
    int padding = kCipherBlockSize - (payloadLength + kHeadSize) % kCipherBlockSize;
    if (padding < kLeastPadding) padding += kCipherBlockSize;
    if (payloadLength + padding + kHeadSize < kLeastPacket) padding += kCipherBlockSize;
    return padding;
}

void BeginPacket(BYTE type, int payloadLength) {
    session.ssh2.payloadLength = payloadLength;
    session.ssh2.sendBuf[kHeadSize] = type;
}

BYTE* Payload() { return session.ssh2.sendBuf + kHeadSize + 1; }

void SendPacket() {
    Ssh2State& ssh = session.ssh2;
    const int padding = PaddingFor(ssh.payloadLength);
    BYTE* pad = ssh.sendBuf + kHeadSize + ssh.payloadLength;
    for (int i = 0; i < padding; ++i) pad[i] = RandomByte();

    const int packetLength = ssh.payloadLength + padding + 1;
    int size = 4 + packetLength;
    PutByte(PutUint32(ssh.sendBuf, static_cast<uint32_t>(packetLength)),
            static_cast<BYTE>(padding));
    if (HasCipher()) ssh.outMac->generate(ssh.sendBuf, size, ssh.sendSeq);
    ++ssh.sendSeq;
    if (HasCipher()) {
        ssh.cipher->encrypt(ssh.sendBuf, packetLength);  // rounds up to whole blocks
        size += ssh.outMac->macLength;
    }
    SshSendPacketBytes(ssh.sendBuf, size);
}

uint32_t GetUint32(const BYTE* bytes) { return LoadBig<uint32_t>(bytes); }

void ReadString(const BYTE** data, int* length) { TakeString(&session.ssh2.reader, data, length); }

bool ReadUint32(uint32_t* value) { return TakeUint32(&session.ssh2.reader, value); }

Bignum ReadMpint() {
    const BYTE* bytes;
    int length;
    ReadString(&bytes, &length);
    if (!bytes || (length > 0 && bytes[0] & 0x80)) return nullptr;
    return BignumFromBytes(bytes, length);
}

bool HasCipher() { return session.ssh2.cipher != nullptr; }

void DecryptHead(BYTE* buffer) { session.ssh2.cipher->decrypt(buffer, kCipherBlockSize); }
