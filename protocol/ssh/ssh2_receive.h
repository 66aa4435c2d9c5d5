// From received chunks to packets, and from packets to the handlers of their messages.
#ifndef QUILL_PROTOCOL_SSH_SSH2_RECEIVE_H
#define QUILL_PROTOCOL_SSH_SSH2_RECEIVE_H

#include "windows_ce.h"

// Appends a chunk to session.ssh.recvBuf and handles every packet that is complete. What waits is
// dropped when the chunk does not fit behind it, and when a length field cannot be true.
void Ssh2TakeChunk(const BYTE* bytes, int count);

// One packet, its first block decrypted: 4 bytes of length field, as many as it says, and the MAC
// while there is a cipher. Dropped when the MAC is wrong; the next is then expected with the same
// sequence number.
void Ssh2HandlePacket(const BYTE* packet, int length);

#endif
