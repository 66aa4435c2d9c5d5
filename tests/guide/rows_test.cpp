// SPDX-License-Identifier: MIT
// The tables of docs/hosts.md that say what is wrong and what to set. This list names the tests of
// each row. A row without a line here fails, and so does a line whose test does not exist.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "tests/guide/page.h"

namespace {

struct TriedRow {
    const char* first_cell;
    const char* tests;  // the names, separated by blanks
};

// clang-format off
const TriedRow kEndings[] = {
    {"an SSH session ends after some minutes without a key",
     "Endings.ServerThatAsksWhetherTheClientIsThereEndsAnIdleSession Endings.ServerOfTheBoxLeavesAnIdleSessionAlone "
     "Endings.LimitsOfTheServerAreThoseOfThePage"},
    {"any session ends after some minutes at the prompt",
     "Endings.ShellWithATimeLimitEndsASessionAtThePrompt"},
    {"after OK in the sign-on the session is closed",
     "Endings.SignOnThatTakesTooLongEndsWithItsOk Endings.SignOnWithTooManyWrongPasswordsIsClosed "
     "Endings.LimitsOfTheServerAreThoseOfThePage"},
    {"\"Login incorrect\" again and again with SSH-1, and the name was mistyped",
     "Endings.NameMistypedInSsh1IsCorrectedByAnotherConnect"},
    {"\"Connection to the UNIX Host has been closed...\" before the SSH sign-on",
     "Endings.LogOfTheServerShowsWhatIsMissing"},
    {"\"online\" but never \"secure\", no sign-on, nothing on the screen",
     "Endings.ServerWhoseFirstPacketComesWithItsGreetingStaysOnline"},
    {"\"request\" for good, no error", "Endings.SilentHostLeavesARequestPending"},
    {"\"Not possible to create a session to the UNIX Host\"", "Endings.MissingListenerIsReportedAtOnce"},
    {"a fully silent screen in a session", "Silence.LineTypedBlindBringsAnSshSessionBack"},
    {"no key does anything, Ctrl+S was pressed", "Endings.StoppedOutputContinuesWithCtrlQ"},
};

const TriedRow kScreens[] = {
    {"`echo $TERM` is not the type set in the terminal",
     "WrongScreen.TypeOfAStartUpFileOverridesTheTerminals "
     "HostsPage.BusyboxTelnetServerOfTheBoxIsLoggedInToByTheClientsLines"},
    {"`stty size` is not `24 80`", "HostsPage.ProfileSetsSizeAndBackspace"},
    {"in an editor, lines are missing or appear twice after scrolling",
     "WrongScreen.LinesSlipInAnEditorAsVt220 Painter.SeesTheWrongScreensOfVt220 Painter.HasNoWrongScreenAsQuill"},
    {"text blinks, is bold or underlined for no reason; `q` or `5:1m` appears",
     "WrongScreen.ColoursOfATerminalWith256TurnBlinkOn WrongScreen.KeysThatVimSetsAsXtermTurnUnderlineOn "
     "WrongScreen.CursorShapeThatVimSetsLeavesItsLastLetter SequencesPage.ExamplesOfWhatShowsAreTrue"},
    {"`0;anna@stores:` before each prompt", "WrongScreen.TitleSetByThePromptIsShown"},
    {"`Ã©` and the like", "HostsPage.LocaleOfTheBoxBringsAccentsToTheScreenAndFromTheKeys"},
    {"lines and corners are letters like `â`, and then often nothing more",
     "WrongScreen.LinesAreLettersWhereCursesDrawsThemInUtf8 WrongScreen.LinesAreLettersWhereMcDrawsThemInUtf8"},
    {"all text is lines and corners", "Silence.LineTypedBlindBringsAnSshSessionBack"},
    {"every typed letter appears twice", "Silence.LineTypedBlindBringsAnSshSessionBack"},
    {"Enter counts twice", "Silence.LineTypedBlindBringsAnSshSessionBack"},
    {"Backspace shows `^H`, or does nothing",
     "HostsPage.ProfileSetsSizeAndBackspace WrongScreen.BackspaceMustMatchBetweenHostAndKey "
     "WrongScreen.BackspaceErasesToItsLeftAsTheChecklistSays HostsPage.RowOfTheKeyTableSendsDelForBackspace"},
    {"Backspace takes the letter to its right away",
     "WrongScreen.BackspaceOfDelErasesToItsRightAsQuill WrongScreen.BackspaceErasesToItsLeftAsTheChecklistSays"},
    {"arrow keys end a menu",
     "WrongScreen.ArrowKeysEndAMenuAsVt100 Keys.DialogMovesInItsMenuByTheArrows"},
    {"F1 to F4, Home, End and the Page keys do nothing, or show strange letters",
     "Keys.McOpensNoHelpByF1AsQuill Keys.McKnowsAllFunctionKeysAsQuill7 "
     "WrongScreen.HomeKeyOf8BitsIsNotTakenByAShellInUtf8"},
    {"the cursor is below the last line, nothing shows",
     "WrongScreen.LineFeedsBelowTheRegionHideTheCursorUntilSane Silence.OneKeyBringsASessionBack"},
    {"\"unknown terminal type\", \"Error opening terminal: quill.\"",
     "HostsPage.AnotherUserAndAnotherHostAreHelpedByTheirRows WrongScreen.ProgramsNameTheTypeThatTheyDoNotKnow"},
    {"anything else", ""},
};
// clang-format on

std::string SourcesOfTests() {
    std::string sources;
    for (const char* folder : {QUILL_GUIDE, QUILL_GUIDE "/../hosts"}) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            if (entry.path().extension() != ".cpp") continue;
            std::ifstream file(entry.path());
            sources.append(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        }
    }
    return sources;
}

template <size_t kRows>
void ExpectEachTried(const char* heading, const TriedRow (&rows)[kRows]) {
    static const std::string sources = SourcesOfTests();
    std::set<std::string> on_page, listed;
    Page page = ReadPage(QUILL_DOCS "/hosts.md");
    for (const PageRow& row : page.tables[heading]) on_page.insert(row.at(0));
    for (const TriedRow& row : rows) {
        listed.insert(row.first_cell);
        std::istringstream tests(row.tests);
        for (std::string test; tests >> test;) {
            const size_t dot = test.find('.');
            const std::string head = "TEST(" + test.substr(0, dot) + ", " + test.substr(dot + 1);
            EXPECT_NE(sources.find(head + ")"), std::string::npos) << test << " is gone";
        }
    }
    EXPECT_EQ(on_page, listed);
}

TEST(HostsPageRows, OfEndingsAreTried) {
    ExpectEachTried("What ends a session, and what blocks one", kEndings);
}

TEST(HostsPageRows, OfWrongScreensAreTried) {
    ExpectEachTried("When the screen looks wrong", kScreens);
}

// The help page has five lines for it.
TEST(HelpPage, SaysInFiveLinesHowScreensComeOutRight) {
    std::ifstream file(QUILL_RESOURCES "/telnet.htm");
    std::string section;
    bool inside = false;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("<h", 0) == 0)
            inside = line == "<h3>Right screens</h3>";
        else if (inside && !line.empty())
            section += line + "\n";
    }
    EXPECT_LE(std::count(section.begin(), section.end(), '\n'), 5);
    for (const char* needed : {"tic quill.ti", ">quill<", "Term type:", ">vt220d<", ">vt102<",
                               "\\033OA", "stty erase '^H'"})
        EXPECT_NE(section.find(needed), std::string::npos) << needed;
}

}  // namespace
