// SPDX-License-Identifier: MIT
// A second implementation of the hotspot rule, straight from its description. Tests compare the
// program with it.
#ifndef QUILL_TESTS_TERMINAL_HOTSPOT_RULE_H
#define QUILL_TESTS_TERMINAL_HOTSPOT_RULE_H

#include <string>

// What a double tap on column `col` sends before Enter; "" if it sends nothing. line[1] is column
// 1; the line reaches to column 84.
inline std::string HotspotRule(const std::string& line, int col) {
    const auto at = [&](int column) { return line[static_cast<size_t>(column)]; };
    const auto digit = [](char c) { return c >= '0' && c <= '9'; };
    const char c = at(col);
    char b = c;
    int s = col;
    if (digit(c) && col >= 3) b = at(s = col - 1);
    if (!(b == ' ' && col < 75)) return "";
    const char d1 = at(s + 1), d2 = at(s + 2), d3 = at(s + 3);
    const bool ends2 = d2 == '.' || d2 == ':', ends3 = d3 == '.' || d3 == ':';
    int n = -1;
    if (digit(d1)) n = d1 - '0';
    if (!ends2 && digit(d2)) n = n * 10 + (d2 - '0');
    if (n == -1 || (!ends2 && !ends3)) return "";
    return ends2 ? std::string{d1} : std::string{d1, d2};
}

#endif
