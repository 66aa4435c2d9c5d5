// SPDX-License-Identifier: MIT
// Modular powers that are computed only once.
#ifndef QUILL_FUZZ_REMEMBERED_POWERS_H
#define QUILL_FUZZ_REMEMBERED_POWERS_H

extern bool remember_powers;  // true: the powers of now are kept

#endif
