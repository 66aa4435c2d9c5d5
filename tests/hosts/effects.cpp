// SPDX-License-Identifier: MIT
// Strings that change cells or move the cursor, each with its effect in the manual's words on a
// picture of the screen, and with the starts from which the manual defines it.
#include <algorithm>
#include <cstring>
#include <map>

#include "tests/hosts/picture.h"
#include "tests/hosts/proof.h"

// The numbers as the program gives them: counts from 1, rows and columns from 0.
typedef bool (*Defined)(const Start& start, const int* n);
typedef void (*Effect)(Picture& picture, const int* n);

enum class Numbers { kNone, kCount, kRow, kColumn, kPosition, kRegion, kCharacter };

struct EffectRow {
    const char* capability;
    Numbers numbers;
    Defined defined;
    Effect effect;
    const char* then;  // typed after it: what a pending wrap or an insert mode would show
    bool cursor_known;
};

// ---------------------------------------------------------------- from where it is defined

static bool Anywhere(const Start&, const int*) { return true; }
static bool KnownPlace(const Start& s, const int*) { return !s.after_last_column; }
static bool LowerLeft(const Start& s, const int* n) {
    return s.row == s.bottom && s.col == 1 && n[0] <= s.bottom - s.top;
}
static bool UpperLeft(const Start& s, const int* n) {
    return s.row == s.top && s.col == 1 && n[0] <= s.bottom - s.top;
}

static int RoomBelow(const Start& s) {
    return (s.row <= s.bottom ? s.bottom : kScreenRows) - s.row;
}
static int RoomAbove(const Start& s) { return s.row - (s.row >= s.top ? s.top : 1); }
static int LastColumn(const Start& s) { return s.double_width ? 40 : kScreenColumns; }

static bool RowsBelow(const Start& s, const int* n) {
    return KnownPlace(s, n) && std::max(n[0], 1) <= RoomBelow(s);
}
static bool RowsAbove(const Start& s, const int* n) {
    return KnownPlace(s, n) && std::max(n[0], 1) <= RoomAbove(s);
}
static bool ColumnsRight(const Start& s, const int* n) {
    return KnownPlace(s, n) && std::max(n[0], 1) <= LastColumn(s) - s.col;
}
static bool ColumnsLeft(const Start& s, const int* n) {
    return KnownPlace(s, n) && std::max(n[0], 1) <= s.col - 1;
}
static bool CellsOnRow(const Start& s, const int* n) {
    return KnownPlace(s, n) && n[0] <= LastColumn(s) - s.col + 1;
}
static bool LineStart(const Start& s, const int*) {
    return s.col == 1 && s.row >= s.top && s.row <= s.bottom;
}
static bool LinesInRegion(const Start& s, const int* n) {
    return LineStart(s, n) && n[0] <= s.bottom - s.row + 1;
}
static bool FullRegion(const Start& s, const int* n) {
    return KnownPlace(s, n) && s.top == 1 && s.bottom == kScreenRows;
}
static bool BeforeLastStop(const Start& s, const int* n) {
    return KnownPlace(s, n) && s.col <= 72 && !s.double_width;
}
static bool AfterFirstStop(const Start& s, const int* n) { return KnownPlace(s, n) && s.col > 8; }

// ---------------------------------------------------------------- effects

static void Nothing(Picture&, const int*) {}
static void Return(Picture& p, const int*) { p.col = 1; }
static void Up(Picture& p, const int* n) { p.row -= std::max(n[0], 1); }
static void Down(Picture& p, const int* n) { p.row += std::max(n[0], 1); }
static void Left(Picture& p, const int* n) { p.col -= std::max(n[0], 1); }
static void Right(Picture& p, const int* n) { p.col += std::max(n[0], 1); }

static void To(Picture& p, const int* n) {
    p.row = n[0] + 1;
    p.col = std::min(n[1] + 1, p.width[p.row]);
}
static void Home(Picture& p, const int*) { p.row = p.col = 1; }
static void LowerLeftCorner(Picture& p, const int*) {
    p.row = kScreenRows;
    p.col = 1;
}
static void ToColumn(Picture& p, const int* n) { p.col = n[0] + 1; }
static void ToRow(Picture& p, const int* n) {
    p.row = n[0] + 1;
    p.col = std::min(p.col, p.width[p.row]);
}
static void NextStop(Picture& p, const int*) { p.col = (p.col + 7) / 8 * 8 + 1; }
static void StopBefore(Picture& p, const int*) { p.col = (p.col - 2) / 8 * 8 + 1; }

