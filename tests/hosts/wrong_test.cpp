// SPDX-License-Identifier: MIT
// Entries that are wrong in one place: the proof finds each.
#include <gtest/gtest.h>

#include "tests/hosts/own_entry.h"

static TerminfoEntry Quill() {
    TerminfoEntry entry;
    EXPECT_TRUE(ReadEntry("quill", &entry));
    return entry;
}

static bool IsFound(const TerminfoEntry& entry) { return !FaultsOfOwnEntry(entry).empty(); }

struct WrongString {
    const char* capability;
    const char* text;
};

// clang-format off
static const WrongString kWrongStrings[] = {
    {"acsc",  "``aaqq"            },  // a diamond, which is blank here
    {"acsc",  "jkkjll"            },  // two corners exchanged
    {"bel",   "\033\007"          },
    {"blink", "\033[1m"           },
    {"bold",  "\033[7m"           },
    {"civis", "\033[?25h"         },
    {"civis", "\033[25l"          },
    {"clear", "\033[2J"           },  // the cursor stays
    {"clear", "\033[H"            },
    {"cnorm", "\033[?25l"         },
    {"cr",    "\n"                },
    {"csr",   "\033[%i%p1%dr"     },
    {"csr",   "\033[%p1%d;%p2%dr" },
    {"csr",   "\033[%i%p2%d;%p1%dr"},
    {"cub",   "\033[D"            },
    {"cub",   "\033[%p1%dC"       },
    {"cub1",  "\033[2D"           },
    {"cub1",  "\177"              },
    {"cud",   "\033[%p1%dA"       },
    {"cud",   "\033[%p1%dE"       },
    {"cud1",  "\n"                },
    {"cud1",  "\033D"             },
    {"cuf",   "\033[%i%p1%dC"     },
    {"cuf1",  " "                 },
    {"cup",   "\033[%p1%d;%p2%dH" },
    {"cup",   "\033[%i%p2%d;%p1%dH"},
    {"cup",   "\033[%i%p1%dH"     },
    {"cuu",   "\033[A"            },
    {"cuu1",  "\033M"             },
    {"dch",   "\033[P"            },
    {"dch1",  "\033[X"            },
    {"dl",    "\033[M"            },
    {"dl1",   "\033[2M"           },
    {"ech",   "\033[%p1%dP"       },
    {"ech",   "\033[X"            },
    {"ed",    "\033[2J"           },
    {"ed",    "\033[1J"           },
    {"ed",    "\033[?J"           },  // keeps protected cells
    {"el",    "\033[2K"           },
    {"el1",   "\033[K"            },
    {"home",  "\033[2;1H"         },
    {"ht",    "\033[8C"           },
    {"hts",   "\033[g"            },
    {"ich",   "\033[@"            },
    {"ich",   "\033[%p1%dP"       },
    {"ich1",  "\033[@"            },  // without a number it does nothing
    {"il",    "\033[%p1%dL"       },
    {"il1",   "\033[M"            },
    {"ind",   "\033M"             },
    {"ind",   "\033E\033D"        },
    {"indn",  "\033[%p1%dS"       },
    {"is2",   "\033[m"            },
    {"is2",   "\033[2J\033<\033[m\017\033(B\033[r\033[?6l\033[4;20l\033[?7;25h\033 F"},
    {"kbs",   "\177"              },
    {"kcub1", "\033OD"            },
    {"kcuf1", "\033[D"            },
    {"kdch1", "\033[3~"           },
    {"kend",  "\033[4~"           },
    {"kf1",   "\033OP"            },
    {"kf20",  "\033[33~"          },
    {"kich1", "\033[2~"           },
    {"nel",   "\n"                },
    {"rc",    "\0337"             },
    {"rep",   "%p1%c\033[%p2%{1}%-%db"},
    {"rev",   "\033[5m"           },
    {"ri",    "\033[A"            },
    {"rmacs", "\017"              },
    {"rmam",  "\033[?7h"          },
    {"rmir",  "\033[4h"           },
    {"rmso",  "\033[24m"          },
    {"rmul",  "\033[27m"          },
    {"rs1",   "\033c"             },  // stays silent in a device control string
    {"rs2",   "\033<\033[m"       },
    {"rs2",   ""                  },
    {"sc",    "\0338"             },
    {"sgr",   "\033[0%?%p6%t;1%;%?%p2%t;4%;%?%p1%p3%|%t;7%;m%?%p9%t\033(0%e\033(B%;"},
    {"sgr",   "\033[0%?%p6%t;4%;%?%p2%t;1%;%?%p4%t;5%;%?%p1%p3%|%t;7%;m%?%p9%t\033(0%e\033(B%;"},
    {"sgr",   "\033[%?%p6%t;1%;%?%p2%t;4%;%?%p4%t;5%;%?%p1%p3%|%t;7%;m%?%p9%t\033(0%;"},
    {"sgr0",  "\033[m"            },  // line drawing stays on
    {"sgr0",  "\033[24m\033(B"    },
    {"smacs", "\016"              },  // without enacs
    {"smam",  "\033[?7l"          },
    {"smcup", "\033[?1049h\033[4h"},
    {"smir",  "\033[?4h"          },
    {"smso",  "\033[2m"           },
    {"smul",  "\033[21m"          },
    {"tbc",   "\033[g"            },
    {"u6",    "\033[%i%d;%d;%dR"  },
    {"u7",    "\033[5n"           },
    {"u8",    "\033[?1;2c"        },
    {"u9",    "\033[>c"           },
    {"cbt",   "\033[Z"            },
    {"dsl",   "\033]2;\007"       },
    {"flash", "\033[?5h\033[?5l"  },
    {"hpa",   "\033[%i%p1%dG"     },
    {"mc0",   "\033[i"            },
    {"setaf", "\033[3%p1%dm"      },
    {"smm",   "\033[?1034h"       },
    {"vpa",   "\033[%i%p1%dd"     },
};
// clang-format on

