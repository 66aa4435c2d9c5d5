// SPDX-License-Identifier: MIT
// A curses program that paints at random. After each step it hands over the screen as curses
// believes it to be, and waits until the terminal has shown all of it.
// Usage: painter SEED STEPS   (the screens go to file descriptor 3, see painter_screen.h)
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <string>

#include <curses.h>

#include "tests/hosts/painter_screen.h"

static unsigned long random_state;

static int Random(int limit) {
    random_state = random_state * 6364136223846793005UL + 1442695040888963407UL;
    return static_cast<int>((random_state >> 33) % static_cast<unsigned long>(limit));
}

static WINDOW* small;  // a window over part of the screen

static WINDOW* AnyWindow() { return Random(4) == 0 ? small : stdscr; }

static void MoveAnywhere(WINDOW* window) {
    int rows, columns;
    getmaxyx(window, rows, columns);
    const int row = Random(4) == 0 ? rows - 1 : Random(rows);
    const int column = Random(4) == 0 ? columns - 1 : Random(columns);
    wmove(window, row, column);
}

static const chtype kAttributes[] = {
    0, 0, A_BOLD, A_UNDERLINE, A_REVERSE, A_BOLD | A_REVERSE, A_BLINK, A_BLINK | A_UNDERLINE};

static chtype AnyAttribute() { return kAttributes[Random(8)]; }

// Pairs of a glyph's name and the terminal's character for it.
static std::string glyph_pairs;

static chtype AnyGlyph() {
    const int pairs = static_cast<int>(glyph_pairs.size()) / 2;
    return NCURSES_ACS(glyph_pairs[static_cast<size_t>(2 * Random(pairs))]);
}

static uint32_t SentFor(uint32_t name) {
    for (size_t i = 0; i + 1 < glyph_pairs.size(); i += 2) {
        if (static_cast<unsigned char>(glyph_pairs[i]) == name)
            return static_cast<unsigned char>(glyph_pairs[i + 1]);
    }
    return name;
}

static std::string Words() {
    static const char* const words[] = {"quill", "the", "screen", "of", "a", "host", "is", "wide"};
    std::string text;
    for (int i = Random(24); i >= 0; --i) text += std::string(words[Random(8)]) + " ";
    return text;
}

// ---------------------------------------------------------------- operations

static void WriteWords(WINDOW* w) {
    MoveAnywhere(w);
    wattrset(w, static_cast<int>(AnyAttribute()));
    waddstr(w, Words().c_str());
    wattrset(w, A_NORMAL);
}

static void FillRow(WINDOW* w) {
    int rows, columns;
    getmaxyx(w, rows, columns);
    wmove(w, Random(rows), 0);
    for (int i = 0; i < columns; ++i) waddch(w, static_cast<chtype>('0' + i % 10));
}

static void InsertRows(WINDOW* w) {
    MoveAnywhere(w);
    winsdelln(w, 1 + Random(6));
}

static void DeleteRows(WINDOW* w) {
    MoveAnywhere(w);
    winsdelln(w, -1 - Random(6));
}

static void InsertCells(WINDOW* w) {
    MoveAnywhere(w);
    for (int i = Random(12); i >= 0; --i) winsch(w, 'i' | AnyAttribute());
}

static void DeleteCells(WINDOW* w) {
    MoveAnywhere(w);
    for (int i = Random(12); i >= 0; --i) wdelch(w);
}

static void EraseRow(WINDOW* w) {
    MoveAnywhere(w);
    wclrtoeol(w);
}

static void EraseBelow(WINDOW* w) {
    MoveAnywhere(w);
    wclrtobot(w);
}

static void ScrollRegion(WINDOW* w) {
    int rows, columns;
    getmaxyx(w, rows, columns);
    const int top = Random(rows - 2);
    wsetscrreg(w, top, top + 1 + Random(rows - top - 1));
    wscrl(w, Random(13) - 6);
    wsetscrreg(w, 0, rows - 1);
}

static void ScrollAll(WINDOW* w) { wscrl(w, Random(9) - 4); }

static void DrawBox(WINDOW* w) {
    box(w, 0, 0);
    MoveAnywhere(w);
    if (glyph_pairs.empty()) return;
    for (int i = Random(10); i >= 0; --i) waddch(w, AnyGlyph() | AnyAttribute());
}

