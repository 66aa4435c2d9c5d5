// SPDX-License-Identifier: MIT
// SSH-2 (RFC 4251 to 4254), the client: the session, its packets, the key exchange, the user and
// the channel.
#ifndef QUILL_PROTOCOL_SSH_SSH2_H
#define QUILL_PROTOCOL_SSH_SSH2_H

#include "crypto/bignum.h"
#include "protocol/ssh/ssh_session.h"
#include "session/protocol_types.h"
#include "windows_ce.h"

// ---------------------------------------------------------------- the session

extern const Protocol kSsh2Protocol;

// A session begins: its section of the record as at first, both lines in the exchange hash, all in
// the clear. clientVersion is our line; of both lines the first CR or LF ends what is hashed.
void Ssh2Start(const char* clientVersion, const BYTE* serverVersion, int serverLength);

// Wipes and releases what a session left.
void Ssh2Forget();

// ---------------------------------------------------------------- packets

// RFC 4253, 6.

// Message numbers (RFC 4250, 4.1).
inline constexpr BYTE kMsgServiceRequest = 5;
inline constexpr BYTE kMsgServiceAccept = 6;
inline constexpr BYTE kMsgKexInit = 20;
inline constexpr BYTE kMsgNewKeys = 21;
inline constexpr BYTE kMsgKexDhInit = 30;
inline constexpr BYTE kMsgKexDhReply = 31;
inline constexpr BYTE kMsgUserauthRequest = 50;
inline constexpr BYTE kMsgUserauthFailure = 51;
inline constexpr BYTE kMsgUserauthSuccess = 52;
inline constexpr BYTE kMsgUserauthPasswdChangeReq = 60;
inline constexpr BYTE kMsgChannelOpen = 90;
inline constexpr BYTE kMsgChannelOpenConfirmation = 91;
inline constexpr BYTE kMsgChannelOpenFailure = 92;
inline constexpr BYTE kMsgChannelWindowAdjust = 93;
inline constexpr BYTE kMsgChannelData = 94;
inline constexpr BYTE kMsgChannelExtendedData = 95;
inline constexpr BYTE kMsgChannelClose = 97;
inline constexpr BYTE kMsgChannelRequest = 98;
inline constexpr BYTE kMsgChannelSuccess = 99;
inline constexpr BYTE kMsgChannelFailure = 100;

// ---------------------------------------------------------------- packets that go out

// Starts a packet of `payloadLength` bytes, the message number counted, at most kSsh2MaxData of
// them data. The caller then writes the rest of the payload from Payload() on.
void BeginPacket(BYTE type, int payloadLength);
BYTE* Payload();  // the byte behind the message number

// Pads the packet to a multiple of 8 bytes, adds the MAC and encrypts it while there is a cipher,
// and sends it; nothing is sent while no connection is up.
void SendPacket();

// ---------------------------------------------------------------- packets that come in

uint32_t GetUint32(const BYTE* bytes);

// Fields of the packet being handled, one after the other from behind its message number. What the
// payload does not hold whole is not taken.
void ReadString(const BYTE** data, int* length);  // null and 0 then
bool ReadUint32(uint32_t* value);                 // false then
Bignum ReadMpint();  // null then, and for a negative number; the caller's

bool HasCipher();
void DecryptHead(BYTE* buffer);  // the first 8 bytes, in place

// ---------------------------------------------------------------- from chunks to handlers

// Appends a chunk to session.ssh.recvBuf and handles every packet that is complete. What waits is
// dropped when the chunk does not fit behind it, and when a length field cannot be true.
void Ssh2TakeChunk(const BYTE* bytes, int count);

// One packet, its first block decrypted: 4 bytes of length field, as many as it says, and the MAC
// while there is a cipher. Dropped when the MAC is wrong; the next is then expected with the same
// sequence number.
void Ssh2HandlePacket(const BYTE* packet, int length);

// ---------------------------------------------------------------- the key exchange

// RFC 4253, 7 and 8: "diffie-hellman-group1-sha1" with an "ssh-dss"
// host key. It is begun by the server alone, at the start and whenever it likes. The server's lists
// of algorithms are not looked at: each of ours names one, and that one is used. No host key is
// remembered, and none is asked for.

// Handlers of the packet in hand.
void OnKexInit();     // answered by our KEXINIT and KEXDH_INIT
void OnKexDhReply();  // a good signature is answered by NEWKEYS; anything else by nothing
void OnNewKeys();     // new keys are used from here on; before our own NEWKEYS: CloseSession

// Hashes the two identification lines, each without its end, for the exchanges to come.
void HashIdentifications(const char* clientVersion, const BYTE* serverVersion, int serverLength);

// ---------------------------------------------------------------- the user

// Password authentication (RFC 4252, 8).

// Sends the password request, with the stored user and password where they are remembered and this
// is the first attempt, else with those of the Sign on dialog, a cancelled one included. Without a
// user name, or without a dialog, the session is closed.
void Ssh2Authenticate(bool retry);

// Handlers of the packet in hand.
void OnServiceAccept();
void OnUserauthFailure();  // asks again, as often as the server lets us

// ---------------------------------------------------------------- the channel

// The one channel of an SSH-2 session (RFC 4254): a pseudo-terminal of 24 rows and 80 columns with
// a shell, and the bytes between it and the terminal.

// Sends terminal bytes as channel data, at most kSsh2MaxData a packet, whatever the server's window
// says. Dropped while the channel is not open. While keys are being exchanged they wait, since
// nothing but the exchange may be sent then (RFC 4253, 7.1); kSsh2MaxHeld bytes may, and more are
// dropped.
void Ssh2SendChannelData(const BYTE* data, int length);
void SendHeldData();  // what waited
void ForgetHeldData();

// Handlers of the packet in hand.
void OnUserauthSuccess();          // opens the channel
void OnChannelOpenConfirmation();  // asks for the pty
void OnChannelData();
void OnChannelExtendedData();  // shown like data, whatever its type
void OnChannelSuccess();       // of the pty: asks for the shell

#endif
