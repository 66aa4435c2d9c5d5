// SPDX-License-Identifier: MIT
// Runs the recipes of docs/hosts.md: they set up current servers, their lines of mconfig.cfg open
// sessions, and their commands are pasted at the host's prompt.
#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>

#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/guide/host_page.h"
#include "tests/guide/host_steps.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace {

// A test runs each recipe: its name is in a call of Recipe in one of these files.
TEST(HostsPage, EveryRecipeIsRun) {
    std::string sources;
    for (const auto& entry : std::filesystem::directory_iterator(QUILL_GUIDE)) {
        if (entry.path().extension() != ".cpp") continue;
        std::ifstream file(entry.path());
        sources.append(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    EXPECT_GE(HostsPage().recipes.size(), 15u);
    for (const auto& [name, text] : HostsPage().recipes) {
        EXPECT_NE(text, "") << name << " is empty";
        EXPECT_NE(sources.find("Recipe(\"" + name + "\""), std::string::npos)
            << name << " is run by no test";
    }
}

// ---------------------------------------------------------------- servers

TEST(HostsPage, SshServerOfTheBoxTakesASessionOfTheClientsLines) {
    const Host host = SshHost();
    HostMachine machine(host);
    START_OR_SKIP(machine);
    WithSshSession(host, "", [] {
        EXPECT_EQ(StatusText().substr(0, 10), "    secure");
        RunAtPrompt("id -un; echo type=$TERM; stty size", "visitor\ntype=quill\n24 80");
    });
}

TEST(HostsPage, InetdsTelnetServerOfTheBoxIsLoggedInToByTheClientsLines) {
    const Host host = InetdHost();
    HostMachine machine(host);
    START_OR_SKIP(machine);
    WithTelnetSession(host, "",
                      [] { RunAtPrompt("id -un; echo type=$TERM", "visitor\ntype=quill"); });
}

TEST(HostsPage, BusyboxTelnetServerOfTheBoxIsLoggedInToByTheClientsLines) {
    const Host host = BusyboxHost();
    HostMachine machine(host);
    START_OR_SKIP(machine);
    WithTelnetSession(host, "",
                      [] { RunAtPrompt("id -un; echo type=$TERM", "visitor\ntype=quill"); });
}

TEST(HostsPage, SerialConsoleBehindTheConsoleServerIsLoggedInTo) {
    const Host host = SerialHost();
    HostMachine machine(host);
    START_OR_SKIP(machine);
    WithConfig(Recipe("telnet-client", host.words()) + Recipe("auto-login"), [] {
        ASSERT_TRUE(Online()) << "the console server speaks first";
        ASSERT_TRUE(TerminalShows("\n$\n")) << TerminalText();
        RunAtPrompt("id -un; echo type=$TERM", "visitor\ntype=quill");
    });
}

// ---------------------------------------------------------------- what is pasted at the prompt

TEST(HostsPage, EntryIsPastedAndCompiledByAUserWithoutRoot) {
    const Host host = WithoutEntry(SshHost());
    HostMachine machine(host);
    START_OR_SKIP(machine);
    WithSshSession(host, "", [] {
        PasteAtPrompt(Recipe("entry"));
        RunAtPrompt("tput cols; infocmp -1 | grep -c il1=; infocmp -1 | grep -c 'il='", "80\n1\n0");
        RunAtPrompt("ls ~/.terminfo/q | head -n 1; tic -c ~/quill.ti 2>&1 | wc -l", "quill\n0");
        PasteAtPrompt(Recipe("entry"));
        RunAtPrompt("grep -c TERMINFO ~/.profile; echo now=$TERMINFO",
                    "1\nnow=/mnt/home/visitor/.terminfo");
        RunAtPrompt(
            "unset TERMINFO; for t in quill quill-7 vt100 xterm; do TERM=$t sh -c "
            "'. ~/.profile; echo $TERM=$TERMINFO; tput cols'; done",
            "quill=/mnt/home/visitor/.terminfo\n80\n"
            "quill-7=/mnt/home/visitor/.terminfo\n80\n"
            "vt100=\n80\nxterm=\n80");
    });
}

// The page has the entry without its comments, and with blanks for tabs, which a shell completes.
TEST(HostsPage, EntryOfThePageIsTheProjects) {
    std::ifstream file(QUILL_RESOURCES "/quill.ti");
    if (!file.is_open()) GTEST_SKIP() << "there is no resources/quill.ti";
    std::string expected;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        if (line[0] == '\t') line.replace(0, 1, "    ");
        expected += line + '\n';
    }
    const std::string recipe = Recipe("entry");
    const size_t start = recipe.find("'END'\n") + 6;
    EXPECT_EQ(recipe.substr(start, recipe.find("\nEND\n") + 1 - start), expected)
        << "docs/hosts_entry.sh puts it there";
    EXPECT_EQ(recipe.find('\t'), std::string::npos);
    EXPECT_EQ(recipe.find('!'), std::string::npos) << "which a shell takes for its history";
}

TEST(HostsPage, ProfileSetsSizeAndBackspace) {
    const Host host = BusyboxHost();
    HostMachine machine(host);
    START_OR_SKIP(machine);
    WithTelnetSession(host, "", [] {
        RunAtPrompt("stty size", "0 0");
        PasteAtPrompt(Recipe("profile"));
        PasteAtPrompt(Recipe("profile"));
        RunAtPrompt("grep -c 'sane()' ~/.profile", "1");
        for (const char* type : {"quill", "quill-7"}) {
            RunAtPrompt("stty rows 5 erase '^?'; TERM=" + std::string(type) +
                            "; . ~/.profile; stty size; stty -a | grep -o 'erase = ^H'",
                        "24 80\nerase = ^H");
        }
        RunAtPrompt("stty rows 5; (TERM=vt100; . ~/.profile; stty size); stty rows 24", "5 80");
        ClearAndRun("echo rea\"dy\"; cat");
        ASSERT_TRUE(ShowsRow("ready")) << TerminalText();
        TypeText("wrong\b\b\b\b\bright\n");
        EXPECT_TRUE(ShowsRow("right\nright")) << TerminalText();
        TypeText("\003");
    });
}

// The row BACKSPACE of the page Keyboard, for hosts that expect DEL.
TEST(HostsPage, RowOfTheKeyTableSendsDelForBackspace) {
    for (const bool changed : {false, true}) {
        FakeHost host;
        const std::string lines =
            "host = \"127.0.0.1\"\nport = " + std::to_string(host.port) + "\n";
        WithConfig(lines + (changed ? "key39 = \"\\177\"\n" : ""), [&] {
            ASSERT_TRUE(host.Accept());
            host.Send("hello");
            ASSERT_TRUE(TerminalShows("hello"));
            PressKey(Qt::Key_Backspace);
            EXPECT_EQ(host.Read(1), changed ? "\177" : "\b");
        });
    }
}

TEST(HostsPage, LocaleOfTheBoxBringsAccentsToTheScreenAndFromTheKeys) {
    const Host host = SshHost();
    HostMachine machine(host);
    START_OR_SKIP(machine);
    machine.Put("notes.txt",
                "Gr\xC3\xBC\xC3\x9F"
                "e \xE2\x82\xAC 5\n");
    WithSshSession(host, "", [] {
        RunAtPrompt("cat /var/log/notes.txt",
                    "Gr\xC3\xBC\xC3\x9F"
                    "e \xE2\x82\xAC 5");
        PasteAtPrompt(Recipe("locale"));
        PasteAtPrompt(Recipe("locale"));
        RunAtPrompt("grep -c CP1252 ~/.profile", "1");
        RunAtPrompt(
            "for t in quill quill-7 vt100; do TERM=$t LC_ALL=C sh -c "
            "'. ~/.profile; locale charmap'; done",
            "CP1252\nCP1252\nANSI_X3.4-1968");
        RunAtPrompt(". ~/.profile; locale charmap; date -d 2026-03-01 +%B", "CP1252\nM\xE4rz");
        RunAtPrompt("LC_ALL=C date -d 2026-03-01 +%B", "March");
        ClearAndRun("x=\xFC; echo ${#x}; cp /var/log/notes.txt .");
        EXPECT_TRUE(ShowsRow("1")) << TerminalText();
        ClearAndRun(Recipe("iconv").substr(0, Recipe("iconv").size() - 1));
        EXPECT_TRUE(
            ShowsRow("Gr\xFC\xDF"
                     "e \x80 5"))
            << TerminalText();
    });
}

// ---------------------------------------------------------------- settings

TEST(HostsPage, TerminalTypeOfTheLineIsTheOneOfTheDialog) {
    const std::string root = FreshRoot();
    RunProgram({.root = root, .config = Recipe("terminal-type")}, [] {
        DismissBox("Quill Telnet: Installing configuration from file \\mconfig.cfg ");
        const HWND sheet = OpenDialog(IDM_PROPERTIES, "Properties");
        EXPECT_EQ(TextOf(PageOf(sheet), IDC_TERMTYPE), u"quill");
        ClickControl(sheet, IDOK);
        EXPECT_TRUE(Closed(sheet));
    });
}

// For each row of the page's table: the prompts are answered, a greeting with the words is not.
TEST(HostsPage, PromptsOfTheTableAreAnswered) {
    const auto rows = HostsPage().tables.find("Automatic login");
    ASSERT_NE(rows, HostsPage().tables.end());
    EXPECT_EQ(rows->second.size(), 7u);
    for (const PageRow& row : rows->second) {
        SCOPED_TRACE(row[0]);
        const std::string first = CodeOf(row[0]).at(0), second = CodeOf(row[2]).at(0);
        FakeHost host;
        const std::string lines = "host = \"127.0.0.1\"\nport = " + std::to_string(host.port) +
                                  "\nsear1 = \"" + CodeOf(row[1]).at(0) +
                                  "\"\nresp1 = \"anna\\015\"\nsear2 = \"" + CodeOf(row[3]).at(0) +
                                  "\"\nresp2 = \"secret\\015\"\n";
        WithConfig(lines, [&] {
            ASSERT_TRUE(host.Accept());
            host.Send("stores: login with your staff number\r\n\r\n");
            ASSERT_TRUE(TerminalShows("staff number"));
            EXPECT_EQ(host.ReadSome(50), "") << "a greeting is not answered";
            host.Send(first);
            EXPECT_EQ(host.Read(5), "anna\r");
            host.Send("anna\r\n" + second);
            EXPECT_EQ(host.Read(7), "secret\r");
            host.Send("\r\nLast login: today\r\n" + first);
            EXPECT_TRUE(TerminalShows("today"));
            EXPECT_EQ(host.ReadSome(100), "") << "each pair answers once";
        });
    }
}

}  // namespace
