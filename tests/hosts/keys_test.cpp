// SPDX-License-Identifier: MIT
// The keys, as the key table sends them, in programs of a host.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "tests/hosts/key_program.h"

struct KeyCase {
    const char* key;     // as in a walk's step
    const char* curses;  // keyname(3X)
    const char* vim;     // in a mapping; vim asks for no more than F12
};

// clang-format off
static const KeyCase kKeyCases[] = {
    {"<up>",   "KEY_UP",    "Up"   }, {"<down>", "KEY_DOWN",  "Down" }, {"<left>", "KEY_LEFT",  "Left" },
    {"<right>", "KEY_RIGHT", "Right"}, {"<home>", "KEY_HOME",  "Home" }, {"<end>",  "KEY_END",   "End"  },
    {"<pgup>", "KEY_PPAGE", "PageUp"}, {"<pgdn>", "KEY_NPAGE", "PageDown"}, {"<del>", "KEY_DC",   "Del"  },
    {"<f1>",   "KEY_F(1)",  "F1"   }, {"<f2>",   "KEY_F(2)",  "F2"   }, {"<f3>",   "KEY_F(3)",  "F3"   },
    {"<f4>",   "KEY_F(4)",  "F4"   }, {"<f5>",   "KEY_F(5)",  "F5"   }, {"<f6>",   "KEY_F(6)",  "F6"   },
    {"<f7>",   "KEY_F(7)",  "F7"   }, {"<f8>",   "KEY_F(8)",  "F8"   }, {"<f9>",   "KEY_F(9)",  "F9"   },
    {"<f10>",  "KEY_F(10)", "F10"  }, {"<f11>",  "KEY_F(11)", "F11"  }, {"<f12>",  "KEY_F(12)", "F12"  },
    {"<f13>",  "KEY_F(13)", nullptr}, {"<f14>",  "KEY_F(14)", nullptr}, {"<f15>",  "KEY_F(15)", nullptr},
    {"<f16>",  "KEY_F(16)", nullptr}, {"<f17>",  "KEY_F(17)", nullptr}, {"<f18>",  "KEY_F(18)", nullptr},
    {"<f19>",  "KEY_F(19)", nullptr}, {"<f20>",  "KEY_F(20)", nullptr},
};
// clang-format on

static const char* const kTerms[] = {"quill", "quill-7"};
static const char* const kLocales[] = {"C", "C.UTF-8"};

static void ForEveryKeyboard(const std::function<void(const char*, const char*)>& act) {
    for (const char* term : kTerms) {
        for (const char* locale : kLocales) act(term, locale);
    }
}

TEST(Keys, CursesKnowsEachByItsName) {
    ForEveryKeyboard([](const char* term, const char* locale) {
        KeyProgram reader(term, locale, {QUILL_KEY_READER});
        for (const KeyCase& key : kKeyCases) {
            EXPECT_TRUE(reader.Shows(key.key, std::string("got ") + key.curses + "."))
                << key.key << " as " << term << " in " << locale << ": " << RowText(1);
        }
    });
}

TEST(Keys, BackspaceIsKnownToCurses) {
    KeyProgram reader("quill", "C", {QUILL_KEY_READER});
    EXPECT_TRUE(reader.Shows("\b", "got KEY_BACKSPACE."));
}

TEST(Keys, VimKnowsEachByItsName) {
    if (!IsInstalled("vim")) GTEST_SKIP() << "vim is not installed";
    ForEveryKeyboard([](const char* term, const char* locale) {
        std::vector<std::string> arguments = {
            "vim", "-u",    "NONE",
            "-i",  "NONE",  "-n",
            "-N",  "--cmd", "set ttimeout ttimeoutlen=5 noshowcmd noruler"};
        std::string mappings;
        for (const KeyCase& key : kKeyCases) {
            if (!key.vim) continue;
            mappings += std::string("nnoremap <") + key.vim + "> :echo 'got " + key.vim + ".'<CR>|";
        }
        arguments.insert(arguments.end(), {"-c", mappings});
        KeyProgram vim(term, locale, arguments);
        for (const KeyCase& key : kKeyCases) {
            if (!key.vim) continue;
            EXPECT_TRUE(vim.Shows(key.key, std::string("got ") + key.vim + "."))
                << key.key << " as " << term << " in " << locale << ": " << RowText(24);
        }
    });
}

