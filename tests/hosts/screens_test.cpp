// SPDX-License-Identifier: MIT
// What the handbook says under "When the screen looks wrong", seen with the programs themselves:
// the wrong screen, and the right one after what the page has set.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "terminal/screen_buffer.h"
#include "tests/hosts/key_program.h"
#include "tests/hosts/program_walks.h"
#include "tests/hosts/terminfo_entry.h"

struct TemporaryHome {
    std::string path = (std::filesystem::temp_directory_path() / "quill-home.XXXXXX").string();

    TemporaryHome() { EXPECT_NE(nullptr, mkdtemp(path.data())); }
    ~TemporaryHome() { std::filesystem::remove_all(path); }
    TemporaryHome(const TemporaryHome&) = delete;
    TemporaryHome& operator=(const TemporaryHome&) = delete;
};

TEST(WrongScreen, TypeOfAStartUpFileOverridesTheTerminals) {
    TemporaryHome home;
    for (const bool sets : {true, false}) {
        std::ofstream(home.path + "/.profile") << (sets ? "TERM=vt100\n" : "\n");
        KeyProgram shell("quill", "C", {"bash", "--login"}, home.path);
        EXPECT_TRUE(shell.Shows("echo type=$TERM.\r", sets ? "type=vt100." : "type=quill."));
    }
}

static const ProgramWalk& WalkOf(const std::string& name) {
    for (const ProgramWalk& walk : ProgramWalks()) {
        if (walk.name == name) return walk;
    }
    ADD_FAILURE() << "there is no walk " << name;
    return ProgramWalks()[0];
}

// Under the entry the same steps have no wrong screen: Walk.nano.
TEST(WrongScreen, LinesSlipInAnEditorAsVt220) {
    if (!IsInstalled("nano")) GTEST_SKIP() << "nano is not installed";
    EXPECT_GT(WalkThrough(WalkOf("nano"), "vt220", "quill").wrong, 0);
}

static bool IsShownSomewhere(DWORD attribute) {
    for (int row = 1; row <= kScreenRows; ++row) {
        for (int col = 1; col <= kScreenColumns; ++col) {
            if (GetCell(row, col) & attribute) return true;
        }
    }
    return false;
}

// Colour 33 of 256 is CSI 38;5;33 m.
TEST(WrongScreen, ColoursOfATerminalWith256TurnBlinkOn) {
    if (!IsInstalled("tmux")) GTEST_SKIP() << "tmux is not installed";
    for (const bool right : {false, true}) {
        TemporaryHome home;
        KeyProgram tmux(right ? "quill" : "xterm-256color", "C",
                        {"tmux", "-f", "/dev/null", "new-session", "cat", ";", "set", "-g",
                         "status-style", "fg=colour33"},
                        home.path, {"TMUX_TMPDIR=" + home.path, "SHELL=/bin/sh"});
        EXPECT_TRUE(tmux.Shows("", "[0] 0:"));
        EXPECT_EQ(!right, IsShownSomewhere(kCellBlink)) << ScreenText();
    }
}

static std::vector<std::string> VimWith(const char* command) {
    return {"vim", "-u", "NONE", "-i", "NONE", "-n", "-N", "-c", "set shortmess+=I", "-c", command};
}

// It sets what keys send by CSI > 4 ; 2 m, and what it draws next is underlined.
TEST(WrongScreen, KeysThatVimSetsAsXtermTurnUnderlineOn) {
    if (!IsInstalled("vim")) GTEST_SKIP() << "vim is not installed";
    for (const bool right : {false, true}) {
        TemporaryHome home;
        std::ofstream file(home.path + "/lines");
        for (int line = 1; line <= 99; ++line) file << "line " << line << "\n";
        file.close();
        std::vector<std::string> arguments = VimWith("set noruler noshowcmd");
        arguments.push_back("lines");
        KeyProgram vim(right ? "quill" : "xterm", "C", arguments, home.path);
        vim.Press("G");
        EXPECT_TRUE(ScreenHas("line 99"));
        EXPECT_EQ(!right, IsShownSomewhere(kCellUnderline)) << ScreenText();
    }
}

