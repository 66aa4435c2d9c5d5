// The fields of packets to an SSH server (RFC 4251, 5; SSH-1 has the same). Each procedure writes
// at `at`, where the caller has made room, and returns the position behind what it wrote.
#ifndef QUILL_PROTOCOL_SSH_PACKET_WRITER_H
#define QUILL_PROTOCOL_SSH_PACKET_WRITER_H

#include "windows_ce.h"

BYTE* PutByte(BYTE* at, BYTE value);
BYTE* PutUint32(BYTE* at, uint32_t value);  // big-endian
BYTE* PutBytes(BYTE* at, const void* bytes, int count);
BYTE* PutBlock(BYTE* at, const void* bytes, int count);  // a `string` of so many bytes
BYTE* PutString(BYTE* at, const char* text);             // a `string` of the text's bytes
int StringSize(const char* text);                        // bytes that PutString writes

#endif
