// SPDX-License-Identifier: MIT
// The terminal's screen as the manual page of a capability speaks of it: cells, cursor and region.
// A test computes from the manual what a picture becomes, and compares it with the terminal's.
#ifndef QUILL_TESTS_HOSTS_PICTURE_H
#define QUILL_TESTS_HOSTS_PICTURE_H

#include <functional>
#include <string>

#include "session/session_state.h"
#include "tests/hosts/feed.h"

struct Picture {
    DWORD cells[kScreenRows + 1][kScreenColumns + 1];  // [row][column], from 1
    int width[kScreenRows + 1];                        // columns that are shown: 80 or 40
    int row, col;
    int top, bottom;
};

// In a picture that the manual gives: a blank whose attributes it leaves open.
inline constexpr DWORD kAnyBlank = 0x80000000 | ' ';

// How a capability finds the terminal: text in every cell, the cursor, the region, the pen, and
// whether its row is of double width or column 80 was just written.
struct Start {
    int row, col;
    int top, bottom;
    WORD pen;
    bool double_width;
    bool after_last_column;
};

// A terminal in use for a while: its ring has turned, every cell holds a character with some
// attributes. The right half of a row of double width is blank.
void SetUp(const Start& start);

// The same with the region open, and with every mode, tab stop, attribute and character set the
// other way round: what puts one of them right is seen there.
void SetUpTheOtherWay(const Start& start);

// Rows, columns and regions with their edges, plain and with attributes, of double width, and after
// the last column.
void ForEveryStart(const std::function<void(const Start&)>& act);

Picture TakePicture();

// The first difference in words, or an empty text. The cursor is compared if `with_cursor`.
std::string Difference(const Picture& wanted, const Picture& found, bool with_cursor);

// Of the sizes of rows, which no program that asks a terminfo entry changes.
std::string WidthDifference(const Picture& wanted, const Picture& found);

std::string Describe(const Start& start);

#endif
