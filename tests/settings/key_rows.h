// SPDX-License-Identifier: MIT
// The expected key table, written independently of the product: name, default escape text, and the
// bytes sent, in hexadecimal.
#ifndef QUILL_TESTS_SETTINGS_KEY_ROWS_H
#define QUILL_TESTS_SETTINGS_KEY_ROWS_H

struct KeyRow {
    const char* name;
    const char* text;
    const char* bytes;
};

extern const KeyRow key_rows[66];

#endif