static void Blank(Picture& p, int row, int first, int last) {
    for (int col = first; col <= last; ++col) p.cells[row][col] = kBlank;
}
static void BlankRows(Picture& p, int first, int last) {
    for (int row = first; row <= last; ++row) {
        Blank(p, row, 1, kScreenColumns);
        p.width[row] = kScreenColumns;
    }
}
static void EraseToEnd(Picture& p, const int*) { Blank(p, p.row, p.col, kScreenColumns); }
static void EraseFromStart(Picture& p, const int*) { Blank(p, p.row, 1, p.col); }
static void EraseBelow(Picture& p, const int* n) {
    EraseToEnd(p, n);
    BlankRows(p, p.row + 1, kScreenRows);
}
static void Clear(Picture& p, const int* n) {
    BlankRows(p, 1, kScreenRows);
    Home(p, n);
}
static void EraseCells(Picture& p, const int* n) { Blank(p, p.row, p.col, p.col + n[0] - 1); }

static void InsertCells(Picture& p, int count, DWORD blank) {
    DWORD* cells = p.cells[p.row];
    for (int i = 0; i < count; ++i) {
        memmove(cells + p.col + 1, cells + p.col,
                static_cast<size_t>(kScreenColumns - p.col) * sizeof *cells);
        cells[p.col] = blank;
    }
}
static void InsertBlanks(Picture& p, const int* n) { InsertCells(p, std::max(n[0], 1), kAnyBlank); }
static void DeleteCells(Picture& p, const int* n) {
    DWORD* cells = p.cells[p.row];
    for (int i = 0; i < std::max(n[0], 1); ++i) {
        memmove(cells + p.col, cells + p.col + 1,
                static_cast<size_t>(kScreenColumns - p.col) * sizeof *cells);
        cells[kScreenColumns] = kBlank;
    }
}

// Rows first..last go up by `count`, or down if it is negative.
static void Scroll(Picture& p, int first, int last, int count) {
    const Picture before = p;
    for (int row = first; row <= last; ++row) {
        const int from = row + count;
        if (from < first || from > last) {
            BlankRows(p, row, row);
        } else {
            memcpy(p.cells[row], before.cells[from], sizeof p.cells[row]);
            p.width[row] = before.width[from];
        }
    }
}
static void ScrollUp(Picture& p, const int* n) { Scroll(p, p.top, p.bottom, std::max(n[0], 1)); }
static void ScrollDown(Picture& p, const int* n) { Scroll(p, p.top, p.bottom, -std::max(n[0], 1)); }
static void InsertRows(Picture& p, const int* n) { Scroll(p, p.row, p.bottom, -std::max(n[0], 1)); }
static void DeleteRows(Picture& p, const int* n) { Scroll(p, p.row, p.bottom, std::max(n[0], 1)); }
static void NextLine(Picture& p, const int* n) {
    p.col = 1;
    if (p.row == p.bottom) {
        ScrollUp(p, n);
    } else if (p.row < kScreenRows) {
        ++p.row;
    }
}
static bool NotBelowRegion(const Start& s, const int*) {
    return s.row <= s.bottom || s.row < kScreenRows;
}

static void SetRegion(Picture& p, const int* n) {
    p.top = n[0] + 1;
    p.bottom = n[1] + 1;
}
static void Repeat(Picture& p, const int* n) {
    for (int i = 0; i < n[1]; ++i) {
        p.cells[p.row][p.col + i] = static_cast<DWORD>(n[0]) | session.screen.current_attr;
    }
    p.col += n[1];
}
static bool RoomToRepeat(const Start& s, const int* n) {
    return KnownPlace(s, n) && n[1] <= LastColumn(s) - s.col;
}

