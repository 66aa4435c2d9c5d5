// Scrolling: the whole screen turns the ring and fills one line; a region moves its lines, which
// lie side by side in the ring, or in two stretches where the region crosses the ring's end.
#include <cstring>

#include "terminal/screen_buffer.h"

void TurnRing(int delta) {
    int origin = session.screen.ring_origin + delta % kRingLines;
    if (origin < 0) origin += kRingLines;
    if (origin >= kRingLines) origin -= kRingLines;
    session.screen.ring_origin = origin;
}

static void MoveSlots(int to, int from, int count) {
    if (count < 1) return;
    memmove(session.screen.slots[to], session.screen.slots[from],
            static_cast<size_t>(count) * sizeof session.screen.slots[0]);
}

// Row r+1 onto row r, for r = top..bottom-1. Needs top < bottom.
static void MoveRowsUp(int top, int bottom) {
    const int first = RowSlot(top);
    const int last = RowSlot(bottom);
    if (first < last) {
        MoveSlots(first, first + 1, last - first);
        return;
    }
    MoveSlots(first, first + 1, kRingLines - first);
    MoveSlots(kRingLines, 1, 1);
    MoveSlots(1, 2, last - 1);
}

// Row r-1 onto row r, for r = bottom..top+1. Needs top < bottom.
static void MoveRowsDown(int top, int bottom) {
    const int first = RowSlot(top);
    const int last = RowSlot(bottom);
    if (first < last) {
        MoveSlots(first + 1, first, last - first);
        return;
    }
    MoveSlots(2, 1, last - 1);
    MoveSlots(1, kRingLines, 1);
    MoveSlots(first + 1, first, kRingLines - first);
}

static bool WholeScreen(int top, int bottom) { return top == 1 && bottom == session.screen.rows; }

// How many single steps have the effect of n: a region is blank after its height; the ring is blank
// after one turn, and from then on only its origin moves.
static int StepsThatMatter(int n, int top, int bottom) {
    if (WholeScreen(top, bottom)) return n <= kRingLines ? n : kRingLines + n % kRingLines;
    const int height = bottom > top ? bottom - top + 1 : 1;
    return n < height ? n : height;
}

static void ScrollUp(int top, int bottom) {
    if (WholeScreen(top, bottom)) {
        TurnRing(1);
        MarkRows(1, bottom - 1);
    } else if (top < bottom) {
        MoveRowsUp(top, bottom);
        MarkRows(top, bottom - 1);
    }
    FillLine(bottom, kBlank, 1);
}

static void ScrollDown(int top, int bottom) {
    if (WholeScreen(top, bottom)) {
        TurnRing(-1);
        MarkRows(2, bottom);
    } else if (top < bottom) {
        MoveRowsDown(top, bottom);
        MarkRows(top + 1, bottom);
    }
    FillLine(top, kBlank, 1);
}

void InsertLines(int n, int top, int bottom) {
    if (!RowExists(top) || !RowExists(bottom)) return;
    for (int steps = StepsThatMatter(n, top, bottom); steps > 0; --steps) ScrollDown(top, bottom);
}

void DeleteLines(int n, int top, int bottom) {
    if (!RowExists(top) || !RowExists(bottom)) return;
    for (int steps = StepsThatMatter(n, top, bottom); steps > 0; --steps) ScrollUp(top, bottom);
}
