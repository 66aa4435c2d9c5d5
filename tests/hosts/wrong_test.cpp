// SPDX-License-Identifier: MIT
// Entries that are wrong in one place: the proof finds each.
#include <gtest/gtest.h>

#include "tests/hosts/changes.h"
#include "tests/hosts/own_entry.h"

static TerminfoEntry Quill() {
    TerminfoEntry entry;
    EXPECT_TRUE(ReadEntry("quill", &entry));
    return entry;
}

static bool IsFound(const TerminfoEntry& entry) { return !FaultsOfOwnEntry(entry).empty(); }

// The same for an entry that is wrong in this string alone, without the proof of the others.
static bool IsFoundIn(const TerminfoEntry& entry, const std::string& capability) {
    const bool sets_up = capability == "is2" || capability == "rs1" || capability == "rs2";
    return !ProveCapability(entry, capability).empty() ||
           !FaultsOfString(entry, capability).empty() ||
           (capability == "acsc" && !FaultOfGlyphs(entry).empty()) ||
           (sets_up && !FaultsOfSettingUp(entry).empty());
}

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
    // one more thing
    {"blink", "\033[0;5m"         },
    {"bold",  "\033[m\033[1m"     },
    {"rev",   "\033[7m\033[?25h"  },
    {"smul",  "\033[24m\033[4m\033(B"},
    {"rmso",  "\033[m"            },
    {"rmul",  "\033[m"            },
    {"sgr0",  "\033[m\017\033(B"  },
    {"civis", "\033[?25l\033[m"   },
    {"cnorm", "\033[?25h\033[m"   },
    {"cnorm", "\033[?7;25h"       },
    {"clear", "\033[H\033[2J\033[3g"},
    {"clear", "\033[m\033[H\033[2J"},
    {"clear", "\033[H\033[2J\033[?7l"},
    {"cup",   "\033[m\033[%i%p1%d;%p2%dH"},
    {"cup",   "\033[%i%p1%d;%p2%dH\0337"},
    {"el",    "\033[K\033[m"      },
    {"ed",    "\033[J\033[?25h"   },
    {"il1",   "\033[L\033[4l"     },
    {"dch1",  "\033[P\0337"       },
    {"csr",   "\033[%i%p1%d;%p2%dr\033[H"},
    {"csr",   "\0337\033[%i%p1%d;%p2%dr\0338"},
    {"csr",   "\033[?6l\033[%i%p1%d;%p2%dr"},
    {"smir",  "\033[4h\033[?7h"   },
    {"rmir",  "\033[4l\033[m"     },
    {"smam",  "\033[?7h\033[3g"   },
    {"rmam",  "\033[?7;25l"       },
    {"smacs", "\033(0\033)0"      },
    {"rmacs", "\033(B\017"        },
    {"hts",   "\033[3g\033H"      },
    {"tbc",   "\033[3g\033H"      },
    {"tbc",   "\033[g\033[3g\r"   },
    {"sc",    "\0337\033[m"       },
    {"sc",    "\033[m\0337"       },
    {"sc",    "\033[12;20H\0337"  },
    {"rc",    "\033[12;20H"       },  // where one start is
    {"rc",    "\0338\033[m"       },
    {"rc",    "\0338\033(B"       },
    {"is2",   "\033<\033[m\017\033(B\033)0\0337\033[r\033[?6l\0338\033[4;20l\033[?7;25h\033[3g"},
    {"is2",   "\033<\033[m\017\033(B\033)0\0337\033[r\033[?6l\0338\033[4;20l\033[?7;25h\033[?5h"},
    {"is2",   "\033[3g\033<\033[m\017\033(B\033)0\0337\033[r\033[?6l\0338\033[4;20l\033[?7;25h"},
    {"rs1",   "\360\033\\\033c\033[3g"},
    {"rs1",   "\360\033\\\033c\033[10p"},
    {"rs2",   "\033<\033[m\017\033(B\033)0\0337\033[r\033[?6l\0338\033[4;20l\033[12h\033[?7;25h\033[?8l"},
    // padding
    {"clear", "\033[H\033[2J$<50>"},
    {"el",    "\033[K$<3>"        },
    {"cup",   "\033[%i%p1%d;%p2%dH$<5/>"},
    {"kcuu1", "\033[A$<1>"        },
    // glyphs
    {"acsc",  "0aaahajjkkllmmnnooppqqrrssttuuvvwwxx}}"},
    {"acsc",  "aahajjkkllmmnnooppqqrrssttuuvvwwxx}}~~"},
    {"acsc",  "0aaahajjkkllmmnnqqttuuvvwwxx}}~~"},
    {"acsc",  "jjkkllmmnnqqttuuvvwwxx"},
    // left out for a reason
    {"ich1",  "\033[1@"           },
    {"is1",   "\033[20h"          },
    {"rmcup", "\033c"             },
    {"smcup", "\033[2;24r"        },
    {"smcup", "\033[?7l"          },
    // the sequence of another key
    {"kcbt",  "\t"                },
    {"kcbt",  "\033[Z"            },
    {"kent",  "\r"                },
    {"kf21",  "\033[25~"          },
    {"kf6",   "\033[15~"          },
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
        EXPECT_TRUE(IsFound(entry)) << flag;
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

