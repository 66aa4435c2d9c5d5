// SPDX-License-Identifier: MIT
// Any bytes into the terminal, three times: byte by byte with a check of all bounds after each one,
// as one chunk, and cut as the first four bytes of the input say. All runs must end in the same
// state and send the same replies.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "terminal/screen_buffer.h"
#include "tests/terminal/terminal_state.h"

static const size_t kCutBytes = 4;

BOOL MessageBeep(UINT) { return TRUE; }

static void Require(const std::string& wrong, const char* when) {
    if (wrong.empty()) return;
    fprintf(stderr, "%s: %s\n", when, wrong.c_str());
    abort();
}

static void FeedChecked(const std::string& bytes, std::string* replies) {
    for (char c : bytes) {
        FeedByteByByte(std::string(1, c), replies);
        Require(FieldOutOfBounds(), "out of bounds");
    }
}

static void FeedCut(const std::string& bytes, const uint8_t* cuts, std::string* replies) {
    size_t turn = 0;
    for (size_t at = 0; at < bytes.size();) {
        const size_t length = cuts[turn++ % kCutBytes] + size_t{1};
        FeedWhole(bytes.substr(at, length), replies);
        at += length;
    }
}

using Row = std::array<DWORD, kScreenColumns>;

static Row PaintRow(int row) {
    Row cells;
    memcpy(cells.data(), GetPaintRow(row) + 1, sizeof(cells));
    return cells;
}

// A selection of the whole screen reverses its rows and changes nothing else.
static void ReadEveryRow() {
    static Row rows[kRingLines + 1];
    SetSelection(0, 0, 0, 0);
    for (int row = 1; row <= kRingLines; ++row) rows[row] = PaintRow(row);
    for (int row = 1; row <= kScreenRows; ++row)
        for (DWORD& cell : rows[row]) cell |= kCellReverse;
    SetSelection(1, 1, kScreenColumns, kScreenRows);
    for (int row = 1; row <= kRingLines; ++row)
        Require(PaintRow(row) == rows[row] ? "" : "a row", "painted as it is selected");
    AnyBlinking();
    MarkBlinkingRows();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < kCutBytes) return 0;
    const std::string bytes(reinterpret_cast<const char*>(data) + kCutBytes, size - kCutBytes);
    std::string one_by_one, whole, cut;
    NewTerminal();
    FeedChecked(bytes, &one_by_one);
    const TerminalSnapshot expected = TakeSnapshot();
    NewTerminal();
    FeedWhole(bytes, &whole);
    Require(FirstDifference(expected, TakeSnapshot()), "whole differs");
    NewTerminal();
    FeedCut(bytes, data, &cut);
    Require(FirstDifference(expected, TakeSnapshot()), "cut differs");
    Require(one_by_one == whole && one_by_one == cut ? "" : "replies", "replies differ");
    ReadEveryRow();
    return 0;
}
