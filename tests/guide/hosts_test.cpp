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
    const std::string lines = machine.Log("inetd.conf");
    const size_t service = lines.find(" stream tcp4 ");
    EXPECT_EQ(service, lines.rfind(" stream tcp4 ")) << "pasted twice, it is there once\n" << lines;
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

int CountOf(const std::string& text, const std::string& part) {
    int count = 0;
    for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size()) ++count;
    return count;
}

TEST(HostsPage, SerialConsoleBehindTheConsoleServerIsLoggedInTo) {
    const Host host = SerialHost();
    HostMachine machine(host);
    START_OR_SKIP(machine);
    const std::string file = machine.Log("ser2net.yaml"), alone = machine.Log("alone.yaml");
    EXPECT_EQ(CountOf(file, "connection: &quill\n"), 1) << "pasted twice, it is there once\n"
                                                        << file;
    EXPECT_EQ(CountOf(file, "connection: &con0096\n"), 1) << "the file's own stays\n" << file;
    EXPECT_EQ(CountOf(file, "%YAML"), 1) << file;
    EXPECT_EQ(alone.find("%YAML 1.1\n---\nconnection: &quill\n"), 0u) << alone;
    EXPECT_EQ(CountOf(alone, "connection:"), 1) << alone;
    WithConfig(Recipe("telnet-client", host.words()) + Recipe("auto-login"), [] {
        ASSERT_TRUE(Online()) << "the console server speaks first";
        ASSERT_TRUE(TerminalShows("\n$\n")) << TerminalText();
        RunAtPrompt("id -un; echo type=$TERM", "visitor\ntype=quill");
    });
}

TEST(HostsPage, UnitsWaitForTheNetworkAndTryAgain) {
    for (const char* name : {"sshd", "telnetd-busybox"}) {
        const std::string unit = Recipe(name);
        EXPECT_EQ(UnitValue(unit, "Wants"), "network-online.target") << name;
        EXPECT_EQ(UnitValue(unit, "After"), "network-online.target") << name;
        EXPECT_EQ(UnitValue(unit, "Restart"), "on-failure") << name;
        EXPECT_EQ(UnitValue(unit, "RestartSec"), "5") << name;
    }
}

