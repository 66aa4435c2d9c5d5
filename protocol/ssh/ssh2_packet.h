// Packets of SSH-2 (RFC 4253, 6): building and sending ours, reading the fields of the server's.
#ifndef QUILL_PROTOCOL_SSH_SSH2_PACKET_H
#define QUILL_PROTOCOL_SSH_SSH2_PACKET_H

#include "crypto/bignum.h"
#include "protocol/ssh/ssh_session.h"
#include "windows_ce.h"

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

// ---------------------------------------------------------------- sending

// Starts a packet of `payloadLength` bytes, the message number counted, at most kSsh2MaxData of
// them data. The caller then writes the rest of the payload from Payload() on.
void BeginPacket(BYTE type, int payloadLength);
BYTE* Payload();  // the byte behind the message number

// Pads the packet to a multiple of 8 bytes, adds the MAC and encrypts it while there is a cipher,
// and sends it; nothing is sent while no connection is up.
void SendPacket();

// ---------------------------------------------------------------- reading

uint32_t GetUint32(const BYTE* bytes);

// Fields of the packet being handled, one after the other from behind its message number. What the
// payload does not hold whole is not taken.
void ReadString(const BYTE** data, int* length);  // null and 0 then
bool ReadUint32(uint32_t* value);                 // false then
Bignum ReadMpint();  // null then, and for a negative number; the caller's

bool HasCipher();
void DecryptHead(BYTE* buffer);  // the first 8 bytes, in place

#endif
