// SPDX-License-Identifier: MIT
// A cipher and a MAC of SSH-2 that change nothing, so that a target can send any packet.
#ifndef QUILL_FUZZ_CIPHER_OFF_H
#define QUILL_FUZZ_CIPHER_OFF_H

#include <cstdint>
#include <cstring>

#include "crypto/packet_checks.h"
#include "protocol/ssh/ssh2.h"

constexpr int kMacSize = 20;  // zeros, which nobody checks

inline void NoKey(const uint8_t*) {}
inline void NoCipher(uint8_t*, int) {}
inline void NoMac(uint8_t* packet, int length, uint32_t) {
    std::memset(packet + length, 0, kMacSize);
}
inline int AnyMac(const uint8_t*, int, uint32_t) { return 1; }

inline const SshCipher kOff = {"off", NoKey, NoKey, NoKey, NoKey, NoCipher, NoCipher, "off", 8, 0};
inline const SshMac kAny = {"any", NoKey, NoKey, NoMac, AnyMac, "any", kMacSize};

#endif
