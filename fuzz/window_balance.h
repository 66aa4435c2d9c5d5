// SPDX-License-Identifier: MIT
// What the program has asked the device for and not given back. The linker redirects its calls to
// this target (--wrap).
#ifndef QUILL_FUZZ_WINDOW_BALANCE_H
#define QUILL_FUZZ_WINDOW_BALANCE_H

struct Balance {
    int objects = 0;   // pens, brushes and fonts
    int contexts = 0;  // for drawing
    int keys = 0;      // of the registry
    int blocks = 0;    // of memory
    bool operator==(const Balance&) const = default;
};
extern Balance balance;

#endif