TEST(Proof, FindsEachWrongString) {
    const TerminfoEntry quill = Quill();
    int wrong = 0;
    for (const WrongString& row : kWrongStrings) {
        TerminfoEntry entry = quill;
        entry.strings[row.capability] = row.text;
        EXPECT_TRUE(IsFound(entry)) << row.capability << "=" << AsEscapeText(row.text);
        ++wrong;
    }
    printf("%d wrong strings\n", wrong);
}

TEST(Proof, FindsEachFlagThatIsAddedOrTakenAway) {
    const TerminfoEntry quill = Quill();
    for (const std::string& flag : FlagNames()) {
        TerminfoEntry entry = quill;
        if (entry.flags.erase(flag) == 0) entry.flags.insert(flag);
        EXPECT_TRUE(IsFound(entry) || IsLeftOut(flag)) << flag;
    }
}

TEST(Proof, FindsEachNumberThatIsChangedOrAdded) {
    const TerminfoEntry quill = Quill();
    for (const std::string& number : NumberNames()) {
        for (const int step : {-1, 1, 40}) {
            TerminfoEntry entry = quill;
            entry.numbers[number] = quill.numbers.count(number) ? entry.numbers[number] + step : 41;
            EXPECT_TRUE(IsFound(entry)) << number;
        }
    }
}

// ---------------------------------------------------------------- each byte counts

// Bytes whose lack, or whose change to the next one, changes nothing that a host can tell.
struct SameWithout {
    const char* capability;
    size_t byte;
    const char* reason;
};

static const SameWithout kSameWithout[] = {
    {"acsc", 18, "scan lines 3, 5 and 7 are drawn alike"},
    {"acsc", 19, "scan lines 3, 5 and 7 are drawn alike"},
    {"acsc", 20, "scan lines 3, 5 and 7 are drawn alike"},
    {"acsc", 21, "scan lines 3, 5 and 7 are drawn alike"},
    {"clear", 5, "from the first cell on, CSI J erases all"},
    {"ind", 1, "it is sent in column 1, where ESC E does the same"},
    {"rs1", 0, "it is for the Telnet line, not for the terminal"},
    {"sgr", 2, "a number that is left out is 0"},
};

static bool IsSame(const std::string& capability, size_t byte) {
    for (const SameWithout& row : kSameWithout) {
        if (capability == row.capability && byte == row.byte) return true;
    }
    return false;
}

typedef void (*Change)(std::string& text, size_t byte);

static void ExpectEachFound(Change change) {
    const TerminfoEntry quill = Quill();
    int wrong = 0;
    for (const auto& [capability, text] : quill.strings) {
        for (size_t i = 0; i < text.size(); ++i, ++wrong) {
            TerminfoEntry entry = quill;
            change(entry.strings[capability], i);
            const bool found = !ProveCapability(entry, capability).empty() ||
                               !FaultsOfSettingUp(entry).empty() ||
                               !FaultOfExpression(entry.strings[capability]).empty();
            EXPECT_TRUE(found || IsSame(capability, i))
                << capability << " changed at byte " << i << " to "
                << AsEscapeText(entry.strings[capability]);
        }
    }
    printf("%d wrong strings\n", wrong);
}

TEST(Proof, FindsEachMissingByte) {
    ExpectEachFound([](std::string& text, size_t byte) { text.erase(byte, 1); });
}

TEST(Proof, FindsEachChangedByte) {
    ExpectEachFound([](std::string& text, size_t byte) { ++text[byte]; });
}
