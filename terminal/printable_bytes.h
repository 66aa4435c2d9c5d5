// Which bytes are text in the ground state: everything from 32 on but for the five 8-bit
// introducers. A table, because every byte of text is looked up in it.
#ifndef QUILL_TERMINAL_PRINTABLE_BYTES_H
#define QUILL_TERMINAL_PRINTABLE_BYTES_H

#include <array>

#include "windows_ce.h"

inline constexpr BYTE kIntroducerInd = 0x84;
inline constexpr BYTE kIntroducerRi = 0x8D;
inline constexpr BYTE kIntroducerSs3 = 0x8F;
inline constexpr BYTE kIntroducerDcs = 0x90;
inline constexpr BYTE kIntroducerCsi = 0x9B;

inline constexpr std::array<BYTE, 256> kPrintableBytes = [] {
    std::array<BYTE, 256> table{};
    for (size_t b = 32; b < table.size(); ++b) table[b] = 1;
    for (BYTE b : {kIntroducerInd, kIntroducerRi, kIntroducerSs3, kIntroducerDcs, kIntroducerCsi}) {
        table[b] = 0;
    }
    return table;
}();

#endif
