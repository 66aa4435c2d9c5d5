// SPDX-License-Identifier: MIT
// Generates the byte streams of the engine benchmark.
#include "bench/workloads.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

static const size_t kSize = 256 * 1024;
static const int kRows = 24;
static const int kColumns = 80;

static unsigned random_state;

static int Random(int below) {
    random_state = random_state * 1103515245u + 12345u;
    return static_cast<int>((random_state >> 16) % static_cast<unsigned>(below));
}

static std::string Word() {
    std::string word;
    for (int n = 2 + Random(8); n > 0; --n) word += static_cast<char>('a' + Random(26));
    return word;
}

static std::string Line(int columns) {
    std::string line;
    while (static_cast<int>(line.size()) < columns) line += Word() + ' ';
    line.resize(static_cast<size_t>(columns));
    return line;
}

static std::string Position(int row, int col) {
    return "\x1b[" + std::to_string(row) + ';' + std::to_string(col) + 'H';
}

// Whole screens of text, each written from the top; nothing scrolls.
static void PlainText(std::string* text) {
    *text += "\x1b[H";
    for (int row = 1; row <= kRows; ++row) {
        *text += Line(kColumns - 1);
        if (row < kRows) *text += "\r\n";
    }
}

static void ScrollingText(std::string* text) { *text += Line(20 + Random(59)) + "\r\n"; }

static void RegionScroll(std::string* text) {
    if (text->empty()) *text += "\x1b[3;20r\x1b[20;1H";
    *text += Line(20 + Random(59)) + "\r\n";
}

static void CursorMotion(std::string* text) {
    static const char kDirections[] = {'A', 'B', 'C', 'D'};
    *text +=
        Position(1 + Random(kRows), 1 + Random(kColumns)) + static_cast<char>('a' + Random(26));
    *text += "\x1b[" + std::to_string(1 + Random(9)) + kDirections[Random(4)];
    *text += "*\b";
}

static void Attributes(std::string* text) {
    static const char* const kRenditions[] = {"1", "4", "5", "7", "1;4", "0;7", "22;24", "27"};
    *text += std::string("\x1b[") + kRenditions[Random(8)] + 'm' + Word() + "\x1b[m ";
    if (Random(10) == 0) *text += "\r\n";
}

static void LineDrawing(std::string* text) {
    if (text->empty()) *text += "\x1b)0";
    const int top = 1 + Random(12), left = 1 + Random(40);
    const int height = 3 + Random(8), width = 4 + Random(30);
    const std::string rule(static_cast<size_t>(width - 2), 'q');
    *text += '\x0e' + Position(top, left) + 'l' + rule + 'k';
    for (int row = 1; row < height - 1; ++row) {
        *text += Position(top + row, left) + 'x' + Position(top + row, left + width - 1) + 'x';
    }
    *text += Position(top + height - 1, left) + 'm' + rule + "j\x0f";
}

static std::string Generate(void (*add)(std::string* text)) {
    random_state = 1;
    std::string text;
    while (text.size() < kSize) add(&text);
    return text;
}

static std::string Recording(const char* path) {
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (text.empty()) {
        fprintf(stderr, "cannot read %s\n", path);
        exit(1);
    }
    return text;
}

std::vector<Workload> MakeWorkloads() {
    return {
        {"plain text", Generate(PlainText)},
        {"scrolling text", Generate(ScrollingText)},
        {"region scroll", Generate(RegionScroll)},
        {"cursor motion", Generate(CursorMotion)},
        {"attributes", Generate(Attributes)},
        {"line drawing", Generate(LineDrawing)},
        {"recorded session", Recording(QUILL_BENCH_DATA "/full_screen_session.bin")},
    };
}
