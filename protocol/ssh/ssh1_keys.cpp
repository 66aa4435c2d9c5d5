// SPDX-License-Identifier: MIT
// The key exchange of SSH-1: the client draws a session key, encrypts it with the server's two
// public keys, and sets up the cipher with it.
#include <iterator>

#include "crypto/hashes.h"
#include "crypto/public_key.h"
#include "crypto/random.h"
#include "protocol/ssh/ssh1.h"
#include "session/session_state.h"
#include "text/bytes.h"

constexpr int kMessageSize = 401;  // units of the message about ciphers, terminator included
constexpr int kKeyBufferSize = kRsaMaxModulusBits / 8;  // an encrypted session key
static const LPCWSTR kViolation = TEXT("SSH protocol violation. Session must close!!!");

namespace {

struct CipherChoice {
    BYTE number;
    const Ssh1Cipher* cipher;
    LPCWSTR name;
};

}  // namespace

// Indexed by settings.ssh_type.
// clang-format off
static const CipherChoice kChoices[] = {
    {2, &kSsh1Des,       TEXT("(DES)")},
    {3, &kSsh1TripleDes, TEXT("(3-DES)")},
    {6, &kSsh1Blowfish,  TEXT("(BLOWFISH)")},
};
static const CipherChoice kNoChoice = {0, nullptr, TEXT("")};  // a setting that names no cipher

namespace {

struct CipherName {
    int number;
    LPCWSTR name;
};

}  // namespace

// The message lists the ciphers in this order.
static const CipherName kServerCiphers[] = {
    {1, TEXT("IDEA ")},
    {2, TEXT("DES ")},
    {3, TEXT("3-DES ")},
    {6, TEXT("BLOWFISH ")},
    {4, TEXT("TSS ")},
    {5, TEXT("RC4 ")},
};

namespace {

// clang-format on

struct ServerKeys {
    RsaKey server;
    RsaKey host;
};

}  // namespace

static void ReleaseKeys(ServerKeys* keys) {
    RsaReleaseKey(&keys->server);
    RsaReleaseKey(&keys->host);
}

// ---------------------------------------------------------------- the server's message

static bool TakeKey(ByteReader* reader, RsaKey* key) {
    const int taken = RsaParseKey(reader->next, reader->left, key, nullptr);
    const uint8_t* skipped;
    return taken > 0 && TakeBytes(reader, static_cast<uint32_t>(taken), &skipped);
}

// Returns false if the message is too short; `keys` then has what was read so far.
static bool ReadPublicKeyMessage(const BYTE* data, int length, ServerKeys* keys) {
    Ssh1State& ssh1 = session.ssh1;
    ByteReader reader = ReaderOf(data, length);
    const uint8_t* cookie;
    uint32_t flags;
    if (!TakeBytes(&reader, kSsh1CookieSize, &cookie)) return false;
    std::memcpy(ssh1.cookie, cookie, kSsh1CookieSize);
    return TakeKey(&reader, &keys->server) && TakeKey(&reader, &keys->host) &&
           TakeUint32(&reader, &flags) && TakeUint32(&reader, &ssh1.supportedCiphers) &&
           TakeUint32(&reader, &ssh1.supportedAuthentications);
}

static void HashModulus(Md5Context* hash, const RsaKey& key) {
    uint8_t bytes[kKeyBufferSize];
    BignumToBytes(bytes, key.bytes, key.modulus);
    Md5Update(hash, bytes, key.bytes);
}

static void MakeSessionId(const ServerKeys& keys) {
    Md5Context hash;
    Md5Init(&hash);
    HashModulus(&hash, keys.host);
    HashModulus(&hash, keys.server);
    Md5Update(&hash, session.ssh1.cookie, kSsh1CookieSize);
    Md5Final(&hash, session.ssh1.sessionId);
}

// ---------------------------------------------------------------- the session key

static void DrawSessionKey() {
    for (BYTE& byte : session.ssh1.sessionKey) byte = RandomByte();
}

static int LargerSize(const ServerKeys& keys) {
    return keys.host.bytes > keys.server.bytes ? keys.host.bytes : keys.server.bytes;
}