TEST(WrongScreen, CursorShapeThatVimSetsLeavesItsLastLetter) {
    if (!IsInstalled("vim")) GTEST_SKIP() << "vim is not installed";
    for (const bool right : {false, true}) {
        const char* shapes = "let &t_EI=\"\\<Esc>[2 q\" | let &t_SI=\"\\<Esc>[5 q\"";
        KeyProgram vim("quill", "C", VimWith(right ? "set t_SI= t_EI=" : shapes));
        vim.Press("i");
        EXPECT_EQ(!right, ScreenHas("q")) << ScreenText();
    }
}

// The prompt that Debian's start-up file sets under TERM=xterm.
TEST(WrongScreen, TitleSetByThePromptIsShown) {
    const std::string title = "\\[\\e]0;anna@stores:\\a\\]$ ";
    KeyProgram wrong("quill", "C", {"bash", "--norc"}, "/", {"PS1=" + title});
    EXPECT_TRUE(wrong.Shows("", "0;anna@stores:$"));
    KeyProgram command("quill", "C", {"bash", "--norc"}, "/",
                       {"PS1=$ ", "PROMPT_COMMAND=printf '\\033]0;anna@stores:\\007'"});
    EXPECT_TRUE(command.Shows("", "0;anna@stores:$"));
    EXPECT_TRUE(command.Shows("PROMPT_COMMAND=; clear; echo rea''dy\r", "ready"));
    EXPECT_FALSE(ScreenHas("anna@"));
}

static int CountOfLineDrawing() {
    int count = 0;
    for (int row = 1; row <= kScreenRows; ++row) {
        for (int col = 1; col <= kScreenColumns; ++col)
            count += (GetCell(row, col) & kCellGraphic) != 0;
    }
    return count;
}

// 0 where lines are drawn in letters.
static int LineDrawingOf(const std::vector<std::string>& program, const std::string& locale,
                         const std::string& variable) {
    TemporaryHome home;
    KeyProgram drawing("quill", locale, program, home.path, {variable});
    drawing.Press("");
    return CountOfLineDrawing();
}

TEST(WrongScreen, LinesAreLettersWhereCursesDrawsThemInUtf8) {
    if (!IsInstalled("dialog")) GTEST_SKIP() << "dialog is not installed";
    const std::vector<std::string> dialog = {"dialog", "--msgbox", "words", "9", "30"};
    EXPECT_EQ(0, LineDrawingOf(dialog, "C.UTF-8", "NCURSES_NO_UTF8_ACS=1"));
    EXPECT_TRUE(ScreenHas("\xe2")) << ScreenText();
    EXPECT_FALSE(ScreenHas("words")) << "one byte of a corner begins a device control string";
    EXPECT_GT(LineDrawingOf(dialog, "C.UTF-8", "NONE="), 50);
    EXPECT_TRUE(ScreenHas("words"));
}

TEST(WrongScreen, LinesAreLettersWhereMcDrawsThemInUtf8) {
    if (!IsInstalled("mc")) GTEST_SKIP() << "mc is not installed";
    const std::vector<std::string> mc = {"mc", "-b", "-d", "-u", "--nokeymap"};
    EXPECT_EQ(0, LineDrawingOf(mc, "C.UTF-8", "NONE="));
    EXPECT_TRUE(ScreenHas("\xe2")) << ScreenText();
    EXPECT_GT(LineDrawingOf(mc, "C", "NONE="), 50);
    EXPECT_TRUE(ScreenHas("10Quit"));
}

TEST(WrongScreen, BackspaceMustMatchBetweenHostAndKey) {
    for (const char* erase : {"^H", "^?"}) {
        KeyProgram shell("quill", "C",
                         {"sh", "-c", "stty erase '" + std::string(erase) + "'; echo ready; cat"});
        EXPECT_TRUE(shell.Shows("", "ready"));
        EXPECT_TRUE(shell.Shows("wrong\b\b\b\b\bright\r", "right"));
        EXPECT_EQ(std::string(erase) == "^?", ScreenHas("^H")) << ScreenText();
    }
}

// What is left of "abc" after one step to the left and one Backspace.
static bool BackspaceLeaves(const char* left, const std::vector<std::string>& program,
                            const char* term, const char* backspace) {
    TemporaryHome home;
    const bool quill = std::string(term) != "vt100";
    std::string command = quill ? "stty erase '^H'; exec" : "stty erase '^?'; exec";
    for (const std::string& word : program) command += " '" + word + "'";
    KeyProgram editor(term, "C", {"sh", "-c", command}, home.path);
    editor.Press("");
    editor.Press("abc");
    editor.Press("<left>");
    editor.Press(backspace);
    editor.Press("!");
    return ScreenHas(left);
}

