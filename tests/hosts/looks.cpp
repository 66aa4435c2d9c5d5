// SPDX-License-Identifier: MIT
// Strings that change how later characters look or act: attributes, character sets, modes, tab
// stops, the saved cursor, and the strings that set a terminal up and reset it.
#include <cstring>

#include "terminal/screen_buffer.h"
#include "tests/hosts/glyphs.h"
#include "tests/hosts/picture.h"
#include "tests/hosts/proof.h"
#include "tests/terminal/beep_double.h"

static const Start kMiddle = {12, 20, 1, kScreenRows, 0, false, false};

static Start MiddleWith(WORD pen) {
    Start start = kMiddle;
    start.pen = pen;
    return start;
}

// What a character typed in the middle of the screen gets after these bytes.
static DWORD TypedAfter(const std::string& bytes, WORD pen, char code = 'x') {
    SetUp(MiddleWith(pen));
    Feed(bytes + code);
    return GetCell(kMiddle.row, kMiddle.col);
}

// Bytes that print nothing and leave the cursor, whatever else they do.
static std::string PrintsNothing(const std::string& bytes) {
    SetUp(kMiddle);
    const Picture before = TakePicture();
    Feed(bytes);
    if (session.parser.parser_state != 0) return "a sequence is still open";
    return Difference(before, TakePicture(), true);
}

// ---------------------------------------------------------------- attributes

static const WORD kAllAttributes = kCellBold | kCellUnderline | kCellBlink | kCellReverse;

static std::string Turns(const std::string& bytes, WORD before, DWORD after) {
    const std::string printed = PrintsNothing(bytes);
    if (!printed.empty()) return printed;
    const DWORD cell = TypedAfter(bytes, before);
    if (cell == ('x' | after)) return "";
    char text[80];
    snprintf(text, sizeof text, "a character gets attributes %04x, not %04x",
             static_cast<unsigned>(cell & 0xFF00), static_cast<unsigned>(after));
    return text;
}

static std::string TurnsOn(const TerminfoEntry& e, const char* name, DWORD attribute) {
    return Turns(Expand(e, name), 0, attribute);
}

static std::string Bold(const TerminfoEntry& e) { return TurnsOn(e, "bold", kCellBold); }
static std::string Blink(const TerminfoEntry& e) { return TurnsOn(e, "blink", kCellBlink); }
static std::string Reverse(const TerminfoEntry& e) { return TurnsOn(e, "rev", kCellReverse); }
static std::string Underline(const TerminfoEntry& e) { return TurnsOn(e, "smul", kCellUnderline); }

static std::string Standout(const TerminfoEntry& e) {
    const std::string bytes = Expand(e, "smso");
    const std::string printed = PrintsNothing(bytes);
    if (!printed.empty()) return printed;
    const DWORD cell = TypedAfter(bytes, 0);
    const bool shown = (cell & 0xFF) == 'x' && (cell & kAllAttributes) != 0;
    return shown ? "" : "a character stands out by nothing";
}

static std::string EndsAfter(const TerminfoEntry& e, const char* on, const char* off) {
    const std::string bytes = Expand(e, on) + Expand(e, off);
    return Turns(bytes, 0, 0);
}
static std::string EndStandout(const TerminfoEntry& e) { return EndsAfter(e, "smso", "rmso"); }
static std::string EndUnderline(const TerminfoEntry& e) { return EndsAfter(e, "smul", "rmul"); }

// Line drawing is an attribute, too.
static std::string EndAttributes(const TerminfoEntry& e) {
    const std::string drawing = Expand(e, "enacs") + Expand(e, "smacs");
    const std::string message = Turns(Expand(e, "sgr0"), kAllAttributes, 0);
    return message.empty() ? Turns(drawing + Expand(e, "sgr0"), kAllAttributes, 0) : message;
}

// sgr's nine parameters; those that the entry has no string of its own for promise nothing.
struct SgrParameter {
    const char* capability;
    DWORD attribute;
};

// clang-format off
static const SgrParameter kSgr[kMostNumbers] = {
    {"smso",  0             },  // standout may be any attribute
    {"smul",  kCellUnderline},
    {"rev",   kCellReverse  },
    {"blink", kCellBlink    },
    {"dim",   kCellProtected},  // no such attributes here: a value that never comes
    {"bold",  kCellBold     },
    {"invis", kCellProtected},
    {"prot",  kCellProtected},
    {"smacs", kCellGraphic  },
};
// clang-format on