static void DrawLines(WINDOW* w) {
    MoveAnywhere(w);
    whline(w, 0, 1 + Random(60));
    MoveAnywhere(w);
    wvline(w, 0, 1 + Random(20));
}

static void LastCell(WINDOW* w) {
    int rows, columns;
    getmaxyx(w, rows, columns);
    wmove(w, rows - 1, columns - 1);
    waddch(w, static_cast<chtype>('A' + Random(26)) | AnyAttribute());
}

static void RunOfOne(WINDOW* w) {
    MoveAnywhere(w);
    for (int i = 10 + Random(90); i > 0; --i) waddch(w, '=');
}

static void EraseAll(WINDOW* w) { werase(w); }
static void ClearAll(WINDOW* w) { wclear(w); }

static void MoveSmall(WINDOW* w) {
    touchwin(stdscr);
    wnoutrefresh(stdscr);
    mvwin(small, Random(LINES - 8), Random(COLS - 30));
    touchwin(w);
}

typedef void (*Operation)(WINDOW* window);

// clang-format off
static const Operation kOperations[] = {
    WriteWords,   WriteWords,  WriteWords, WriteWords, FillRow,   FillRow,   InsertRows, InsertRows,
    DeleteRows,   DeleteRows,  InsertCells, DeleteCells, EraseRow, EraseBelow, ScrollRegion,
    ScrollRegion, ScrollAll,   ScrollAll,  DrawBox,    DrawLines, LastCell,  RunOfOne,   MoveSmall,
    EraseAll,     ClearAll,
};
// clang-format on

static const int kOperationCount = static_cast<int>(sizeof kOperations / sizeof *kOperations);

// ---------------------------------------------------------------- screens

static uint32_t CellOf(chtype cell) {
    const uint32_t text = static_cast<uint32_t>(cell & A_CHARTEXT);
    return (cell & A_ALTCHARSET ? SentFor(text) | kPainterGraphic : text) |
           (cell & A_BOLD ? kPainterBold : 0) | (cell & A_UNDERLINE ? kPainterUnderline : 0) |
           (cell & A_BLINK ? kPainterBlink : 0) | (cell & A_REVERSE ? kPainterReverse : 0);
}

static void HandOver() {
    PainterScreen screen = {};
    int row, column;
    getyx(curscr, row, column);
    for (int y = 0; y < LINES && y < kPainterRows; ++y) {
        for (int x = 0; x < COLS && x < kPainterColumns; ++x) {
            screen.cells[y][x] = CellOf(mvwinch(curscr, y, x));
        }
    }
    wmove(curscr, row, column);
    screen.row = row;
    screen.column = column;
    if (write(3, &screen, sizeof screen) != sizeof screen) exit(3);
}

// The terminal's status report comes after all that was sent before.
static void WaitUntilShown() {
    const char request[] = "\033[5n";
    const std::string wanted = "\033[0n";
    if (write(STDOUT_FILENO, request, 4) != 4) exit(3);
    std::string reply;
    char c;
    while (reply.size() < wanted.size() && read(STDIN_FILENO, &c, 1) == 1) reply += c;
    if (reply != wanted) exit(4);
}

static void Step() {
    const int most = 1 + Random(4);
    for (int i = 0; i < most; ++i) kOperations[Random(kOperationCount)](AnyWindow());
    MoveAnywhere(stdscr);
    wnoutrefresh(stdscr);
    if (Random(2) == 0) {
        touchwin(small);
        wnoutrefresh(small);
    }
    doupdate();
    HandOver();
    WaitUntilShown();
}

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    random_state = strtoul(argv[1], nullptr, 10);
    setlocale(LC_ALL, "");
    initscr();
    const char* pairs = tigetstr("acsc");
    glyph_pairs = pairs && pairs != reinterpret_cast<char*>(-1) ? pairs : "";
    raw();
    noecho();
    if (Random(2) == 0) nonl();
    small = newwin(8, 30, 5, 20);
    for (WINDOW* window : {stdscr, small}) {
        idlok(window, TRUE);
        idcok(window, TRUE);
        scrollok(window, TRUE);
    }
    for (int i = atoi(argv[2]); i > 0; --i) Step();
    endwin();
    return 0;
}