// clang-format off
static const EffectRow kEffects[] = {
    // name,  numbers,             defined,        effect,          then, cursor_known
    {"bel",   Numbers::kNone,      KnownPlace,     Nothing,         "x",  true },
    {"cbt",   Numbers::kNone,      AfterFirstStop, StopBefore,      "x",  true },
    {"clear", Numbers::kNone,      Anywhere,       Clear,           "x",  true },
    {"cr",    Numbers::kNone,      Anywhere,       Return,          "x",  true },
    {"csr",   Numbers::kRegion,    Anywhere,       SetRegion,       "",   false},
    {"cub",   Numbers::kCount,     ColumnsLeft,    Left,            "x",  true },
    {"cub1",  Numbers::kNone,      ColumnsLeft,    Left,            "x",  true },
    {"cud",   Numbers::kCount,     RowsBelow,      Down,            "x",  true },
    {"cud1",  Numbers::kNone,      RowsBelow,      Down,            "x",  true },
    {"cuf",   Numbers::kCount,     ColumnsRight,   Right,           "x",  true },
    {"cuf1",  Numbers::kNone,      ColumnsRight,   Right,           "x",  true },
    {"cup",   Numbers::kPosition,  Anywhere,       To,              "x",  true },
    {"cuu",   Numbers::kCount,     RowsAbove,      Up,              "x",  true },
    {"cuu1",  Numbers::kNone,      RowsAbove,      Up,              "x",  true },
    {"dch",   Numbers::kCount,     CellsOnRow,     DeleteCells,     "x",  true },
    {"dch1",  Numbers::kNone,      KnownPlace,     DeleteCells,     "x",  true },
    {"dl",    Numbers::kCount,     LinesInRegion,  DeleteRows,      "x",  true },
    {"dl1",   Numbers::kNone,      LineStart,      DeleteRows,      "x",  true },
    {"ech",   Numbers::kCount,     CellsOnRow,     EraseCells,      "x",  true },
    {"ed",    Numbers::kNone,      KnownPlace,     EraseBelow,      "x",  true },
    {"el",    Numbers::kNone,      KnownPlace,     EraseToEnd,      "x",  true },
    {"el1",   Numbers::kNone,      KnownPlace,     EraseFromStart,  "x",  true },
    {"home",  Numbers::kNone,      Anywhere,       Home,            "x",  true },
    {"hpa",   Numbers::kColumn,    KnownPlace,     ToColumn,        "x",  true },
    {"ht",    Numbers::kNone,      BeforeLastStop, NextStop,        "x",  true },
    {"ich",   Numbers::kCount,     CellsOnRow,     InsertBlanks,    "x",  true },
    {"ich1",  Numbers::kNone,      KnownPlace,     InsertBlanks,    "x",  true },
    {"il",    Numbers::kCount,     LinesInRegion,  InsertRows,      "x",  true },
    {"il1",   Numbers::kNone,      LineStart,      InsertRows,      "x",  true },
    {"ind",   Numbers::kNone,      LowerLeft,      ScrollUp,        "x",  true },
    {"indn",  Numbers::kCount,     LowerLeft,      ScrollUp,        "x",  true },
    {"ll",    Numbers::kNone,      Anywhere,       LowerLeftCorner, "x",  true },
    {"mrcup", Numbers::kPosition,  Anywhere,       To,              "x",  true },
    {"nel",   Numbers::kNone,      NotBelowRegion, NextLine,        "x",  true },
    {"rep",   Numbers::kCharacter, RoomToRepeat,   Repeat,          "x",  true },
    {"ri",    Numbers::kNone,      UpperLeft,      ScrollDown,      "x",  true },
    {"rin",   Numbers::kCount,     UpperLeft,      ScrollDown,      "x",  true },
    {"vpa",   Numbers::kRow,       FullRegion,     ToRow,           "x",  true },
};
// clang-format on

// ---------------------------------------------------------------- the starts

typedef std::vector<std::vector<int>> NumberLists;

static NumberLists ListsOf(Numbers numbers) {
    switch (numbers) {
        case Numbers::kNone:
            return {{0}};
        case Numbers::kCount:
            return {{1}, {2}, {3}, {7}, {15}, {23}, {41}, {79}, {80}};
        case Numbers::kRow:
            return {{0}, {1}, {11}, {22}, {23}};
        case Numbers::kColumn:
            return {{0}, {1}, {38}, {78}, {79}};
        case Numbers::kRegion:
            return {{0, 23}, {4, 19}, {0, 1}, {22, 23}, {0, 22}, {1, 23}};
        case Numbers::kCharacter:
            return {{'q', 1}, {'q', 2}, {'q', 30}};
        case Numbers::kPosition:
            return {{0, 0}, {0, 79}, {23, 0}, {23, 79}, {11, 39}, {4, 8}, {19, 78}};
    }
    return {};
}

// ---------------------------------------------------------------- one start

static std::string Type(Picture& picture, const char* text) {
    for (const char* c = text; *c; ++c) {
        picture.cells[picture.row][picture.col] =
            static_cast<BYTE>(*c) | static_cast<DWORD>(session.screen.current_attr);
        picture.col = std::min(picture.col + 1, picture.width[picture.row]);
    }
    return text;
}

static std::string RegionDifference(const Picture& wanted, const Picture& found) {
    if (wanted.top == found.top && wanted.bottom == found.bottom) return "";
    return "the region is " + std::to_string(found.top) + " to " + std::to_string(found.bottom) +
           ", not " + std::to_string(wanted.top) + " to " + std::to_string(wanted.bottom);
}

static std::string RunStart(const EffectRow& row, const Start& start, const int* numbers,
                            const std::string& bytes) {
    SetUp(start);
    Picture wanted = TakePicture();
    row.effect(wanted, numbers);
    Feed(bytes);
    std::string difference = Difference(wanted, TakePicture(), row.cursor_known);
    if (difference.empty()) difference = RegionDifference(wanted, TakePicture());
    if (difference.empty() && *row.then) {
        Feed(Type(wanted, row.then));
        difference = Difference(wanted, TakePicture(), true);
        if (!difference.empty()) difference = "then a character: " + difference;
    }
    return difference;
}