// Whatever its text is, also one that does nothing.
TEST(Proof, FindsEachStringThatIsLeftOutForAReason) {
    const TerminfoEntry quill = Quill();
    for (const std::string& name : StringNames()) {
        if (!IsLeftOut(name)) continue;
        TerminfoEntry entry = quill;
        entry.strings[name] = "";
        EXPECT_TRUE(IsFound(entry)) << name;
    }
}

// ---------------------------------------------------------------- the entry of seven bits

static TerminfoEntry Quill7() {
    TerminfoEntry entry;
    EXPECT_TRUE(ReadEntry("quill-7", &entry));
    return entry;
}

TEST(Proof, FindsEachStringThatQuill7HasLostOrChanged) {
    const TerminfoEntry quill = Quill(), seven = Quill7();
    for (const std::string& name : StringNames()) {
        TerminfoEntry lost = seven, changed = seven;
        if (lost.strings.erase(name) != 0) {
            EXPECT_EQ(1u, FaultsOfSevenBitEntry(lost, quill).size()) << name << "@";
        }
        changed.strings[name] += "x";
        EXPECT_EQ(1u, FaultsOfSevenBitEntry(changed, quill).size()) << name;
    }
}

TEST(Proof, FindsEachFlagAndNumberThatQuill7HasLostOrAdded) {
    const TerminfoEntry quill = Quill(), seven = Quill7();
    for (const std::string& flag : FlagNames()) {
        TerminfoEntry entry = seven;
        if (entry.flags.erase(flag) == 0) entry.flags.insert(flag);
        EXPECT_EQ(1u, FaultsOfSevenBitEntry(entry, quill).size()) << flag;
    }
    for (const std::string& number : NumberNames()) {
        TerminfoEntry lost = seven, changed = seven;
        if (lost.numbers.erase(number) != 0) {
            EXPECT_EQ(1u, FaultsOfSevenBitEntry(lost, quill).size()) << number << "@";
        }
        ++changed.numbers[number];
        EXPECT_EQ(1u, FaultsOfSevenBitEntry(changed, quill).size()) << number;
    }
}

// ---------------------------------------------------------------- side effects

