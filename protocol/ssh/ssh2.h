// SPDX-License-Identifier: MIT
// The SSH-2 client (RFC 4251 to 4254): the session, its packets, the key exchange, the user's
// authentication and the channel.
#ifndef QUILL_PROTOCOL_SSH_SSH2_H
#define QUILL_PROTOCOL_SSH_SSH2_H

#include "crypto/bignum.h"
#include "protocol/ssh/ssh_session.h"
#include "session/protocol_types.h"
#include "windows_ce.h"

// ---------------------------------------------------------------- the session

extern const Protocol kSsh2Protocol;

// Begins a session: resets its section of the record, hashes both identification lines and turns
// encryption off. clientVersion is our line. Each line is hashed up to its first CR or LF.
void Ssh2Start(const char* clientVersion, const BYTE* serverVersion, int serverLength);

// Wipes and releases what a session left.
void Ssh2Forget();

// ---------------------------------------------------------------- packets

// The packet format is that of RFC 4253, 6.

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

// ---------------------------------------------------------------- outgoing packets

// Starts a packet. `payloadLength` includes the message number; at most kSsh2MaxData of these bytes
// are channel data. The caller then writes the rest of the payload at Payload().
void BeginPacket(BYTE type, int payloadLength);
BYTE* Payload();  // the byte after the message number

// Pads the packet to a multiple of 8 bytes, adds the MAC and encrypts it if there is a cipher, and
// sends it. Sends nothing while not connected.
void SendPacket();

// ---------------------------------------------------------------- incoming packets

uint32_t GetUint32(const BYTE* bytes);

// These read the fields of the packet being handled, one after the other, starting after its
// message number. A field that is not completely in the payload is not consumed.
void ReadString(const BYTE** data, int* length);  // null and 0 if incomplete
bool ReadUint32(uint32_t* value);                 // false if incomplete
Bignum ReadMpint();  // null if incomplete or negative; the caller frees it

bool HasCipher();
void DecryptHead(BYTE* buffer);  // decrypts the first 8 bytes in place

// ---------------------------------------------------------------- from chunks to handlers

// Appends a chunk to session.ssh.recvBuf and handles every complete packet. It drops the bytes in
// recvBuf if the chunk does not fit after them, or if a length field is larger than recvBuf.
void Ssh2TakeChunk(const BYTE* bytes, int count);

// Handles one packet whose first block is decrypted: the 4-byte length field, the bytes that it
// counts, and the MAC if there is a cipher. A packet with a wrong MAC is dropped, and the next
// packet is then checked with the same sequence number. A length field of 65,531 or more ends the
// session.
void Ssh2HandlePacket(const BYTE* packet, int length);

// ---------------------------------------------------------------- the key exchange

// RFC 4253, 7 and 8: "diffie-hellman-group1-sha1" with an "ssh-dss" host key. Only the server
// starts an exchange, at the beginning of the session and at any later time. The server's lists of
// algorithms are ignored: each of our lists names one algorithm, and that one is used. Host keys
// are not stored, and the user is not asked to confirm them.

// Handlers of the packet being handled.
void OnKexInit();     // replies with our KEXINIT and KEXDH_INIT
void OnKexDhReply();  // replies with NEWKEYS if the signature is good; otherwise sends nothing
void OnNewKeys();     // uses the new keys from now on; before our own NEWKEYS: CloseSession

// Hashes the two identification lines, each without its line end, for the key exchanges.
void HashIdentifications(const char* clientVersion, const BYTE* serverVersion, int serverLength);

// ---------------------------------------------------------------- authentication

// Password authentication (RFC 4252, 8).

// Sends user name and password from the settings. Unless they are remembered (ssh_def) and this is
// the first attempt, it shows the Sign on dialog first; it sends them even if the user cancels the
// dialog. Closes the session if there is no user name or the dialog cannot be shown.
void Ssh2Authenticate(bool retry);

// Handlers of the packet being handled.
void OnServiceAccept();
void OnUserauthFailure();  // asks again, with no limit of our own

// ---------------------------------------------------------------- the channel

// The only channel of an SSH-2 session (RFC 4254). It connects our terminal with a shell on a
// pseudo-terminal of 24 rows and 80 columns.

// Sends terminal bytes as channel data, at most kSsh2MaxData in a packet. The server's window is
// ignored. Bytes are dropped while the channel is not open. During a key exchange they are held,
// since RFC 4253, 7.1 allows no other messages then. At most kSsh2MaxHeld bytes are held; a piece
// that does not fit is dropped.
void Ssh2SendChannelData(const BYTE* data, int length);
void SendHeldData();    // sends the held bytes
void ForgetHeldData();  // wipes them

// Handlers of the packet being handled.
void OnUserauthSuccess();          // opens the channel
void OnChannelOpenConfirmation();  // asks for the pty
void OnChannelData();
void OnChannelExtendedData();  // shown like data, whatever its type
void OnChannelSuccess();       // asks for the shell if this answers the pty request

#endif