// Encrypts with the smaller key first, and with the host key first if both have the same size.
// Returns false if a key has no room for the padding. With keys of the same size this is always so
// for the second one.
static bool EncryptUnderBoth(BYTE* buffer, const ServerKeys& keys) {
    const bool host_first = keys.host.bytes <= keys.server.bytes;
    const RsaKey* first = host_first ? &keys.host : &keys.server;
    const RsaKey* second = host_first ? &keys.server : &keys.host;
    return RsaEncrypt(buffer, kSsh1KeySize, first) && RsaEncrypt(buffer, first->bytes, second);
}

// Writes the session key in the form in which it is sent: LargerSize bytes of `buffer`.
static bool EncryptSessionKey(BYTE* buffer, const ServerKeys& keys) {
    std::memcpy(buffer, session.ssh1.sessionKey, kSsh1KeySize);
    for (int i = 0; i < kMd5Size; ++i) buffer[i] ^= session.ssh1.sessionId[i];
    return EncryptUnderBoth(buffer, keys);
}

// ---------------------------------------------------------------- the answer

static const CipherChoice& ChosenCipher() {
    const DWORD type = session.settings.ssh_type;
    return type < std::size(kChoices) ? kChoices[type] : kNoChoice;
}

static bool ServerHas(int number) { return session.ssh1.supportedCiphers >> number & 1; }

static void Append(LPWSTR text, LPCWSTR more) { lstrcpyW(text + lstrlenW(text), more); }

static void TellUnsupported(LPCWSTR name) {
    WCHAR text[kMessageSize] = {};
    Append(text, TEXT("Server does not support selected encryption "));
    Append(text, name);
    Append(text, TEXT(". Try another encryption\n"));
    Append(text, TEXT("Server supports: "));
    for (const CipherName& cipher : kServerCiphers)
        if (ServerHas(cipher.number)) Append(text, cipher.name);
    Ssh1EndSession(text);
}

static void SendSessionKey(BYTE cipher, const BYTE* encrypted, int size) {
    BYTE* at = Ssh1BeginPacket(CMSG_SESSION_KEY, 1 + kSsh1CookieSize + 2 + size + 4);
    at = PutBytes(PutByte(at, cipher), session.ssh1.cookie, kSsh1CookieSize);
    StoreBig(at, static_cast<uint16_t>(8 * size));
    at = PutBytes(at + 2, encrypted, size);
    PutUint32(at, 0);  // protocol flags
    Ssh1SendPacket();
}

static void TakeUpCipher(const Ssh1Cipher* cipher) {
    Ssh1State& ssh1 = session.ssh1;
    cipher->setKey(ssh1.sessionKey);
    ssh1.ssh1Cipher = cipher;
}

// Returns false if the server does not have the chosen cipher.
static bool SendEncrypted(const BYTE* encrypted, int size) {
    const CipherChoice& choice = ChosenCipher();
    if (!choice.cipher || !ServerHas(choice.number)) {
        TellUnsupported(choice.name);
        return false;
    }
    SendSessionKey(choice.number, encrypted, size);
    TakeUpCipher(choice.cipher);
    return true;
}

static bool AnswerKeys(const ServerKeys& keys) {
    BYTE encrypted[kKeyBufferSize];
    MakeSessionId(keys);
    DrawSessionKey();
    bool answered = false;
    if (EncryptSessionKey(encrypted, keys)) {
        answered = SendEncrypted(encrypted, LargerSize(keys));
    } else {
        Ssh1EndSession(kViolation);
    }
    Wipe(encrypted, sizeof(encrypted));
    Wipe(session.ssh1.sessionKey, sizeof(session.ssh1.sessionKey));
    return answered;
}

bool Ssh1ExchangeKeys(const BYTE* data, int length) {
    ServerKeys keys = {};
    bool answered = false;
    SeedRandom();
    if (ReadPublicKeyMessage(data, length, &keys)) {
        answered = AnswerKeys(keys);
    } else {
        Ssh1EndSession(kViolation);
    }
    ReleaseKeys(&keys);
    return answered;
}
