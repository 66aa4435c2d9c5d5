// SPDX-License-Identifier: MIT
// What an entry promises by its flags, by the lack of a flag ("no am"), and by its numbers.
#include "terminal/screen_buffer.h"
#include "tests/hosts/picture.h"
#include "tests/hosts/proof.h"

// Feeds the bytes from a start; the picture before them.
static Picture Before(const Start& start, const std::string& bytes) {
    SetUp(start);
    const Picture picture = TakePicture();
    Feed(bytes);
    return picture;
}

// After column 80 the text goes on in the next line, and the last line scrolls only then.
static std::string Wraps(const TerminfoEntry&) {
    Picture wanted = Before({12, 79, 1, kScreenRows, 0, false, false}, "abc");
    wanted.cells[12][79] = 'a';
    wanted.cells[12][80] = 'b';
    wanted.cells[13][1] = 'c';
    wanted.row = 13;
    wanted.col = 2;
    return Difference(wanted, TakePicture(), true);
}

static std::string DoesNotWrap(const TerminfoEntry& e) {
    return Wraps(e).empty() ? "text goes on in the next line" : "";
}

// After column 80 the cursor is still there: CR LF leads to the next line and not to the one after
// it, and the lower right corner can be written.
static std::string WaitsInLastColumn(const TerminfoEntry&) {
    Picture wanted = Before({12, 80, 1, kScreenRows, 0, false, false}, "a\r\nb");
    wanted.cells[12][80] = 'a';
    wanted.cells[13][1] = 'b';
    wanted.row = 13;
    wanted.col = 2;
    const std::string message = Difference(wanted, TakePicture(), true);
    if (!message.empty()) return message;
    wanted = Before({24, 80, 1, kScreenRows, 0, false, false}, "a");
    wanted.cells[24][80] = 'a';
    return Difference(wanted, TakePicture(), false);
}

static std::string WrapsAtOnce(const TerminfoEntry& e) {
    if (e.flags.count("am") == 0) return "";
    return WaitsInLastColumn(e).empty() ? "after column 80 the cursor waits there" : "";
}

static std::string LeftMarginWraps(const TerminfoEntry& e) {
    SetUp({12, 1, 1, kScreenRows, 0, false, false});
    Feed(Expand(e, "cub1"));
    return session.screen.cursor_row == 11 ? "" : "the cursor stays in column 1";
}

// Moves between the characters of an insertion.
static std::string MovesInInsertMode(const TerminfoEntry& e) {
    if (!Has(e, "smir")) return "";
    const int numbers[kMostNumbers] = {14, 29};
    Picture wanted = Before({12, 20, 1, kScreenRows, 0, false, false},
                            Expand(e, "smir") + Expand(e, "cup", numbers) + "a");
    for (int col = kScreenColumns; col > 30; --col)
        wanted.cells[15][col] = wanted.cells[15][col - 1];
    wanted.cells[15][30] = 'a';
    wanted.row = 15;
    wanted.col = 31;
    return Difference(wanted, TakePicture(), true);
}

// Moves in standout mode change nothing on their way.
static std::string MovesInStandout(const TerminfoEntry& e) {
    const int numbers[kMostNumbers] = {14, 29};
    const std::string bytes = Expand(e, "smso") + "\r\n" + Expand(e, "cup", numbers);
    Picture wanted = Before({12, 20, 1, kScreenRows, 0, false, false}, bytes);
    wanted.row = 15;
    wanted.col = 30;
    return Difference(wanted, TakePicture(), true);
}

static std::string Overstrikes(const TerminfoEntry&) {
    return "a character replaces what was there";
}
static std::string NotShown(const TerminfoEntry&) { return "the terminal shows nothing of it"; }
static std::string NoPaper(const TerminfoEntry&) { return "this is a screen"; }
static std::string NoColours(const TerminfoEntry&) { return "there are no colours"; }
static std::string NoCookies(const TerminfoEntry&) { return "attributes take no cell"; }

static std::string NumberIs(const TerminfoEntry& e, const char* name, int wanted) {
    const auto found = e.numbers.find(name);
    if (found == e.numbers.end() || found->second == wanted) return "";
    return "it is " + std::to_string(wanted);
}
static std::string Columns(const TerminfoEntry& e) { return NumberIs(e, "cols", kScreenColumns); }
static std::string Lines(const TerminfoEntry& e) { return NumberIs(e, "lines", kScreenRows); }
static std::string Tabs(const TerminfoEntry& e) { return NumberIs(e, "it", 8); }

// Flags and numbers that are missing here promise nothing to a program that paints: they describe
// printers, modems, padding, labels and the like.
// clang-format off
static const CheckRow kFlags[] = {
    {"am",     Loss::kScreen, Wraps            },
    {"no am",  Loss::kScreen, DoesNotWrap      },
    {"xenl",   Loss::kScreen, WaitsInLastColumn},
    {"no xenl", Loss::kScreen, WrapsAtOnce     },
    {"bce",    Loss::kLook,   NoColours        },
    {"bw",     Loss::kScreen, LeftMarginWraps  },
    {"hc",     Loss::kScreen, NoPaper          },
    {"hs",     Loss::kLook,   NotShown         },
    {"mir",    Loss::kScreen, MovesInInsertMode},
    {"msgr",   Loss::kScreen, MovesInStandout  },
    {"os",     Loss::kScreen, Overstrikes      },
    {"ul",     Loss::kScreen, Overstrikes      },
    {"cols",   Loss::kScreen, Columns          },
    {"colors", Loss::kLook,   NoColours        },
    {"it",     Loss::kScreen, Tabs             },
    {"lines",  Loss::kScreen, Lines            },
    {"xmc",    Loss::kScreen, NoCookies        },
};
// clang-format on

const CheckRow* FindFlagCheck(const std::string& capability) {
    for (const CheckRow& row : kFlags) {
        if (capability == row.capability) return &row;
    }
    return nullptr;
}