TEST(Keys, VimMovesByTheArrowsWhileTextIsInserted) {
    if (!IsInstalled("vim")) GTEST_SKIP() << "vim is not installed";
    KeyProgram vim("quill", "C", {"vim", "-u", "NONE", "-i", "NONE", "-n", "-N"});
    EXPECT_TRUE(vim.Shows("ione\rtwo\rthree", "three"));
    EXPECT_TRUE(vim.Shows("<up><up><left><left>X", "oXne"));
    EXPECT_TRUE(vim.Shows("<down><right>Y", "twoY"));
}

// Arrows that end a menu are what a name with other cursor keys gives.
TEST(Keys, DialogMovesInItsMenuByTheArrows) {
    if (!IsInstalled("dialog")) GTEST_SKIP() << "dialog is not installed";
    const std::string menu =
        "dialog --stdout --menu Choose 15 40 8 one first two second three third four fourth";
    KeyProgram dialog("quill", "C",
                      {"sh", "-c", "chosen=$(" + menu + "); echo chosen $chosen; read x"});
    EXPECT_TRUE(dialog.Shows("", "fourth"));
    EXPECT_TRUE(dialog.Shows("<down><down><down><up>\r", "chosen three"));
}

TEST(Keys, DialogOpensItsHelpByF1) {
    if (!IsInstalled("dialog")) GTEST_SKIP() << "dialog is not installed";
    for (const char* term : kTerms) {
        KeyProgram dialog(term, "C",
                          {"dialog", "--hfile", "/etc/hosts", "--menu", "Choose", "15", "40", "8",
                           "one", "first"});
        EXPECT_TRUE(dialog.Shows("", "first"));
        EXPECT_TRUE(dialog.Shows("<f1>", "localhost")) << term;
    }
}

static std::filesystem::path EmptyHome() {
    std::string folder = (std::filesystem::temp_directory_path() / "quill-mc.XXXXXX").string();
    return mkdtemp(folder.data()) ? folder : "/";
}

static void PressInMc(const char* term,
                      const std::vector<std::pair<std::string, std::string>>& keys) {
    if (!IsInstalled("mc")) GTEST_SKIP() << "mc is not installed";
    const std::filesystem::path home = EmptyHome();
    {
        KeyProgram mc(term, "C", {"mc", "-b", "-d", "-u", "--nokeymap"}, home.string());
        EXPECT_TRUE(mc.Shows("", "10Quit"));
        mc.Press("");
        for (const auto& [key, text] : keys)
            EXPECT_TRUE(mc.Shows(key, text)) << key << " as " << term << "\n" << ScreenText();
    }
    std::filesystem::remove_all(home);
}

// Keys that begin with an 8-bit introducer have no effect in it: those need the entry quill-7 and
// its rows of the key table.
TEST(Keys, McKnowsArrowsAndTheKeysFromF5On) {
    PressInMc("quill", {{"<f9><down>", "File listing"},
                        {"<right>", "Chmod"},
                        {"<right>", "Swap panels"},
                        {"<left>", "Chmod"},
                        {"<f10><f7>", "Enter directory name"}});
}

TEST(Keys, McOpensNoHelpByF1AsQuill) {
    if (!IsInstalled("mc")) GTEST_SKIP() << "mc is not installed";
    KeyProgram mc("quill", "C", {"mc", "-b", "-d", "-u", "--nokeymap"}, "/");
    ASSERT_TRUE(mc.Shows("", "10Quit"));
    mc.Press("<f1>");
    EXPECT_FALSE(ScreenHas("main help screen")) << "the handbook says otherwise";
}

TEST(Keys, McKnowsAllFunctionKeysAsQuill7) {
    PressInMc("quill-7", {{"<f1>", "main help screen"},
                          {"<f10><f9><down>", "File listing"},
                          {"<right>", "Chmod"},
                          {"<f10><f2>", "User menu"}});
}
