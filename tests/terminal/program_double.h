// SPDX-License-Identifier: MIT
// Doubles of what the terminal window calls in settings/, session/ and beside it, and the fixture
// that starts each test with one terminal window: 640 x 384 pixels, cells of 8 x 16, a session up,
// nothing on the screen, and the first paint done.
#ifndef QUILL_TESTS_TERMINAL_PROGRAM_DOUBLE_H
#define QUILL_TESTS_TERMINAL_PROGRAM_DOUBLE_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "gdi_double.h"
#include "session/session_state.h"

extern std::vector<std::string> program_calls;  // by name, in their order; SessionSend with bytes

typedef std::vector<std::string> Lines;

// The colours of the fixture, as the drawing calls print them: text 111111, bold 222222, background
// eeeeee, cursor cccccc.
class TerminalWindow : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    static Lines Paint();            // paints, and yields what was drawn
    static Lines PaintRow(int row);  // paints with that row flagged, and yields that row's drawing
    // Writes text into the screen's row from column 1 on.
    static void Put(int row, const std::string& text, DWORD attributes = 0);
    static void Resize(int width, int height);  // and lays out and paints
};

#endif