static std::string RunEffect(const TerminfoEntry& entry, const EffectRow& row) {
    std::string message;
    for (const std::vector<int>& list : ListsOf(row.numbers)) {
        int numbers[kMostNumbers] = {};
        std::copy(list.begin(), list.end(), numbers);
        const std::string bytes = row.numbers == Numbers::kNone
                                      ? Expand(entry, row.capability)
                                      : Expand(entry, row.capability, numbers);
        ForEveryStart([&](const Start& start) {
            if (!message.empty() || !row.defined(start, numbers)) return;
            message = RunStart(row, start, numbers, bytes);
            if (!message.empty())
                message = AsEscapeText(bytes) + " " + Describe(start) + ": " + message;
        });
        if (!message.empty()) break;
    }
    return message;
}

// ---------------------------------------------------------------- at the edges

static const char* const kSteps[] = {"cub", "cub1", "cud", "cud1", "cuf", "cuf1", "cuu", "cuu1"};

static std::string LeavesAfter(const std::string& bytes, const Start& start) {
    SetUp(start);
    const Picture before = TakePicture();
    Feed(bytes);
    const Picture after = TakePicture();
    std::string message = Difference(before, after, false);
    if (after.row < 1 || after.row > kScreenRows || after.col < 1 || after.col > LastColumn(start))
        message = "the cursor leaves the screen";
    return message.empty() ? "" : AsEscapeText(bytes) + " " + Describe(start) + ": " + message;
}

static std::string StepLeaves(const TerminfoEntry& entry, const std::string& capability) {
    std::string message;
    const Numbers numbers = capability.size() == 3 ? Numbers::kCount : Numbers::kNone;
    for (const std::vector<int>& list : ListsOf(numbers)) {
        const int count[kMostNumbers] = {list[0]};
        const std::string bytes = numbers == Numbers::kNone ? Expand(entry, capability)
                                                            : Expand(entry, capability, count);
        ForEveryStart([&](const Start& start) {
            if (message.empty()) message = LeavesAfter(bytes, start);
        });
    }
    return message;
}

// Many entries share their strings, and a message depends on nothing else.
typedef std::map<std::pair<std::string, std::string>, std::string> KnownMessages;

std::string LeavesTheScreen(const TerminfoEntry& entry, const std::string& capability) {
    const bool step = std::any_of(std::begin(kSteps), std::end(kSteps),
                                  [&](const char* name) { return capability == name; });
    if (!step) return "";
    static KnownMessages known;
    const auto key = std::pair(capability, entry.strings.at(capability));
    if (known.count(key) == 0) known[key] = StepLeaves(entry, capability);
    return known[key];
}

bool CheckEffect(const TerminfoEntry& entry, const std::string& capability, std::string* message) {
    for (const EffectRow& row : kEffects) {
        if (capability != row.capability) continue;
        static KnownMessages known;
        const auto key = std::pair(capability, entry.strings.at(capability));
        if (known.count(key) == 0) known[key] = RunEffect(entry, row);
        *message = known[key];
        return true;
    }
    return false;
}

static std::string WidthAfter(const EffectRow& row, const Start& start, const int* numbers,
                              const std::string& bytes) {
    SetUp(start);
    Picture wanted = TakePicture();
    row.effect(wanted, numbers);
    Feed(bytes);
    const std::string difference = WidthDifference(wanted, TakePicture());
    return difference.empty() ? ""
                              : AsEscapeText(bytes) + " " + Describe(start) + ": " + difference;
}

static std::string WidthsAfter(const TerminfoEntry& entry, const EffectRow& row) {
    std::string message;
    for (const std::vector<int>& list : ListsOf(row.numbers)) {
        int numbers[kMostNumbers] = {};
        std::copy(list.begin(), list.end(), numbers);
        const std::string bytes = row.numbers == Numbers::kNone
                                      ? Expand(entry, row.capability)
                                      : Expand(entry, row.capability, numbers);
        ForEveryStart([&](const Start& start) {
            if (start.pen || !message.empty() || !row.defined(start, numbers)) return;
            message = WidthAfter(row, start, numbers, bytes);
        });
    }
    return message;
}

std::string LeavesAnotherWidth(const TerminfoEntry& entry, const std::string& capability) {
    for (const EffectRow& row : kEffects) {
        if (capability != row.capability) continue;
        static KnownMessages known;
        const auto key = std::pair(capability, entry.strings.at(capability));
        if (known.count(key) == 0) known[key] = WidthsAfter(entry, row);
        return known[key];
    }
    return "";
}
