// SPDX-License-Identifier: MIT
// The key exchange of SSH-2: the KEXINIT and Diffie-Hellman messages, the check of the host key's
// signature, and the derived keys.
#include "protocol/ssh/ssh2.h"

#include "crypto/random.h"
#include "protocol/ssh/ssh_session.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "text/bytes.h"

constexpr int kCookieSize = 16;
constexpr int kKexInitTail = 13;  // two empty language lists, no guessed packet, a reserved number

// Indexed by the setting ssh_type.
const SshCipher* const kOffered[] = {&kTripleDesCbc, &kTripleDesCbc, &kBlowfishCbc};

static const SshCipher* OfferedCipher() {
    const DWORD type = session.settings.ssh_type;
    return type < std::size(kOffered) ? kOffered[type] : nullptr;
}

static const SshCipher* ChosenCipher() {
    return session.settings.ssh_type == 2 ? &kBlowfishCbc : &kTripleDesCbc;
}

namespace {

// ---------------------------------------------------------------- KEXINIT

struct NameLists {
    const char* names[8];
    int count;
};

}  // namespace

// If ssh_type is unknown, the two lists of ciphers are left out.
static NameLists OurLists() {
    NameLists lists = {{"diffie-hellman-group1-sha1", "ssh-dss"}, 2};
    const auto twice = [&](const char* name) {
        lists.names[lists.count++] = name;
        lists.names[lists.count++] = name;
    };
    if (const SshCipher* cipher = OfferedCipher()) twice(cipher->name);
    twice(kHmacSha1.name);
    twice("none");
    return lists;
}

static void BuildKexInit() {
    const NameLists lists = OurLists();
    int size = 1 + kCookieSize + kKexInitTail;
    for (int i = 0; i < lists.count; ++i) size += StringSize(lists.names[i]);
    BeginPacket(kMsgKexInit, size);
    BYTE* at = Payload();
    for (int i = 0; i < kCookieSize; ++i) at = PutByte(at, RandomByte());
    for (int i = 0; i < lists.count; ++i) at = PutString(at, lists.names[i]);
    std::memset(at, 0, kKexInitTail);
}

static void HashKexInits() {
    Ssh2State& ssh = session.ssh2;
    ssh.exchangeHash = ssh.exchangeHashBase;
    Sha1UpdateString(&ssh.exchangeHash, Payload() - 1, ssh.payloadLength);
    Sha1UpdateString(&ssh.exchangeHash, ssh.payload.next, ssh.payload.left);
}

static void SendKexDhInit() {
    DhContext& dh = session.ssh2.dh;
    DhSetup(&dh);
    int length;
    BYTE* e = EncodeMpint(DhGenerate(&dh, kDhExponentBits), &length);
    if (!e) return CloseSession();  // no memory
    BeginPacket(kMsgKexDhInit, 1 + 4 + length);
    PutBlock(Payload(), e, length);
    WipeAndFree(e, static_cast<size_t>(length));
    SendPacket();
}

namespace {

// ---------------------------------------------------------------- KEXDH_REPLY

struct KexDhReply {
    const BYTE* hostKey;
    int hostKeyLength;
    Bignum f;
    const BYTE* signature;
    int signatureLength;
};

}  // namespace

static KexDhReply ReadReply() {
    KexDhReply reply = {};
    ReadString(&reply.hostKey, &reply.hostKeyLength);
    if (!reply.hostKey) return reply;
    reply.f = ReadMpint();
    if (reply.f) ReadString(&reply.signature, &reply.signatureLength);
    return reply;
}

static void FinishExchangeHash(const KexDhReply& reply) {
    Ssh2State& ssh = session.ssh2;
    Sha1UpdateString(&ssh.exchangeHash, reply.hostKey, reply.hostKeyLength);
    Sha1UpdateMpint(&ssh.exchangeHash, ssh.dh.e);
    Sha1UpdateMpint(&ssh.exchangeHash, reply.f);
    Sha1UpdateMpint(&ssh.exchangeHash, ssh.K);
    Sha1Final(&ssh.exchangeHash, ssh.H);
}

static bool SignedByHostKey(const KexDhReply& reply) {
    Ssh2State& ssh = session.ssh2;
    ssh.hostKey = DssParseKey(reply.hostKey, reply.hostKeyLength);
    if (!ssh.hostKey) return false;
    const bool good =
        DssVerify(ssh.hostKey, reply.signature, reply.signatureLength, ssh.H, kSha1Size);
    DssFreeKey(ssh.hostKey);
    ssh.hostKey = nullptr;
    return good;
}

