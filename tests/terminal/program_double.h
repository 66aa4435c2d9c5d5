// SPDX-License-Identifier: MIT
// Doubles of what the terminal window calls in settings/, session/ and its own layer, and a fixture
// that starts each test with one terminal window: 640 x 384 pixels, cells of 8 x 16, a session up,
// an empty screen, and the first paint done.
#ifndef QUILL_TESTS_TERMINAL_PROGRAM_DOUBLE_H
#define QUILL_TESTS_TERMINAL_PROGRAM_DOUBLE_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "gdi_double.h"
#include "session/session_state.h"

extern std::vector<std::string> program_calls;  // names in call order; SessionSend with its bytes

typedef std::vector<std::string> Lines;

// The colours of the fixture, as the drawing calls print them: text 111111, bold 222222, background
// eeeeee, cursor cccccc.
class TerminalWindow : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    static Lines Paint();            // paints and returns what was drawn
    static Lines PaintRow(int row);  // flags the row, paints, returns the row's drawing
    // Writes text into the screen's row from column 1 on.
    static void Put(int row, const std::string& text, DWORD attributes = 0);
    static void Resize(int width, int height);  // then lays out and paints
};

#endif