static DWORD WantedOfSgr(const int (&numbers)[kMostNumbers]) {
    DWORD wanted = 0;
    for (int i = 0; i < kMostNumbers; ++i) {
        if (numbers[i]) wanted |= kSgr[i].attribute;
    }
    return wanted;
}

static bool AllHaveStrings(const TerminfoEntry& e, unsigned chosen) {
    for (int i = 0; i < kMostNumbers; ++i) {
        if (chosen >> i & 1 && !Has(e, kSgr[i].capability)) return false;
    }
    return true;
}

static std::string SgrDifference(const std::string& bytes, const int (&numbers)[kMostNumbers]) {
    const DWORD wanted = WantedOfSgr(numbers);
    if (!numbers[0]) return Turns(bytes, kAllAttributes, wanted);
    const DWORD shown = TypedAfter(bytes, kAllAttributes);
    const bool typed = (shown & (0xFF | kCellGraphic)) == ('x' | (wanted & kCellGraphic));
    const bool stands_out = (shown & kAllAttributes) != 0 && (shown & wanted) == wanted;
    if (!typed) return "a character is not shown as one";
    return stands_out ? "" : "standout is not shown with the others";
}

// Into line drawing and out of it, too.
static std::string SetAttributes(const TerminfoEntry& e) {
    const std::string enable = Expand(e, "enacs");
    const std::string drawing = enable + Expand(e, "smacs");
    for (unsigned chosen = 0; chosen < 1u << kMostNumbers; ++chosen) {
        if (!AllHaveStrings(e, chosen)) continue;
        int numbers[kMostNumbers];
        for (int i = 0; i < kMostNumbers; ++i) numbers[i] = chosen >> i & 1;
        const std::string bytes = Expand(e, "sgr", numbers);
        std::string message = SgrDifference(drawing + bytes, numbers);
        if (message.empty()) message = SgrDifference(enable + bytes, numbers);
        if (!message.empty()) return AsEscapeText(bytes) + ": " + message;
    }
    return "";
}

// ---------------------------------------------------------------- character sets

static std::string AlternateSet(const TerminfoEntry& e) {
    return Turns(Expand(e, "enacs") + Expand(e, "smacs"), 0, kCellGraphic);
}

static std::string EndAlternateSet(const TerminfoEntry& e) {
    return Turns(Expand(e, "enacs") + Expand(e, "smacs") + Expand(e, "rmacs"), 0, 0);
}

static std::string EnableAlternateSet(const TerminfoEntry& e) {
    return Turns(Expand(e, "enacs"), 0, 0);
}

// Pairs of a VT100's name of the glyph and the character to send for it.
static std::string AlternatePairs(const TerminfoEntry& e) {
    const std::string pairs = Expand(e, "acsc");
    const std::string begin = Expand(e, "enacs") + Expand(e, "smacs");
    std::string wrong;
    for (size_t i = 0; i + 1 < pairs.size(); i += 2) {
        const DWORD cell = TypedAfter(begin, 0, pairs[i + 1]);
        const bool sent = (cell & 0xFF) == static_cast<BYTE>(pairs[i + 1]);
        if (!sent || !ShowsGlyph(cell, pairs[i])) wrong += pairs[i];
    }
    if (pairs.size() % 2 != 0) return "a glyph has no character";
    return wrong.empty() ? "" : "not the glyphs of " + wrong;
}

// ---------------------------------------------------------------- modes

static std::string InsertMode(const TerminfoEntry& e) {
    SetUp(kMiddle);
    Picture wanted = TakePicture();
    const std::string text = "abc";
    DWORD* cells = wanted.cells[kMiddle.row] + kMiddle.col;
    memmove(cells + text.size(), cells,
            (static_cast<size_t>(kScreenColumns - kMiddle.col) + 1 - text.size()) * sizeof *cells);
    for (size_t i = 0; i < text.size(); ++i) cells[i] = static_cast<BYTE>(text[i]);
    cells[text.size()] = 'x';
    wanted.col += 4;
    Feed(Expand(e, "smir") + text + Expand(e, "rmir") + "x");
    return Difference(wanted, TakePicture(), true);
}