// A unit that runs, or is only loaded, needs each of the three.
TEST(HostsPage, UnitsOfTheBoxesAreReadEnabledAndStartedAnew) {
    std::ifstream file(QUILL_DOCS "/hosts.md");
    const std::string page{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    for (const std::string unit : {"sshd-quill", "telnetd-quill", "serial-getty@LINE"}) {
        const std::string command = "`systemctl daemon-reload && systemctl enable " + unit +
                                    " && systemctl restart " + unit + '`';
        EXPECT_EQ(CountOf(page, command), 1) << command;
    }
    EXPECT_EQ(CountOf(page, "enable --now"), 0) << "which leaves a unit that runs as it is";
}

// The box's last line, on a machine that has started no SSH server yet.
TEST(HostsPage, CheckOfTheSshServersFileMissesAFolderThatTheUnitMakes) {
    Host host = SshHost();
    host.steps = "cat >/mnt/box <<'BOX'\n" + Recipe("sshd", host.words()) +
                 "BOX\nsh </mnt/box >/var/log/first 2>&1 || :\nmkdir -p /run/sshd\n"
                 "sh -e </mnt/box >/var/log/second 2>&1\n";
    HostMachine machine(host);
    START_OR_SKIP(machine);
    EXPECT_EQ(machine.Log("first"), "Missing privilege separation directory: /run/sshd\r\n");
    EXPECT_EQ(machine.Log("second"), "");
}

// ---------------------------------------------------------------- what is pasted at the prompt

// csh puts its own name for it in place of a ~ in some words only.
TEST(HostsPage, BoxesNameTheHomeFolderAsEveryShellDoes) {
    for (const auto& [name, text] : HostsPage().recipes)
        EXPECT_EQ(text.find("~/"), std::string::npos) << name;
}

TEST(HostsPage, UserOfTcshHasTheEntryAfterTheBoxes) {
    Host host = WithoutEntry(SshHost());
    host.packages << "tcsh";
    host.steps =
        "usermod -s /usr/bin/tcsh visitor\n"
        "echo \"set prompt = '$ '\" >/mnt/home/visitor/.cshrc\n" +
        host.steps;
    HostMachine machine(host);
    START_OR_SKIP(machine);
    WithSshSession(host, "", [] {
        TypeText("sh\n");
        PasteAtPrompt(Recipe("entry"));
        PasteAtPrompt(Recipe("csh"));
        PasteAtPrompt(Recipe("csh"));
        PasteAtPrompt(Recipe("locale"));
        for (const char* command : {"exit", "stty erase '^?'", "source .login"})
            TypeAtPrompt(command);
        RunAtPrompt("echo $version | cut -c1-4; grep -c setenv .login; tput cols", "tcsh\n4\n80");
        RunAtPrompt("stty -a | grep -o 'erase = ^H'; echo now=$TERMINFO",
                    "erase = ^H\nnow=/mnt/home/visitor/.terminfo");
        RunAtPrompt("locale charmap; echo $LANG $LOCPATH",
                    "CP1252\nde_DE.CP1252 /mnt/home/visitor/.locale");
        TypeAtPrompt("stty erase '^?'");
        RunAtPrompt("sane | od -An -tx1 -w18; stty -a | grep -o 'erase = ^H'",
                    " f0 1b 5c 1b 63 1b 29 42 1b 5b 31 32 68 1b 5b 32 30 6c\nerase = ^H");
        RunAtPrompt("(source .login) < /dev/null |& wc -c", "0");
        TypeAtPrompt("unsetenv TERMINFO; setenv TERM vt100; source .login");
        RunAtPrompt("env | grep -c TERMINFO", "0");
    });
}

// A host that knows no termcap reads the text as terminfo's tic does.
TEST(HostsPage, TermcapEntryIsPastedByAUser) {
    const Host host = SshHost();
    HostMachine machine(host);
    START_OR_SKIP(machine);
    WithSshSession(host, "", [] {
        PasteAtPrompt(". ~/.profile\n" + Recipe("termcap"));
        PasteAtPrompt(Recipe("termcap"));
        RunAtPrompt("grep -c TERMCAP .profile; echo now=$TERMCAP",
                    "1\nnow=/mnt/home/visitor/.termcap");
        RunAtPrompt(
            "tic -o $HOME/t .termcap; TERMINFO=$HOME/t tput cols; "
            "TERMINFO=$HOME/t tput -T quill-7 khome | cut -c2-",
            "80\n[1~");
        TypeText("infocmp -A $HOME/t -1 quill >read\n");
        RunAtPrompt(
            "grep -cE 'k(end|f1?[0-9]|f20)=' read; grep -c 'acsc=0aaahajjkkllmmnnooppqq' read",
            "21\n1");
    });
}

// bash takes an unquoted name with a blank after > for two.
TEST(HostsPage, BoxesTakeAHomeFolderWithABlank) {
    const Host host = WithoutEntry(SshHost());
    HostMachine machine(host);
    START_OR_SKIP(machine);
    WithSshSession(host, "", [] {
        TypeText("export HOME=\"$HOME/a b\"; mkdir \"$HOME\"; cd\n");
        for (const char* name : {"entry", "csh", "termcap", "profile", "locale"})
            PasteAtPrompt(Recipe(name));
        RunAtPrompt("ls -A | LC_ALL=C sort | tr '\\n' /; echo",
                    ".locale/.login/.profile/.termcap/.terminfo/quill.ti/");
        RunAtPrompt("TERMINFO=; . ./.profile; echo $LANG; echo $TERMINFO; tput cols",
                    "de_DE.CP1252\n/mnt/home/visitor/a b/.terminfo\n80");
    });
}

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
        RunAtPrompt("(. ~/.profile) </dev/null 2>&1 | wc -c", "0");
        ClearAndRun("echo rea\"dy\"; cat");
        ASSERT_TRUE(ShowsRow("ready")) << TerminalText();
        TypeText("wrong\b\b\b\b\bright\n");
        EXPECT_TRUE(ShowsRow("right\nright")) << TerminalText();
        TypeText("\003");
    });
}

// A session with a second user, who reaches the machine as a further host, too.
std::string WithClerk(const Host& host) {
    return "useradd -m -d /mnt/home/clerk -s /bin/bash clerk\necho clerk:warehouse7 | chpasswd\n"
           "echo \"PS1='$ '\" >/mnt/home/clerk/.profile\n"
           "chmod o+rx /mnt/home/visitor\n"
           "echo 'visitor ALL=(ALL) NOPASSWD: ALL' >/etc/sudoers.d/visitor\n"
           "mkdir /mnt/home/visitor/.ssh /mnt/home/clerk/.ssh\n"
           "ssh-keygen -q -t rsa -N '' -f /mnt/home/visitor/.ssh/id_rsa\n"
           "cp /mnt/home/visitor/.ssh/id_rsa.pub /mnt/home/clerk/.ssh/authorized_keys\n"
           "cat >/mnt/home/visitor/.ssh/config <<'END'\nHost further\nHostName 127.0.0.1\n"
           "User clerk\nStrictHostKeyChecking no\nLogLevel ERROR\nMACs hmac-sha1\n"
           "HostKeyAlgorithms ssh-dss\nKexAlgorithms diffie-hellman-group1-sha1\n"
           "Ciphers 3des-cbc\nPort " +
           std::to_string(host.port) +
           "\nEND\n"
           "chown -R visitor /mnt/home/visitor/.ssh\nchown -R clerk /mnt/home/clerk/.ssh\n";
}

