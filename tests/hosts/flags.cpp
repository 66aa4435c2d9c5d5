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

// ---------------------------------------------------------------- flags that no entry should have

// What is in the cells of a row that was blank before, from its first column on.
static std::string RowAfter(const Start& start, const std::string& bytes) {
    SetUp(start);
    Feed("\033[2K" + bytes);
    std::string text;
    for (int col = 1; col <= kScreenColumns; ++col)
        text += static_cast<char>(GetCell(start.row, col) & 0xFF);
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

static const Start kLineStart = {12, 1, 1, kScreenRows, 0, false, false};

// A line that left the screen at one end and would come back by the string that scrolls it in.
static std::string ComesBack(int row, const char* out, const char* back) {
    SetUp({row, 1, 1, kScreenRows, 0, false, false});
    Feed(std::string(out) + back);
    const int other = row == 1 ? kScreenRows : 1;
    for (int col = 1; col <= kScreenColumns; ++col) {
        if (GetCell(row, col) != kBlank || GetCell(other, col) == kBlank) return "";
    }
    return "a line that left the screen does not come back";
}
static std::string RetainedAbove(const TerminfoEntry&) {
    return ComesBack(1, "\033[24;1H\033D\033[1;1H", "\033M");
}
static std::string RetainedBelow(const TerminfoEntry&) {
    return ComesBack(kScreenRows, "\033[1;1H\033M\033[24;1H", "\033D");
}
static std::string ScrollsWithoutLoss(const TerminfoEntry&) {
    SetUp({10, 1, 5, 10, 0, false, false});
    const Picture before = TakePicture();
    Feed("\033D\033[5;1H\033M");
    return Difference(before, TakePicture(), false).empty() ? "" : "a scrolled region loses lines";
}

static std::string KeepsStandout(const TerminfoEntry&) {
    SetUp(kLineStart);
    Feed("\033[7mabc\033[m\rabc");
    return GetCell(12, 2) == 'b' ? "a plain character ends the standout below it" : "";
}
static std::string NoTilde(const TerminfoEntry&) {
    return RowAfter(kLineStart, "a~b") == "a~b" ? "a tilde is shown" : "";
}
static std::string NullsApart(const TerminfoEntry&) {
    const bool all = RowAfter(kLineStart, "abc\033[12;40Hxyz\r\033[4h-") ==
                     "-abc" + std::string(36, ' ') + "xyz";
    return all ? "an insertion moves the whole rest of the row" : "";
}
static std::string NoPadding(const TerminfoEntry&) {
    return RowAfter(kLineStart, {'a', 0, 0, 'b'}) == "ab" ? "NUL does for padding" : "";
}
static std::string TabsErase(const TerminfoEntry&) {
    return RowAfter(kLineStart, "abcdefghij\r\tX") == "abcdefghXj" ? "a tab erases nothing" : "";
}
static std::string BeehiveKeys(const TerminfoEntry&) {
    const bool escape = SentByDefault(*FindKey("kf1")) == "\033";
    return escape ? "" : "F1 sends more than ESC";
}
static std::string BrokenReturn(const TerminfoEntry&) {
    return RowAfter(kLineStart, "abc\rX") == "Xbc" ? "a carriage return goes to column 1" : "";
}
static std::string ReturnErases(const TerminfoEntry&) {
    return RowAfter(kLineStart, "abc\r") == "abc" ? "a carriage return erases nothing" : "";
}
static std::string CannotScroll(const TerminfoEntry&) {
    SetUp({kScreenRows, 1, 1, kScreenRows, 0, false, false});
    const DWORD second = GetCell(2, 1);
    Feed("\n");
    return GetCell(1, 1) == second ? "the screen scrolls" : "";
}
static std::string BackspaceMoves(const TerminfoEntry&) {
    return RowAfter(kLineStart, "abc\b\bX") == "aXc" ? "" : "BS does not move the cursor";
}
static std::string LineFeedMoves(const TerminfoEntry&) {
    SetUp(kLineStart);
    Feed("\n");
    return session.screen.cursor_row == 13 ? "" : "LF does not move the cursor";
}
static std::string TabMoves(const TerminfoEntry&) {
    SetUp(kLineStart);
    Feed("\t");
    return session.screen.cursor_col == 9 ? "" : "HT does not move the cursor";
}

static std::string Overstrikes(const TerminfoEntry&) {
    return RowAfter(kLineStart, "abc\r_\b_") == "_bc" ? "a character replaces what was there" : "";
}
static std::string NotShown(const TerminfoEntry&) { return "the terminal shows nothing of it"; }
static std::string NoPaper(const TerminfoEntry&) { return "this is a screen"; }
static std::string NoColours(const TerminfoEntry&) { return "there are no colours"; }
static std::string NoCookies(const TerminfoEntry&) { return "attributes take no cell"; }
static std::string NoMetaKey(const TerminfoEntry&) { return "no key sets the eighth bit"; }
static std::string NoStatusLine(const TerminfoEntry&) { return "there is no status line"; }
static std::string NoFlowControl(const TerminfoEntry&) { return "it sends neither XOFF nor XON"; }
static std::string NoWaiting(const TerminfoEntry&) { return "no string takes time"; }
static std::string NoPrinter(const TerminfoEntry&) { return "there is no printer"; }
static std::string NoOtherScreen(const TerminfoEntry&) { return "there is no other screen"; }
static std::string OneTerminal(const TerminfoEntry&) { return "the entry is of one terminal"; }
static std::string SeenWell(const TerminfoEntry&) { return "the cursor is easy to see"; }
static std::string NoMemory(const TerminfoEntry&) { return "there are no lines but those shown"; }
static std::string NoLabels(const TerminfoEntry&) { return "there are no labels of keys"; }
static std::string OneScreen(const TerminfoEntry&) { return "there is one screen"; }
static std::string NoMouse(const TerminfoEntry&) { return "there is no mouse"; }
static std::string NoPicture(const TerminfoEntry&) { return "there are no bit images"; }

static std::string NumberIs(const TerminfoEntry& e, const char* name, int wanted) {
    const auto found = e.numbers.find(name);
    if (found == e.numbers.end() || found->second == wanted) return "";
    return "it is " + std::to_string(wanted);
}
static std::string Columns(const TerminfoEntry& e) { return NumberIs(e, "cols", kScreenColumns); }
static std::string Lines(const TerminfoEntry& e) { return NumberIs(e, "lines", kScreenRows); }
static std::string Tabs(const TerminfoEntry& e) { return NumberIs(e, "it", 8); }
// All of them at once: sgr is proven with each combination.
static std::string Combined(const TerminfoEntry& e) { return NumberIs(e, "ma", 4); }

// Every flag and number that curses has a name for. OT...: names that only a termcap had.
// clang-format off
static const CheckRow kFlags[] = {
    {"am",      Loss::kScreen, Wraps             },
    {"no am",   Loss::kScreen, DoesNotWrap       },
    {"xenl",    Loss::kScreen, WaitsInLastColumn },
    {"no xenl", Loss::kScreen, WrapsAtOnce       },
    {"bce",     Loss::kLook,   NoColours         },
    {"bw",      Loss::kScreen, LeftMarginWraps   },
    {"ccc",     Loss::kLook,   NoColours         },
    {"chts",    Loss::kLook,   SeenWell          },
    {"cpix",    Loss::kLook,   NoPaper           },
    {"crxm",    Loss::kLook,   NoPaper           },
    {"da",      Loss::kLook,   RetainedAbove     },
    {"daisy",   Loss::kLook,   NoPaper           },
    {"db",      Loss::kLook,   RetainedBelow     },
    {"eo",      Loss::kLook,   Overstrikes       },
    {"eslok",   Loss::kLook,   NoStatusLine      },
    {"gn",      Loss::kLook,   OneTerminal       },
    {"hc",      Loss::kScreen, NoPaper           },
    {"hls",     Loss::kLook,   NoColours         },
    {"hs",      Loss::kLook,   NotShown          },
    {"hz",      Loss::kLook,   NoTilde           },
    {"in",      Loss::kLook,   NullsApart        },
    {"km",      Loss::kLook,   NoMetaKey         },
    {"lpix",    Loss::kLook,   NoPaper           },
    {"mc5i",    Loss::kLook,   NoPrinter         },
    {"mir",     Loss::kScreen, MovesInInsertMode },
    {"msgr",    Loss::kScreen, MovesInStandout   },
    {"ndscr",   Loss::kLook,   ScrollsWithoutLoss},
    {"npc",     Loss::kLook,   NoPadding         },
    {"nrrmc",   Loss::kLook,   NoOtherScreen     },
    {"nxon",    Loss::kLook,   NoWaiting         },
    {"os",      Loss::kScreen, Overstrikes       },
    {"sam",     Loss::kLook,   NoPaper           },
    {"ul",      Loss::kScreen, Overstrikes       },
    {"xhp",     Loss::kLook,   KeepsStandout     },
    {"xhpa",    Loss::kLook,   NoPaper           },
    {"xon",     Loss::kLook,   NoFlowControl     },
    {"xsb",     Loss::kLook,   BeehiveKeys       },
    {"xt",      Loss::kScreen, TabsErase         },
    {"xvpa",    Loss::kLook,   NoPaper           },
    {"OTbs",    Loss::kScreen, BackspaceMoves    },
    {"OTMT",    Loss::kLook,   NoMetaKey         },
    {"OTnc",    Loss::kScreen, BrokenReturn      },
    {"OTNL",    Loss::kScreen, LineFeedMoves     },
    {"OTns",    Loss::kScreen, CannotScroll      },
    {"OTpt",    Loss::kScreen, TabMoves          },
    {"OTxr",    Loss::kScreen, ReturnErases      },

    {"bitwin",  Loss::kLook,   NoPicture         },
    {"bitype",  Loss::kLook,   NoPicture         },
    {"btns",    Loss::kLook,   NoMouse           },
    {"bufsz",   Loss::kLook,   NoPaper           },
    {"colors",  Loss::kLook,   NoColours         },
    {"cols",    Loss::kScreen, Columns           },
    {"cps",     Loss::kLook,   NoPaper           },
    {"it",      Loss::kScreen, Tabs              },
    {"lh",      Loss::kLook,   NoLabels          },
    {"lines",   Loss::kScreen, Lines             },
    {"lm",      Loss::kLook,   NoMemory          },
    {"lw",      Loss::kLook,   NoLabels          },
    {"ma",      Loss::kLook,   Combined          },
    {"maddr",   Loss::kLook,   NoPaper           },
    {"mcs",     Loss::kLook,   NoPaper           },
    {"mjump",   Loss::kLook,   NoPaper           },
    {"mls",     Loss::kLook,   NoPaper           },
    {"ncv",     Loss::kLook,   NoColours         },
    {"nlab",    Loss::kLook,   NoLabels          },
    {"npins",   Loss::kLook,   NoPaper           },
    {"orc",     Loss::kLook,   NoPaper           },
    {"orhi",    Loss::kLook,   NoPaper           },
    {"orl",     Loss::kLook,   NoPaper           },
    {"orvi",    Loss::kLook,   NoPaper           },
    {"pairs",   Loss::kLook,   NoColours         },
    {"pb",      Loss::kLook,   NoWaiting         },
    {"spinh",   Loss::kLook,   NoPaper           },
    {"spinv",   Loss::kLook,   NoPaper           },
    {"vt",      Loss::kLook,   OneScreen         },
    {"widcs",   Loss::kLook,   NoPaper           },
    {"wnum",    Loss::kLook,   OneScreen         },
    {"wsl",     Loss::kLook,   NoStatusLine      },
    {"xmc",     Loss::kScreen, NoCookies         },
    {"OTdB",    Loss::kLook,   NoWaiting         },
    {"OTdC",    Loss::kLook,   NoWaiting         },
    {"OTdN",    Loss::kLook,   NoWaiting         },
    {"OTdT",    Loss::kLook,   NoWaiting         },
    {"OTkn",    Loss::kLook,   NoLabels          },
    {"OTug",    Loss::kScreen, NoCookies         },
};
// clang-format on

const CheckRow* FindFlagCheck(const std::string& capability) {
    for (const CheckRow& row : kFlags) {
        if (capability == row.capability) return &row;
    }
    return nullptr;
}