static std::string NoWrapMode(const TerminfoEntry& e) {
    SetUp({12, 79, 1, kScreenRows, 0, false, false});
    Picture wanted = TakePicture();
    wanted.cells[12][79] = 'a';
    wanted.cells[12][80] = 'd';
    wanted.col = 80;
    Feed(Expand(e, "rmam") + "abcd");
    return Difference(wanted, TakePicture(), true);
}

static std::string WrapMode(const TerminfoEntry& e) {
    SetUp({12, 80, 1, kScreenRows, 0, false, false});
    Picture wanted = TakePicture();
    wanted.cells[12][80] = 'a';
    wanted.cells[13][1] = 'b';
    wanted.row = 13;
    wanted.col = 2;
    Feed(Expand(e, "rmam") + Expand(e, "smam") + "ab");
    return Difference(wanted, TakePicture(), true);
}

static std::string CursorShown(const std::string& bytes, DWORD wanted) {
    const std::string printed = PrintsNothing(bytes);
    if (!printed.empty()) return printed;
    if (session.modes.cursor_visible == wanted) return "";
    return wanted ? "the cursor is hidden" : "the cursor is shown";
}
static std::string HideCursor(const TerminfoEntry& e) { return CursorShown(Expand(e, "civis"), 0); }
static std::string ShowCursor(const TerminfoEntry& e) {
    return CursorShown(Expand(e, "civis") + Expand(e, "cnorm"), 1);
}
static std::string StrongCursor(const TerminfoEntry& e) {
    return CursorShown(Expand(e, "civis") + Expand(e, "cvvis"), 1);
}

static std::string Beeps(const TerminfoEntry& e) {
    SetUp(kMiddle);
    const int before = beep_count;
    Feed(Expand(e, "bel"));
    return beep_count == before + 1 ? "" : "no beep";
}

// ---------------------------------------------------------------- tab stops, the saved cursor

static std::string SetStop(const TerminfoEntry& e) {
    SetUp({12, 20, 1, kScreenRows, 0, false, false});
    Feed(Expand(e, "tbc") + Expand(e, "hts") + "\r" + Expand(e, "ht"));
    return session.screen.cursor_col == 20 ? "" : "no stop where the cursor was";
}

static std::string ClearStops(const TerminfoEntry& e) {
    SetUp({12, 1, 1, kScreenRows, 0, false, false});
    Feed(Expand(e, "tbc") + "\t");
    return session.screen.cursor_col >= 79 ? "" : "there is still a stop";
}

static std::string SavedCursor(const TerminfoEntry& e) {
    SetUp({12, 20, 5, 20, 0, false, false});
    Feed(Expand(e, "sc") + "\033[1;24r\033[3;4H" + Expand(e, "rc"));
    const bool back = session.screen.cursor_row == 12 && session.screen.cursor_col == 20;
    return back ? "" : "the cursor is elsewhere";
}

// ---------------------------------------------------------------- reports

// `pattern` is of u6's or u8's kind: %d a number, %[...] any of these characters, %i nothing.
static bool Matches(const std::string& pattern, const std::string& text) {
    size_t at = 0;
    for (size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != '%') {
            if (at >= text.size() || text[at++] != pattern[i]) return false;
            continue;
        }
        const char kind = pattern[++i];
        if (kind == 'i') continue;
        std::string set = "0123456789";
        if (kind == '[') {
            const size_t end = pattern.find(']', i + 2);
            set = pattern.substr(i + 1, end - i - 1);
            i = end;
        } else if (kind != 'd') {
            return false;
        }
        if (at >= text.size() || set.find(text[at]) == std::string::npos) return false;
        while (at < text.size() && set.find(text[at]) != std::string::npos) ++at;
    }
    return at == text.size();
}