static bool AgreeWith(const KexDhReply& reply) {
    Ssh2State& ssh = session.ssh2;
    BignumFree(ssh.K);
    ssh.K = DhSharedSecret(&ssh.dh, reply.f);
    if (!ssh.K) return false;
    FinishExchangeHash(reply);
    return SignedByHostKey(reply);
}

// ---------------------------------------------------------------- keys

// Derives 40 bytes for one letter of RFC 4253, 7.2. Each `install` procedure uses as many of them
// as it needs.
static void FillKeyBlock(BYTE letter) {
    Ssh2State& ssh = session.ssh2;
    Sha1Context start, hash;
    Sha1Init(&start);
    Sha1UpdateMpint(&start, ssh.K);
    Sha1Update(&start, ssh.H, kSha1Size);
    hash = start;
    Sha1Update(&hash, &letter, 1);
    Sha1Update(&hash, ssh.sessionId, kSha1Size);
    Sha1Final(&hash, ssh.keyBlock);
    Sha1Update(&start, ssh.keyBlock, kSha1Size);
    Sha1Final(&start, ssh.keyBlock + kSha1Size);
}

namespace {

struct KeyRow {
    BYTE letter;
    void (*install)(const uint8_t* bytes);
};

}  // namespace

static void DeriveKeys() {
    Ssh2State& ssh = session.ssh2;
    if (ssh.firstKex) std::memcpy(ssh.sessionId, ssh.H, kSha1Size);
    ssh.firstKex = 0;
    ssh.cipher = ChosenCipher();
    const KeyRow rows[] = {
        {'C', ssh.cipher->setOutgoingKey}, {'D', ssh.cipher->setIncomingKey},
        {'A', ssh.cipher->setOutgoingIv},  {'B', ssh.cipher->setIncomingIv},
        {'E', ssh.outMac->setOutgoingKey}, {'F', ssh.inMac->setIncomingKey},
    };
    for (const KeyRow& row : rows) {
        FillKeyBlock(row.letter);
        row.install(ssh.keyBlock);
    }
    Wipe(ssh.keyBlock, sizeof(ssh.keyBlock));
    BignumFree(ssh.K);
    ssh.K = nullptr;
}

static void RequestService() {
    static const char kService[] = "ssh-userauth";
    BeginPacket(kMsgServiceRequest, 1 + StringSize(kService));
    PutString(Payload(), kService);
    SendPacket();
}

void OnKexInit() {
    Ssh2State& ssh = session.ssh2;
    ssh.ptyRequested = 0;
    SeedRandom();
    BuildKexInit();
    ssh.kexDone = 0;
    ssh.keysPending = 1;
    HashKexInits();
    SendPacket();
    SendKexDhInit();
}

// An exchange accepts only one reply: the group is released even if the reply is bad.
void OnKexDhReply() {
    if (!session.ssh2.dh.p) return;  // no exchange is in progress
    const KexDhReply reply = ReadReply();
    if (reply.signature && AgreeWith(reply)) {
        BeginPacket(kMsgNewKeys, 1);
        SendPacket();
        session.ssh2.kexDone = 1;
    }
    DhRelease(&session.ssh2.dh);
    BignumFree(reply.f);
}

void OnNewKeys() {
    Ssh2State& ssh = session.ssh2;
    if (!ssh.kexDone) return CloseSession();
    ssh.kexDone = 0;
    DeriveKeys();
    session.ssh_progress = 1;
    session_ports.update_status();
    if (!ssh.channelOpen) RequestService();
    ssh.keysPending = 0;
    SendHeldData();
}

void HashIdentifications(const char* clientVersion, const BYTE* serverVersion, int serverLength) {
    Sha1Context* hash = &session.ssh2.exchangeHashBase;
    const auto line = [&](const BYTE* bytes, int length) {
        int end = 0;
        while (end < length && bytes[end] != '\r' && bytes[end] != '\n') ++end;
        Sha1UpdateString(hash, bytes, end);
    };
    Sha1Init(hash);
    line(reinterpret_cast<const BYTE*>(clientVersion),
         static_cast<int>(std::strlen(clientVersion)));
    line(serverVersion, serverLength);
}
