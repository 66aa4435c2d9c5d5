// SPDX-License-Identifier: MIT
// The values that dialog_saver writes in turn. The stored values must always be among them.
#ifndef QUILL_TESTS_DIALOGS_SAVED_TEXTS_H
#define QUILL_TESTS_DIALOGS_SAVED_TEXTS_H

#include "session/settings_types.h"

struct SavedText {
    int id;  // the field in "Auto Login"
    const char* name;
    const char16_t* values[2];
    const char16_t* first;  // before the first save
};

inline constexpr SavedText saved_texts[] = {
    {1002, "sear1", {u"a", u"the other search, of 34 characters"}, u"ogin"},
    {1003, "resp1", {u"\x4e2d\x4e2d", u"b"}, u""},
    {1256, "resp2", {u"dddddddddddddddddddddddddddddd", u""}, u""},
};

// The number of the turn is saved too: as the number "table", and as a text in the field of
// "sear2".
inline constexpr DWORD kFirstTurn = 1000;
inline constexpr int kTurnField = 1253;

struct SavedNumber {
    const char* name;
    DWORD Settings::*field;
    DWORD values[2];
    DWORD first;
};

inline constexpr SavedNumber saved_numbers[] = {
    {"blink", &Settings::blink, {0, 0xFFFFFFFF}, 0},
    {"port", &Settings::port, {23, 22}, 23},
    {"color_cursor", &Settings::color_cursor, {0x808080, 0x00FF00}, 0x808080},
};

#endif
