// SPDX-License-Identifier: MIT
// The screen that the painter hands over after each step, as bytes on a pipe.
#ifndef QUILL_TESTS_HOSTS_PAINTER_SCREEN_H
#define QUILL_TESTS_HOSTS_PAINTER_SCREEN_H

#include <cstdint>

inline constexpr int kPainterRows = 24;
inline constexpr int kPainterColumns = 80;

// Beside the character. The same as the terminal's cell bits.
inline constexpr uint32_t kPainterBold = 0x0100;
inline constexpr uint32_t kPainterUnderline = 0x0200;
inline constexpr uint32_t kPainterBlink = 0x0400;
inline constexpr uint32_t kPainterReverse = 0x0800;
inline constexpr uint32_t kPainterGraphic = 0x2000;

struct PainterScreen {
    uint32_t cells[kPainterRows][kPainterColumns];
    int32_t row;  // from 0
    int32_t column;
};

#endif
