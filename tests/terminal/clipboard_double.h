// SPDX-License-Identifier: MIT
// A double of the clipboard and of local memory that a test can make fail, and that finds blocks
// which are lost, freed twice or used after they were given away. Memory is full of garbage, and a
// block is somewhat larger than what was asked for, as on a heap of 16 bytes a step.
#ifndef QUILL_TESTS_TERMINAL_CLIPBOARD_DOUBLE_H
#define QUILL_TESTS_TERMINAL_CLIPBOARD_DOUBLE_H

#include <string>
#include <vector>

#include "windows_ce.h"

struct ClipboardDouble {
    bool has_text = false;
    std::u16string text;     // what it holds, as far as its terminator
    std::u16string block;    // the whole block that was handed over, as LocalSize has it
    bool terminated = true;  // what GetClipboardData gives ends with a zero

    bool refuse_memory = false;
    bool refuse_open = false;
    bool refuse_data = false;

    std::vector<size_t> allocated;  // bytes, in their order
    int empties = 0;
    bool open = false;
    std::vector<std::string> faults;
};

extern ClipboardDouble clipboard;

void ResetClipboard();
int LiveBlocks();  // that the program has still to free

#endif