// Each is sent before or after a string of the entry.
static const char* const kSideEffects[] = {
    "\033[m",   "\033[7m",   "\033[1m",      "\033[22m",   "\033[40m",  "\033[1\"q", "\033[0\"q",
    "\033[?7l", "\033[?7h",  "\033[3g",      "\033[g",     "\033H",     "\033[?25l", "\033[?25h",
    "\0337",    "\0338",     "\033[4h",      "\033[4l",    "\033(0",    "\033(B",    "\033)0",
    "\033)B",   "\016",      "\017",         "\033[r",     "\033[2;9r", "\033[?6h",  "\033[?6l",
    "\033=",    "\033>",     "\033[?1h",     "\033[?1l",   "\033[20h",  "\033[20l",  "\033[12h",
    "\033[12l", "\033<",     "\033[?2l",     "\033#3",     "\033#5",    "\033#6",    "\033#8",
    "\033[H",   "\033[7;7H", "\033[?5h",     "\033[?5l",   "\033[?8h",  "\033[?8l",  "\033 F",
    "\033 G",   "\033 ",     "\033[62;2\"p", "\033[61\"p", "\033[10p",  "\033[1s",   "\033[K",
    "\033[J",   "\033[@",    "\033[P",       "\033[M",     "\033[L",    "\033D",     "\033M",
    "\033E",    "\033[?3h",  "\033c",        "\033[c",     "\033[5n",   "\005",      "\007",
    "x",        " ",         "\033",         "\033[",      "\033P",     "\233",      "\r",
    "\n",       "\b",        "\t",           "\033[A",     "\033[B",    "\033[C",    "\033[D",
};

// Cells are compared as they are shown: those below the screen are not. The byte 240 of a reset is
// a letter until the reset erases it, perhaps in column 80.
static unsigned Unseen(const std::string& capability) {
    return capability == "rs1" ? kCells | kWrap : kCells;
}

// The states that a string ends in, from each of the states.
struct Endings {
    std::vector<Outcome> outcomes;
    std::vector<Picture> pictures;
};

static Endings EndingsOf(const TerminfoEntry& entry, const std::string& capability) {
    Endings endings;
    ForEachSending(entry, capability, [&](const std::string& bytes) {
        ForSomeStates([&](SetUpProcedure set_up, const Start& start) {
            set_up(start);
            endings.outcomes.push_back(OutcomeOf(bytes));
            endings.pictures.push_back(TakePicture());
        });
    });
    return endings;
}

static bool EndsSo(const Endings& wanted, const TerminfoEntry& entry,
                   const std::string& capability) {
    bool same = true;
    size_t next = 0;
    ForEachSending(entry, capability, [&](const std::string& bytes) {
        ForSomeStates([&](SetUpProcedure set_up, const Start& start) {
            if (!same) return;
            set_up(start);
            const Outcome found = OutcomeOf(bytes);
            const size_t at = next++;
            same = OutcomeDifference(wanted.outcomes[at], found, Unseen(capability)).empty() &&
                   Difference(wanted.pictures[at], TakePicture(), true).empty() &&
                   WidthDifference(wanted.pictures[at], TakePicture()).empty();
        });
    });
    return same;
}

static bool IsSent(const std::string& capability) {
    return capability[0] != 'k' && capability != "acsc" && capability != "u6" && capability != "u8";
}

TEST(Proof, FindsEachSideEffect) {
    const TerminfoEntry quill = Quill();
    int wrong = 0, same = 0;
    for (const auto& [capability, text] : quill.strings) {
        if (!IsSent(capability)) continue;
        const Endings endings = EndingsOf(quill, capability);
        for (const std::string effect : kSideEffects) {
            for (const std::string& changed : {text + effect, effect + text}) {
                TerminfoEntry entry = quill;
                entry.strings[capability] = changed;
                if (EndsSo(endings, entry, capability)) {
                    ++same;
                    continue;
                }
                ++wrong;
                EXPECT_TRUE(IsFoundIn(entry, capability))
                    << "{\"" << capability << "\", \"" << AsEscapeText(changed) << "\"},";
            }
        }
    }
    printf("%d wrong strings, %d that do the same\n", wrong, same);
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
            EXPECT_TRUE(IsFoundIn(entry, capability) || IsSame(capability, i))
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
