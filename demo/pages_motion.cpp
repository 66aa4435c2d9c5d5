// SPDX-License-Identifier: MIT
// Pages about movement: a scrolling region that scrolls by the clock, tab stops, cursor addressing,
// and streams of lines, one slow and one fast.
#include <cmath>
#include <cstdio>

#include "demo/session.h"

constexpr int kRegionTop = 5, kRegionBottom = 20;
constexpr int kLinesEachWay = 24;
constexpr long long kScrollPause = 120;

static std::string CraneLine(int number) {
    char text[80];
    snprintf(text, sizeof(text), "   Crane %d   lift %03d   %-10s %4d kg", number % 3 + 1, number,
             number % 2 == 0 ? "ship-quay" : "quay-yard", 400 + number * 37 % 1900);
    return text;
}

static void EnterRegions(Session& session) {
    std::string& out = session.out;
    WriteTitle(out, "Scrolling region");
    WriteAt(out, 3, 4, "Rows 5 to 20 scroll up and down; nothing else on the screen moves.");
    WriteGraphics(out, 4, 1, std::string(80, 'q'));
    WriteGraphics(out, 21, 1, std::string(80, 'q'));
    WriteAt(out, 22, 4, "These two rows below the region");
    WriteAt(out, 23, 4, "stay where they are.");
    WriteHint(out, kAnyKey);
    out += "\x1b[5;20r";
    session.wake = Now();
}

// Scrolls the region up by line feeds in its last row, then down by reverse index in its first row.
static void TickRegions(Session& session) {
    const bool up = session.step % (2 * kLinesEachWay) < kLinesEachWay;
    MoveTo(session.out, up ? kRegionBottom : kRegionTop, 1);
    session.out += up ? "\r\n" : "\x1bM";
    session.out += CraneLine(session.step);
    ++session.step;
    session.wake = Now() + kScrollPause;
}

static void WriteRuler(std::string& out, int row) {
    std::string ruler;
    for (int col = 1; col <= 80; ++col)
        ruler += col % 10 == 0 ? static_cast<char>('0' + col / 10) : '.';
    WriteAt(out, row, 1, ruler);
}

// Writes a table with its own tab stops as columns, then sets the default stops again.
static void WriteTabTable(std::string& out, int row) {
    out += "\x1b[3g";
    for (const int stop : {6, 30, 46, 62}) {
        MoveTo(out, row, stop);
        out += "\x1bH";
    }
    WriteAt(out, row, 1, "\r\tArticle\tBay\tIn stock\tOn order\r\n");
    out += "\tHemp rope, 24 mm\tC\t180 m\t-\r\n";
    out += "\tBrass lanterns\tA\t12\t24\r\n";
    out += "\tStockholm tar\tF\t3\t40\r\n";
    out += "\x1b[3g";
    for (int stop = 9; stop <= 80; stop += 8) {
        MoveTo(out, row, stop);
        out += "\x1bH";
    }
}

// Draws the tide of one day as a curve. Each point is written to its own address, from right to
// left.
static void WriteTide(std::string& out, int top) {
    for (int col = 74; col >= 8; --col) {
        const double phase = (col - 8) * 3.14159265 / 16.5;
        WriteAt(out, top + 4 + static_cast<int>(std::lround(4 * std::cos(phase))), col, "*");
    }
    WriteAt(out, top, 2, "high");
    WriteAt(out, top + 8, 2, "low");
}

static void EnterTabs(Session& session) {
    std::string& out = session.out;
    WriteTitle(out, "Tabs and addressing");
    WriteRuler(out, 3);
    WriteAt(out, 4, 1, "1\t9\t17\t25\t33\t41\t49\t57\t65\t73");
    WriteTabTable(out, 6);
    WriteAt(out, 11, 4, "The tide today, each point written to its own address:");
    WriteTide(out, 13);
    WriteHint(out, kAnyKey);
    // Relative cursor motions that end where they began.
    WriteAt(out, 11, 60,
            "\x1b"
            "7\x1b[2A\x1b[5C\x1b[2B\x1b[5D\x1b"
            "8(ends here)");
}

const Screen kRegionsPage = {EnterRegions, BackToMenu, TickRegions};
const Screen kTabsPage = {EnterTabs, BackToMenu, nullptr};

// ---------------------------------------------------------------- streams

// Two pages that send many lines: one line every 0.2 seconds, and as fast as the connection takes
// them.

constexpr long long kSlowPause = 200;
constexpr int kSlowLines = 300;
constexpr int kFastLines = 5000;

static void EnterSlowStream(Session& session) {
    session.out += "The gate's log. Press any key to return to the menu.\r\n\r\n";
    session.wake = Now();
}

static void TickSlowStream(Session& session) {
    const int n = ++session.step;
    char text[100];
    snprintf(text, sizeof(text), "%02d:%02d  gate %d  lorry %03d %s  %d pallets\r\n", 6 + n / 60,
             n % 60, n % 4 + 1, 100 + n * 7 % 900, n % 3 == 0 ? "out" : "in ", 2 + n * 5 % 17);
    session.out += text;
    session.wake = n < kSlowLines ? Now() + kSlowPause : 0;
    if (n == kSlowLines) session.out += "\r\nThe gate is shut. Press any key.\r\n";
}

static void EnterFastStream(Session& session) {
    session.out += "Stock list, 5,000 lines.\r\n";
    session.wake = Now();
}

static void WriteStockLine(std::string& out, int number) {
    static const char* const kGoods[] = {"hemp rope", "sailcloth", "lanterns", "oak planks",
                                         "anchors",   "tar",       "biscuit",  "fresh water"};
    char text[100];
    snprintf(text, sizeof(text), "%05d  HS-%04d  %-12s bay %c  %6d in stock  %5d on order\r\n",
             number, 1000 + number, kGoods[number % 8], 'A' + number % 26, number * 7919 % 100000,
             number * 31 % 500);
    out += text;
}

static void TickFastStream(Session& session) {
    while (session.step < kFastLines && session.out.size() < kOutLimit) {
        WriteStockLine(session.out, ++session.step);
    }
    if (session.step < kFastLines) return;
    session.out += "\r\n5,000 lines sent. Press any key to return to the menu.\r\n";
    session.wake = 0;
}

const Screen kSlowStreamPage = {EnterSlowStream, BackToMenu, TickSlowStream};
const Screen kFastStreamPage = {EnterFastStream, BackToMenu, TickFastStream};
