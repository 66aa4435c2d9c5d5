// SPDX-License-Identifier: MIT
// Reads the recipes of docs/hosts.md, runs a host with them, and drives the person.
#include "tests/guide/host_page.h"

#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>
#include <QClipboard>
#include <QGuiApplication>
#include <QRegularExpression>
#include <sstream>

#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "ui/view/input.h"

const Page& HostsPage() {
    static const Page page = ReadPage(QUILL_DOCS "/hosts.md");
    return page;
}

int FreePort() { return FakeHost().port; }

std::string Recipe(const std::string& name, const Words& words) {
    const auto found = HostsPage().recipes.find(name);
    if (found == HostsPage().recipes.end()) {
        ADD_FAILURE() << "the page has no recipe " << name;
        return "";
    }
    Words all = {{"ADDRESS", "127.0.0.1"}, {"NAME", "visitor"}, {"PASSWORD", "warehouse7"}};
    all.insert(words.begin(), words.end());
    QString text = QString::fromStdString(found->second);
    for (const auto& [word, value] : all) {
        const QRegularExpression whole("\\b" + QString::fromStdString(word) + "\\b");
        text.replace(whole, QString::fromStdString(value));
    }
    return text.toStdString();
}

std::string UnitValue(const std::string& recipe, const std::string& name) {
    std::istringstream lines(recipe);
    std::string value;
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind(name + "=", 0) == 0) value = line.substr(name.size() + 1);
    }
    EXPECT_FALSE(value.empty()) << name << " has no value";
    return value;
}

// ---------------------------------------------------------------- the machine

MachineFolder::MachineFolder(const std::string& steps) {
    path = (std::filesystem::temp_directory_path() / "quill-guide-XXXXXX").string();
    mkdtemp(path.data());
    std::filesystem::permissions(path, std::filesystem::perms::all);
    std::ofstream(path + "/steps.sh") << steps;
}

MachineFolder::~MachineFolder() { std::filesystem::remove_all(path); }

Machine::Machine(int server_port, const std::string& steps, const QStringList& packages)
    : MachineFolder(steps),
      RealServer(QUILL_GUIDE "/machine.sh", QStringList{QString::number(server_port),
                                                        QString::fromStdString(path + "/steps.sh"),
                                                        QString::fromStdString(path)} +
                                                packages) {}

std::string Machine::Log(const std::string& file) const {
    std::ifstream log(path + "/" + file);
    return {std::istreambuf_iterator<char>(log), std::istreambuf_iterator<char>()};
}

void Machine::Put(const std::string& file, const std::string& bytes) const {
    std::ofstream(path + "/" + file) << bytes;
}

bool Machine::Has(const std::string& file) const {
    return std::filesystem::exists(path + "/" + file);
}

// ---------------------------------------------------------------- the person

void WithConfig(const std::string& lines, const std::function<void()>& person) {
    Stage stage;
    stage.config = lines + "autoconnect = 1\n";
    RunProgram(stage, [&] {
        DismissBox("Quill Telnet: Installing configuration from file \\mconfig.cfg ");
        person();
    });
}

void SignOnWithPassword() {
    const HWND dialog = AwaitDialog("Sign on to the host");
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(TextOf(dialog, IDC_SSH_U), u"visitor") << "from the settings";
    TypeInto(dialog, IDC_SSH_P, u"warehouse7");
    ClickControl(dialog, IDOK);
    ASSERT_TRUE(Closed(dialog));
}

bool ShowsRow(const std::string& row) { return TerminalShows('\n' + row + '\n'); }

static bool IsAtPrompt() { return TerminalRow(session.screen.cursor_row) == "$"; }

static bool AtPrompt() { return Eventually(IsAtPrompt); }

// What is typed while tcsh changes the mode of its line can lose its beginning.
void TypeAtPrompt(const std::string& text) {
    ASSERT_TRUE(AtPrompt()) << TerminalText();
    const int row = session.screen.cursor_row;
    TypeText(text + "\n");
    ASSERT_TRUE(Eventually([&] { return session.screen.cursor_row > row && IsAtPrompt(); }, 20000))
        << TerminalText();
}

void PasteAtPrompt(const std::string& text) {
    ASSERT_TRUE(AtPrompt()) << TerminalText();
    OnWindowThread([&] {
        QGuiApplication::clipboard()->setText(QString::fromStdString(text));
        PasteClipboard();
    });
    TypeText("clear; echo past\"ed\"\n");
    ASSERT_TRUE(Eventually([] { return TerminalText().find("pasted\n$\n") == 0; }, 20000))
        << TerminalText();
}

void RunAtPrompt(const std::string& command, const std::string& row) {
    ASSERT_TRUE(AtPrompt()) << TerminalText();
    ClearAndRun(command);
    EXPECT_TRUE(ShowsRow(row)) << TerminalText();
}
