// SPDX-License-Identifier: MIT
// Work whose instructions tests/devices/cost.sh counts. Usage: device_cost
// nothing|exchange|3des|screen
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "crypto/ciphers.h"
#include "crypto/public_key.h"
#include "crypto/random.h"
#include "tests/terminal/terminal_state.h"
#include "windows_ce.h"

BOOL MessageBeep(UINT) { return TRUE; }

void GetSystemTime(SYSTEMTIME* time) { *time = {}; }

namespace {

// The client's part of a key exchange of SSH-2: two powers of a 1,024-bit prime.
void Exchange() {
    DhContext context = {};
    SeedRandom();
    DhSetup(&context);
    const Bignum f = BignumCopy(DhGenerate(&context, kDhExponentBits));
    BignumFree(DhSharedSecret(&context, f));
    BignumFree(f);
    DhForget(&context);
}

void Encrypt() {
    std::vector<uint8_t> bytes(1 << 20, uint8_t{7});
    const std::string key(24, 'k'), iv(8, 'i');
    kTripleDesCbc.setOutgoingIv(reinterpret_cast<const uint8_t*>(iv.data()));
    kTripleDesCbc.setOutgoingKey(reinterpret_cast<const uint8_t*>(key.data()));
    kTripleDesCbc.encrypt(bytes.data(), static_cast<int>(bytes.size()));
}

// 24 rows of 80 cells; each row has its own position and rendition.
void Screen() {
    std::string text, replies;
    for (int row = 1; row <= kScreenRows; row++)
        text += "\x1b[" + std::to_string(row) + ";1H\x1b[" + std::to_string(row % 2 * 7) + "m" +
                std::string(kScreenColumns, 'x');
    FeedWhole(text, &replies);
}

const struct {
    const char* name;
    void (*work)();
} kWork[] = {{"nothing", [] {}}, {"exchange", Exchange}, {"3des", Encrypt}, {"screen", Screen}};

}  // namespace

int main(int count, char** words) {
    NewTerminal();
    for (const auto& row : kWork)
        if (count == 2 && strcmp(words[1], row.name) == 0) return row.work(), 0;
    fprintf(stderr, "usage: device_cost nothing|exchange|3des|screen\n");
    return 2;
}
