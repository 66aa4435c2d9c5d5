// SPDX-License-Identifier: MIT
// Doubles of the calls of the terminal window, and the fixture of its tests.
#include "program_double.h"

#include "session/session_ports.h"
#include "settings/settings.h"
#include "terminal/actions.h"
#include "terminal/modes.h"
#include "terminal/screen_buffer.h"
#include "ui/view/input.h"
#include "ui/view/view.h"

std::vector<std::string> program_calls;

void ImportConfigFile(HWND owner) {
    program_calls.push_back(owner == TestWindow() ? "ImportConfigFile" : "ImportConfigFile?");
}
void LoadSettings() { program_calls.push_back("LoadSettings"); }
void RebuildStatusBar() { program_calls.push_back("RebuildStatusBar"); }
void PlaceStatusBar() { program_calls.push_back("PlaceStatusBar"); }
void UpdateStatus() { program_calls.push_back("UpdateStatus"); }
void SessionSend(const BYTE* bytes, int length, int escape) {
    program_calls.push_back("SessionSend " + std::to_string(escape) + " " +
                            std::string(bytes, bytes + length));
}

void SendVirtualKey(int virtual_key) {
    program_calls.push_back(std::string("SendVirtualKey ").append(std::to_string(virtual_key)));
}

static void SetUpSettings() {
    Settings& settings = session.settings;
    settings = {};
    settings.fsize = 16;
    settings.followcursor = 1;
    settings.color_bg = 0xeeeeee;
    settings.color_fg = 0x111111;
    settings.color_bold = 0x222222;
    settings.color_cursor = 0xcccccc;
    memcpy(settings.fname, TEXT("Terminal"), sizeof TEXT("Terminal"));
}

void TerminalWindow::SetUp() {
    ResetGdi();
    session_ports.repaint = RepaintTerminal;
    session_ports.show_changes = ShowChanges;
    session_ports.update_status = UpdateStatus;
    session.view = ViewState{};
    session.screen = ScreenBuffer{};
    session.parser = ParserState{};
    session.modes = TerminalModes{};
    session.split = SplitRegions{};
    session.status_height = 0;
    session.connected = 1;
    SetUpSettings();
    ClearAll();
    TerminalStart();
    ASSERT_TRUE(RegisterClientWindow(nullptr));
    SendToWindow(WM_CREATE);
    SendToWindow(WM_PAINT);
    gdi.drawn.clear();
    gdi.invalidations = 0;
    gdi.invalid.clear();
    gdi.scroll_calls = 0;
    gdi.pens_made = 0;
    gdi.fonts_made.clear();
    program_calls.clear();
}

void TerminalWindow::TearDown() {
    EXPECT_EQ(gdi.faults, Lines{});
    EXPECT_EQ(gdi.open_dcs, 0);
    EXPECT_EQ(gdi.open_paints, 0);
    EXPECT_EQ(LiveObjects("pen"), 0);
    EXPECT_EQ(LiveObjects("brush"), 0);
    EXPECT_LE(LiveObjects("font"), 1);
}

Lines TerminalWindow::Paint() {
    gdi.drawn.clear();
    SendToWindow(WM_PAINT);
    return AllDrawn();
}

Lines TerminalWindow::PaintRow(int row) {
    MarkRow(row);
    Paint();
    return DrawnInRow(row - session.view.view_top, session.view.cell_height);
}

void TerminalWindow::Put(int row, const std::string& text, DWORD attributes) {
    for (size_t i = 0; i < text.size(); ++i) {
        SetCell(row, static_cast<int>(i) + 1, static_cast<BYTE>(text[i]) | attributes);
    }
}

void TerminalWindow::Resize(int width, int height) {
    gdi.window = {0, 0, width, height};
    LayoutTerminal();
    Paint();
}