static const std::vector<std::string> kNano = {"nano", "--ignorercfiles", "text"};
static const std::vector<std::string> kInputBox = {"dialog", "--inputbox", "Name:", "9", "40"};

TEST(WrongScreen, BackspaceErasesToItsLeftAsTheChecklistSays) {
    for (const auto& program : {kNano, kInputBox}) {
        if (!IsInstalled(program[0])) GTEST_SKIP() << program[0] << " is not installed";
        for (const char* term : {"quill", "quill-7"})
            EXPECT_TRUE(BackspaceLeaves("a!c", program, term, "\b")) << term << ScreenText();
        EXPECT_TRUE(BackspaceLeaves("a!c", program, "vt100", "\177")) << ScreenText();
    }
}

TEST(WrongScreen, BackspaceOfDelErasesToItsRightAsQuill) {
    for (const auto& program : {kNano, kInputBox}) {
        if (!IsInstalled(program[0])) GTEST_SKIP() << program[0] << " is not installed";
        for (const char* term : {"quill", "quill-7"})
            EXPECT_TRUE(BackspaceLeaves("ab!", program, term, "\177")) << term << ScreenText();
    }
}

TEST(WrongScreen, ProgramsNameTheTypeThatTheyDoNotKnow) {
    KeyProgram shell("quill", "C", {"bash", "--norc"}, "/", {"PS1=$ ", "TERMINFO=/nowhere"});
    EXPECT_TRUE(shell.Shows("nano\r", "Error opening terminal: quill.")) << ScreenText();
    EXPECT_TRUE(shell.Shows("tput cols\r", "unknown terminal \"quill\"")) << ScreenText();
    EXPECT_TRUE(shell.Shows("export TERM=vt100; echo $(tput cols) columns\r", "80 columns"));
}

// By the sequences that the key table has at first, and by those of its changed rows.
TEST(WrongScreen, ArrowKeysEndAMenuAsVt100) {
    if (!IsInstalled("dialog")) GTEST_SKIP() << "dialog is not installed";
    const std::string menu =
        "dialog --stdout --menu Choose 15 40 8 one first two second three third";
    for (const bool changed : {false, true}) {
        KeyProgram dialog("vt100", "C",
                          {"sh", "-c", "chosen=$(" + menu + "); echo chosen $chosen.; read x"});
        EXPECT_TRUE(dialog.Shows("", "third"));
        if (changed) {
            EXPECT_TRUE(dialog.Shows("<down>\r", "chosen two."));
        } else {
            EXPECT_TRUE(dialog.Shows("\033[B", "chosen .")) << ScreenText();
        }
    }
}

// As in a shell in UTF-8: the key's first byte begins no letter.
TEST(WrongScreen, HomeKeyOf8BitsIsNotTakenByAShellInUtf8) {
    for (const bool right : {false, true}) {
        KeyProgram shell(right ? "quill-7" : "quill", "C.UTF-8", {"bash", "--norc"}, "/",
                         {"PS1=$ ", "INPUTRC=/dev/null"});
        shell.Press("word<home>: ");
        EXPECT_EQ(right, ScreenHas("$ : word")) << ScreenText();
    }
}

TEST(WrongScreen, LineFeedsBelowTheRegionHideTheCursorUntilSane) {
    KeyProgram shell("quill", "C", {"bash", "--norc"}, "/", {"PS1=$ "});
    shell.Press("printf '\\033[1;5r\\033[24;1H\\n\\n\\n'; echo hid''den\r");
    EXPECT_FALSE(ScreenHas("hidden"));
    EXPECT_GT(session.screen.cursor_row, kScreenRows);
    EXPECT_TRUE(shell.Shows("reset -Q; echo sho''wn\r", "shown"));
}

// What LC_ALL=C is for where no locale can be made.
TEST(WrongScreen, TextsOfProgramsArePlainAsciiInTheCLocale) {
    KeyProgram shell("quill", "C", {"bash", "--norc"}, "/", {"PS1=$ ", "LANGUAGE=de"});
    EXPECT_TRUE(shell.Shows("date -d 2026-03-01 +%B.\r", "March.")) << ScreenText();
}