static std::string Reports(const TerminfoEntry& e, const char* request, const char* reply) {
    SetUp({12, 20, 1, kScreenRows, 0, false, false});
    const std::string text = Feed(Expand(e, request));
    const auto pattern = e.strings.find(reply);
    if (pattern != e.strings.end() && Matches(pattern->second, text)) return "";
    return "the reply is " + AsEscapeText(text);
}
// Also says where: the reports above are asked for from row 12, column 20.
static std::string CursorReport(const TerminfoEntry& e) {
    const std::string message = Reports(e, "u7", "u6");
    if (!message.empty()) return message;
    SetUp({12, 20, 1, kScreenRows, 0, false, false});
    const std::string text = Feed(Expand(e, "u7"));
    return text.find("12;20") != text.npos ? "" : "the reply is " + AsEscapeText(text);
}
static std::string Identity(const TerminfoEntry& e) { return Reports(e, "u9", "u8"); }

// ---------------------------------------------------------------- setting up and resetting

static std::string NotSane() {
    const TerminalModes& modes = session.modes;
    const ScreenBuffer& screen = session.screen;
    if (session.parser.parser_state != 0) return "a sequence is still open";
    if (modes.vt52_mode) return "VT52 mode is on";
    if (modes.insert_mode) return "insert mode is on";
    if (modes.origin_mode) return "origin mode is on";
    if (!modes.autowrap) return "there is no autowrap";
    if (!modes.cursor_visible) return "the cursor is hidden";
    if (modes.graphic_active) return "line drawing is on";
    if (modes.newline_mode) return "Enter sends CR LF";
    if (modes.localecho) return "typed characters are echoed here";
    if (modes.c1_replies) return "replies are 8-bit";
    if (screen.current_attr) return "attributes are on";
    if (screen.top_margin != 1 || screen.bottom_margin != kScreenRows) return "margins are set";
    return "";
}

static std::string Letters() {
    for (int row = 1; row <= kScreenRows; ++row) {
        for (int col = 1; col <= kScreenColumns; ++col) {
            if (GetCell(row, col) != kBlank) return "it prints something";
        }
    }
    return "";
}

static std::string StaysSane(const std::string& bytes) {
    SetUp(kMiddle);
    Feed("\033[2J" + bytes);
    const std::string state = NotSane();
    return state.empty() ? Letters() : state;
}

static std::string CursorMode(const TerminfoEntry& e) {
    return StaysSane(Expand(e, "smcup") + Expand(e, "rmcup"));
}
static std::string KeypadMode(const TerminfoEntry& e) {
    return StaysSane(Expand(e, "smkx") + Expand(e, "rmkx"));
}

// What a program that died, or a binary file, may have left.
static const char* const kMesses[] = {
    "\033[4h",   "\033[5;9r",       "\033[?6h", "\033[1;4;5;7m", "\033[1\"q",       "\033[?7l",
    "\033[?25l", "\033[20h",        "\033[12l", "\033(0",        "\033)0\016",      "\033[?2l",
    "\033P",     "\033PUTF-8 \xc4", "\033[12",  "\033 G",        "\033[10p\033[1s",
};

static std::string SaneAfter(const char* mess, const std::string& bytes) {
    SetUp(kMiddle);
    Feed("\033[2J" + std::string(mess) + bytes);
    const std::string state = NotSane();
    return state.empty() ? "" : "after " + AsEscapeText(mess) + ": " + state;
}

static std::string Reset(const TerminfoEntry& e) {
    const std::string bytes = Expand(e, "rs1") + Expand(e, "rs2") + Expand(e, "rs3");
    for (const char* mess : kMesses) {
        const std::string message = SaneAfter(mess, bytes);
        if (!message.empty()) return message;
    }
    return StaysSane(bytes);
}

// After each mess but an open device control string, which takes a reset, and those with `skipped`.
static std::string LeftBy(const std::string& bytes, const char* skipped) {
    for (const char* mess : kMesses) {
        const bool left = strchr(mess, 'P') || (skipped && strstr(mess, skipped));
        const std::string message = left ? "" : SaneAfter(mess, bytes);
        if (!message.empty()) return message;
    }
    return "";
}

// A program may send rs2 alone.
static std::string SecondReset(const TerminfoEntry& e) {
    const std::string message = Reset(e);
    return message.empty() ? LeftBy(Expand(e, "rs2"), nullptr) : message;
}

// Local echo is left to the host's way of working.
std::string LeftByInitialising(const TerminfoEntry& entry) {
    const std::string bytes = Expand(entry, "is1") + Expand(entry, "is2") + Expand(entry, "is3");
    const std::string message = LeftBy(bytes, "[12l");
    return message.empty() ? PrintsNothing(bytes) : message;
}