// The remedies of the page's table: what is typed is in backticks.
std::vector<std::string> RemediesFor(const std::string& way) {
    for (const PageRow& row : HostsPage().tables.at("Another user, another host")) {
        if (row.at(0) == way) return CodeOf(row.at(1));
    }
    ADD_FAILURE() << "the table has no row " << way;
    return {"", ""};
}

std::string Replaced(std::string text, const std::string& word, const std::string& by) {
    const size_t at = text.find(word);
    EXPECT_NE(at, std::string::npos) << word << " is not in " << text;
    return at == std::string::npos ? text : text.replace(at, word.size(), by);
}

const char kKnows[] = "tput cols 2>&1 | sed 's/.*unknown.*/unknown/'";

// Without `clear`, which needs the entry.
void ExpectHere(const std::string& command, const std::string& row) {
    TypeText("printf '\\033[H\\033[2J'\n");
    ASSERT_TRUE(Eventually([] { return TerminalRow(1) == "$"; })) << TerminalText();
    TypeText(command + "\n");
    EXPECT_TRUE(ShowsRow(row)) << command << TerminalText();
}

bool AtNewPrompt() {
    return Eventually([] { return TerminalRow(session.screen.cursor_row) == "$"; });
}

void BecomeClerk() {
    TypeText("su - clerk\n");
    ASSERT_TRUE(TerminalShows("Password:")) << TerminalText();
    TypeText("warehouse7\n");
    ASSERT_TRUE(AtNewPrompt()) << TerminalText();
    ExpectHere(kKnows, "unknown");
}

void GoToTheFurtherHost(const std::string& command) {
    TypeText(command + "\n");
    ASSERT_TRUE(TerminalShows(command + "\n")) << TerminalText();
    ASSERT_TRUE(AtNewPrompt()) << TerminalText();
    ExpectHere("echo $USER is there", "clerk is there");
}

void LeaveThere() {
    TypeText("exit\n");
    ASSERT_TRUE(TerminalShows("logout")) << TerminalText();
    ASSERT_TRUE(AtNewPrompt()) << TerminalText();
}

TEST(HostsPage, AnotherUserAndAnotherHostAreHelpedByTheirRows) {
    Host host = SshHost();
    host.packages << "openssh-client"
                  << "sudo";
    host.steps = WithClerk(host) + host.steps;
    HostMachine machine(host);
    START_OR_SKIP(machine);
    WithSshSession(host, "", [] {
        ExpectHere(". ~/.profile; " + std::string(kKnows), "80");
        const std::vector<std::string> sudo = RemediesFor("`sudo`");
        ExpectHere(Replaced(sudo.at(1), "PROGRAM", kKnows), "unknown");
        ExpectHere(Replaced(sudo.at(0), "PROGRAM", kKnows), "80");
        BecomeClerk();
        TypeText(RemediesFor("any of them").at(0) + "\n");
        ExpectHere(kKnows, "80");
        LeaveThere();
        BecomeClerk();
        TypeText(Replaced(RemediesFor("`su -`").at(0), "/home/NAME", "/mnt/home/visitor") + "\n");
        ExpectHere(kKnows, "80");
        LeaveThere();
        const std::string ssh = RemediesFor("`ssh`").at(0);
        GoToTheFurtherHost(Replaced(ssh, "HOST", "further"));
        ExpectHere(kKnows, "80");
        LeaveThere();
        GoToTheFurtherHost("ssh further");
        ExpectHere(kKnows, "unknown");
        PasteAtPrompt(Recipe("entry"));
        ExpectHere(kKnows, "80");
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
        std::string french = Recipe("locale");
        french.replace(french.find("de_DE"), 5, "fr_FR");
        PasteAtPrompt(french);
        RunAtPrompt("(. ~/.profile; date -d 2026-03-01 +%B)", "mars");
        PasteAtPrompt(Recipe("locale"));
        PasteAtPrompt(Recipe("locale"));
        RunAtPrompt("grep -c LOCPATH/chosen ~/.profile", "1");
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

TEST(HostsPage, EditorsAndPagersShowTheEuroAsThePageSays) {
    const Host host = SshHost();
    HostMachine machine(host);
    START_OR_SKIP(machine);
    const std::string letters =
        "Gr\xFC\xDF"
        "e ";
    machine.Put("euro", letters + "\x80 5\n");
    machine.Put("vimrc", Recipe("vim"));
    WithSshSession(host, "", [&] {
        PasteAtPrompt(Recipe("locale"));
        TypeText(". ~/.profile; cd /var/log\n");
        const auto shows = [&](const std::string& program, const std::string& euro,
                               const char* end) {
            ClearAndRun(program + " euro");
            EXPECT_TRUE(TerminalShows(letters + euro + " 5\n")) << program << TerminalText();
            TypeText(end);
            ASSERT_TRUE(AtNewPrompt()) << program << TerminalText();
        };
        shows("vim -u NONE -i NONE -n", "~@", ":q!\n");
        shows("vim -u vimrc -i NONE -n", "\x80", ":q!\n");
        shows("nano -I", "^`", "\x18");
        shows("less", "\x80", "q");
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
