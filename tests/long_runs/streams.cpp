// SPDX-License-Identifier: MIT
// The streams.
#include "tests/long_runs/streams.h"

#include <algorithm>

#include "tests/terminal/stream_pieces.h"

std::string WildStream(Random& random, int pieces) {
    std::string stream;
    for (; pieces > 0; --pieces) {
        if (pieces % 10 == 0) stream += "\x1b\\\x1b<";
        if (Below(random, 8) == 0)
            stream += static_cast<char>(Below(random, 255));
        else
            stream += kPieces[Below(random, std::size(kPieces))];
    }
    return stream;
}

// ---------------------------------------------------------------- tame

static std::string Number(Random& random, unsigned most) {
    return std::to_string(1 + Below(random, most));
}

static std::string GoTo(unsigned row, unsigned col) {
    return "\x1b[" + std::to_string(row) + ";" + std::to_string(col) + "H";
}

// It does not scroll: a line that scrolls in has the pen's attributes elsewhere, here it has none.
static std::string Words(Random& random) {
    const unsigned row = 1 + Below(random, 24), col = 1 + Below(random, 80);
    const unsigned room = std::min(81 - col + 80 * (24 - row), 100u);
    std::string text = GoTo(row, col);
    static const char* const pens[] = {"",        "\x1b[1m",   "\x1b[4m",
                                       "\x1b[7m", "\x1b[1;7m", "\x1b[4;5m"};
    text += pens[Below(random, std::size(pens))];
    for (unsigned count = 1 + Below(random, room); count > 0; --count)
        text += static_cast<char>('!' + Below(random, 94));
    return text + "\x1b[0m";
}

// The terminal inserts one line, whatever the count.
static std::string Edit(Random& random) {
    static const char* const finals[] = {"L", "M", "P", "@", "X"};
    const char* final = finals[Below(random, std::size(finals))];
    const std::string where = GoTo(1 + Below(random, 24), 1 + Below(random, 80));
    return where + "\x1b[" + (*final == 'L' ? "" : Number(random, 9)) + final;
}

static std::string Erase(Random& random) {
    const std::string where = GoTo(1 + Below(random, 24), 1 + Below(random, 80));
    const char final = Below(random, 4) ? 'K' : 'J';
    return where + "\x1b[" + std::to_string(Below(random, 3)) + final;
}

static std::string Roll(Random& random) {
    const unsigned top = 1 + Below(random, 20), bottom = top + 1 + Below(random, 24 - top);
    std::string text = "\x1b[" + std::to_string(top) + ";" + std::to_string(bottom) + "r";
    const bool up = Below(random, 2);
    text += GoTo(up ? bottom : top, 1);
    for (unsigned count = Below(random, 6); count > 0; --count) text += up ? "\n" : "\x1bM";
    return text + "\x1b[r";
}

std::string TameStream(Random& random, int pieces) {
    static std::string (*const kMakers[])(Random&) = {Words, Words, Words, Words,
                                                      Edit,  Erase, Roll};
    std::string stream;
    for (; pieces > 0; --pieces) stream += kMakers[Below(random, std::size(kMakers))](random);
    return stream + GoTo(1 + Below(random, 24), 1 + Below(random, 80));
}