static std::string Initialise(const TerminfoEntry& e) { return LeftByInitialising(e); }

static std::string NotShown(const TerminfoEntry&) { return "the terminal shows nothing of it"; }
static std::string Neutral(const TerminfoEntry&) { return ""; }

// clang-format off
static const CheckRow kLooks[] = {
    {"acsc",  Loss::kLook,   AlternatePairs    },
    {"bel",   Loss::kLook,   Beeps             },
    {"blink", Loss::kLook,   Blink             },
    {"bold",  Loss::kLook,   Bold              },
    {"civis", Loss::kLook,   HideCursor        },
    {"cnorm", Loss::kLook,   ShowCursor        },
    {"cvvis", Loss::kLook,   StrongCursor      },
    {"enacs", Loss::kScreen, EnableAlternateSet},
    {"flash", Loss::kLook,   NotShown          },
    {"hts",   Loss::kScreen, SetStop           },
    {"is1",   Loss::kReset,  Initialise        },
    {"is2",   Loss::kReset,  Initialise        },
    {"is3",   Loss::kReset,  Initialise        },
    {"rc",    Loss::kScreen, SavedCursor       },
    {"rev",   Loss::kLook,   Reverse           },
    {"rmacs", Loss::kScreen, EndAlternateSet   },
    {"rmam",  Loss::kScreen, NoWrapMode        },
    {"rmcup", Loss::kReset,  CursorMode        },
    {"rmir",  Loss::kScreen, InsertMode        },
    {"rmkx",  Loss::kReset,  KeypadMode        },
    {"rmso",  Loss::kLook,   EndStandout       },
    {"rmul",  Loss::kLook,   EndUnderline      },
    {"rs1",   Loss::kReset,  Reset             },
    {"rs2",   Loss::kReset,  SecondReset       },
    {"rs3",   Loss::kReset,  Reset             },
    {"sc",    Loss::kScreen, SavedCursor       },
    {"sgr",   Loss::kLook,   SetAttributes     },
    {"sgr0",  Loss::kLook,   EndAttributes     },
    {"smacs", Loss::kScreen, AlternateSet      },
    {"smam",  Loss::kScreen, WrapMode          },
    {"smcup", Loss::kReset,  CursorMode        },
    {"smir",  Loss::kScreen, InsertMode        },
    {"smkx",  Loss::kReset,  KeypadMode        },
    {"smso",  Loss::kLook,   Standout          },
    {"smul",  Loss::kLook,   Underline         },
    {"tbc",   Loss::kScreen, ClearStops        },
    {"u6",    Loss::kLook,   CursorReport      },
    {"u7",    Loss::kLook,   CursorReport      },
    {"u8",    Loss::kLook,   Identity          },
    {"u9",    Loss::kLook,   Identity          },
    // Read by a person or by no program that paints.
    {"if",    Loss::kLook,   Neutral           },
    {"iprog", Loss::kLook,   Neutral           },
    {"ip",    Loss::kLook,   Neutral           },
    {"pad",   Loss::kLook,   Neutral           },
    {"rf",    Loss::kLook,   Neutral           },
    {"rmp",   Loss::kLook,   Neutral           },
    {"cmdch", Loss::kLook,   Neutral           },
    {"lf0",    Loss::kLook,   Neutral           },
    {"lf1",    Loss::kLook,   Neutral           },
    {"lf2",    Loss::kLook,   Neutral           },
    {"lf3",    Loss::kLook,   Neutral           },
    {"lf4",    Loss::kLook,   Neutral           },
    {"lf5",    Loss::kLook,   Neutral           },
    {"lf6",    Loss::kLook,   Neutral           },
    {"lf7",    Loss::kLook,   Neutral           },
    {"lf8",    Loss::kLook,   Neutral           },
    {"lf9",    Loss::kLook,   Neutral           },
    {"lf10",   Loss::kLook,   Neutral           },
};
// clang-format on

bool IsNeutral(const std::string& capability) {
    const CheckRow* row = FindLookCheck(capability);
    return row && row->check == Neutral;
}

const CheckRow* FindLookCheck(const std::string& capability) {
    for (const CheckRow& row : kLooks) {
        if (capability == row.capability) return &row;
    }
    return nullptr;
}
