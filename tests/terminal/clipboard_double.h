// SPDX-License-Identifier: MIT
// A double of the clipboard and of local memory. A test can make its calls fail. It finds blocks
// that are leaked, freed twice or used after the clipboard owns them. New memory is filled with
// garbage, and a block is rounded up to 16 bytes, as on a real heap.
#ifndef QUILL_TESTS_TERMINAL_CLIPBOARD_DOUBLE_H
#define QUILL_TESTS_TERMINAL_CLIPBOARD_DOUBLE_H

#include <string>
#include <vector>

#include "windows_ce.h"

struct ClipboardDouble {
    bool has_text = false;
    std::u16string text;     // its text up to the terminator
    std::u16string block;    // the whole block that it was given, by LocalSize
    bool terminated = true;  // the block of GetClipboardData ends with a zero

    bool refuse_memory = false;
    bool refuse_open = false;
    bool refuse_data = false;

    std::vector<size_t> allocated;  // bytes of each block, in order
    int empties = 0;
    bool open = false;
    std::vector<std::string> faults;
};

extern ClipboardDouble clipboard;

void ResetClipboard();
int LiveBlocks();  // blocks that the program still has to free

#endif
