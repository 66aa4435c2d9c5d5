// SPDX-License-Identifier: MIT
// Calls of the running program to the windows, the registry and the events, where the linker leads
// them through this file. They show what no screen does.
#include <gtest/gtest.h>
#include <QKeyEvent>
#include <QToolButton>

#include "app/start_up.h"
#include "connection/connection.h"
#include "platform/qt/services/services.h"
#include "platform/qt/shell/shell.h"
#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/settings.h"
#include "tests/app/soft_keyboard.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"
#include "ui/main_window.h"
#include "ui/view/input.h"
#include "ui/view/view.h"

namespace {

const std::u16string kMainClass = u"TELNET";

struct SipCall {
    UINT action, parameter, flags;
    SIPINFO info;
};
std::vector<SipCall> g_sip_calls;
std::vector<int> g_main_heights;
HINSTANCE g_class_instance = nullptr;
bool g_closed_registry = false, g_full_lists = false;
int g_written = 0;
std::vector<WPARAM> g_rows_with_data;
std::u16string g_last_face;
std::atomic<int> g_waits_of_the_thread{0};

}  // namespace

BOOL RealRegister(const WNDCLASSW* wanted) asm("__real__Z14RegisterClassWPK9WNDCLASSW");
BOOL SeenRegister(const WNDCLASSW* wanted) asm("__wrap__Z14RegisterClassWPK9WNDCLASSW");
BOOL SeenRegister(const WNDCLASSW* wanted) {
    if (wanted->lpszClassName == kMainClass) g_class_instance = wanted->hInstance;
    return RealRegister(wanted);
}

BOOL RealSip(UINT action, UINT parameter, LPVOID info, UINT flags) asm("__real__Z9SHSipInfojjPvj");
BOOL SeenSip(UINT action, UINT parameter, LPVOID info, UINT flags) asm("__wrap__Z9SHSipInfojjPvj");
BOOL SeenSip(UINT action, UINT parameter, LPVOID info, UINT flags) {
    const BOOL result = RealSip(action, parameter, info, flags);
    g_sip_calls.push_back({action, parameter, flags, *static_cast<SIPINFO*>(info)});
    return result;
}

#define CREATE_WINDOW "_Z15CreateWindowExWjPKDsS0_jiiiiP11SliceWindowP9SliceMenuP11SliceModulePv"
HWND RealCreate(DWORD ex_style, LPCWSTR name, LPCWSTR title, DWORD style, int x, int y, int width,
                int height, HWND parent, HMENU menu, HINSTANCE instance,
                LPVOID parameter) asm("__real_" CREATE_WINDOW);
HWND SeenCreate(DWORD ex_style, LPCWSTR name, LPCWSTR title, DWORD style, int x, int y, int width,
                int height, HWND parent, HMENU menu, HINSTANCE instance,
                LPVOID parameter) asm("__wrap_" CREATE_WINDOW);
HWND SeenCreate(DWORD ex_style, LPCWSTR name, LPCWSTR title, DWORD style, int x, int y, int width,
                int height, HWND parent, HMENU menu, HINSTANCE instance, LPVOID parameter) {
    if (name == kMainClass) g_main_heights.push_back(height);
    return RealCreate(ex_style, name, title, style, x, y, width, height, parent, menu, instance,
                      parameter);
}

#define CREATE_KEY "_Z15RegCreateKeyExWP8SliceKeyPKDsjPDsjjPvPS0_Pj"
LONG RealCreateKey(HKEY key, LPCWSTR name, DWORD reserved, LPWSTR type, DWORD options, DWORD access,
                   LPVOID security, HKEY* result, DWORD* made) asm("__real_" CREATE_KEY);
LONG SeenCreateKey(HKEY key, LPCWSTR name, DWORD reserved, LPWSTR type, DWORD options, DWORD access,
                   LPVOID security, HKEY* result, DWORD* made) asm("__wrap_" CREATE_KEY);
LONG SeenCreateKey(HKEY key, LPCWSTR name, DWORD reserved, LPWSTR type, DWORD options, DWORD access,
                   LPVOID security, HKEY* result, DWORD* made) {
    if (g_closed_registry) return ERROR_ACCESS_DENIED;
    return RealCreateKey(key, name, reserved, type, options, access, security, result, made);
}

#define SET_VALUE "_Z14RegSetValueExWP8SliceKeyPKDsjjPKhj"
LONG RealSetValue(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                  DWORD size) asm("__real_" SET_VALUE);
LONG SeenSetValue(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                  DWORD size) asm("__wrap_" SET_VALUE);
LONG SeenSetValue(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                  DWORD size) {
    ++g_written;
    return g_closed_registry ? ERROR_ACCESS_DENIED
                             : RealSetValue(key, name, reserved, type, data, size);
}

#define SEND_ITEM "_Z19SendDlgItemMessageWP11SliceWindowijml"
LRESULT RealSendItem(HWND dialog, int id, UINT message, WPARAM wparam,
                     LPARAM lparam) asm("__real_" SEND_ITEM);
LRESULT SeenSendItem(HWND dialog, int id, UINT message, WPARAM wparam,
                     LPARAM lparam) asm("__wrap_" SEND_ITEM);
LRESULT SeenSendItem(HWND dialog, int id, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == LB_SETITEMDATA) g_rows_with_data.push_back(wparam);
    constexpr LRESULT kNoSpace = -2;
    if (message == LB_ADDSTRING && g_full_lists) return kNoSpace;
    return RealSendItem(dialog, id, message, wparam, lparam);
}

HFONT RealFont(const LOGFONTW* font) asm("__real__Z19CreateFontIndirectWPK8LOGFONTW");
HFONT SeenFont(const LOGFONTW* font) asm("__wrap__Z19CreateFontIndirectWPK8LOGFONTW");
HFONT SeenFont(const LOGFONTW* font) {
    g_last_face = font->lfFaceName;
    return RealFont(font);
}

DWORD RealWait(HANDLE handle, DWORD patience) asm("__real__Z19WaitForSingleObjectP11SliceHandlej");
DWORD SeenWait(HANDLE handle, DWORD patience) asm("__wrap__Z19WaitForSingleObjectP11SliceHandlej");
DWORD SeenWait(HANDLE handle, DWORD patience) {
    if (handle == session.handed_back) ++g_waits_of_the_thread;
    return RealWait(handle, patience);
}

namespace {

bool Started() {
    return Eventually([] { return session.accelerators != nullptr; });
}

}  // namespace

TEST(StartEdges, TheMainWindowIsAsHighAsTheDesktopWithoutTheMenuBar) {
    g_sip_calls.clear();
    g_main_heights.clear();
    RunProgram({}, [] {
        ASSERT_TRUE(Started());
        OnWindowThread([] {
            ASSERT_FALSE(g_sip_calls.empty());
            const SipCall& first = g_sip_calls[0];
            EXPECT_EQ(UINT{SPI_GETSIPINFO}, first.action);
            EXPECT_EQ(0u, first.parameter);
            EXPECT_EQ(0u, first.flags);
            const RECT& desktop = first.info.rcVisibleDesktop;
            EXPECT_EQ(std::vector<int>{desktop.bottom - desktop.top - 26}, g_main_heights);
        });
    });
}

TEST(StartEdges, TheMainWindowsClassBelongsToTheProgram) {
    RunProgram({}, [] {
        ASSERT_TRUE(Started());
        OnWindowThread([] {
            const auto instance = reinterpret_cast<HINSTANCE>(UINT_PTR{0x1230});
            InitApplication(instance);
            EXPECT_EQ(instance, g_class_instance);
        });
    });
}

TEST(StartEdges, NothingIsWrittenToAKeyThatCannotBeOpened) {
    RunProgram({}, [] {
        ASSERT_TRUE(Started());
        OnWindowThread([] {
            g_written = 0;
            g_closed_registry = true;
            WriteNumber(TEXT("port"), 23);
            g_closed_registry = false;
            EXPECT_EQ(0, g_written);
            WriteNumber(TEXT("port"), 23);
            EXPECT_EQ(1, g_written);
        });
    });
}

TEST(StartEdges, AFaceThatTheListCannotHoldGetsNoData) {
    RunProgram({}, [] {
        ASSERT_TRUE(Started());
        OnWindowThread([] {
            OnNextDialog([] { ClickControl(IDCANCEL); });
            g_rows_with_data.clear();
            g_full_lists = true;
            RunCommand(IDM_FONT);
            g_full_lists = false;
            EXPECT_TRUE(g_rows_with_data.empty());
            OnNextDialog([] { ClickControl(IDCANCEL); });
            RunCommand(IDM_FONT);
            EXPECT_EQ(static_cast<size_t>(session.view.face_count), g_rows_with_data.size());
        });
    });
}

TEST(StartEdges, AFaceBehindTheLastOneIsNotChosen) {
    RunProgram({}, [] {
        ASSERT_TRUE(Started());
        OnWindowThread([] {
            ViewState& view = session.view;
            ASSERT_LT(view.face_count, kMaxFontFaces);
            view.faces[view.face_count] = view.faces[0];
            lstrcpyW(view.faces[view.face_count].font.lfFaceName, u"Ghost Mono");
            lstrcpyW(session.settings.fname, u"Ghost Mono");
            CreateTerminalFont();
            EXPECT_EQ(view.faces[0].font.lfFaceName, g_last_face);
        });
    });
}

TEST(StartEdges, AKeyThatIsPressedOfflineIsNotTaken) {
    RunProgram({}, [] {
        ASSERT_TRUE(Started());
        OnWindowThread([] {
            OnKeyDown(VK_F1);
            EXPECT_EQ(0, session.key_taken);
        });
    });
}

// ---------------------------------------------------------------- sessions

TEST(StartEdges, WhileTheHostIsSilentTheThreadWaitsForTheSocketAlone) {
    FakeHost host;
    WithSession(host, [] {
        ASSERT_TRUE(Eventually([] { return session.receive_ready == 1; }));
        Sleep(300);  // longer than a wait that had begun before
        g_waits_of_the_thread = 0;
        Sleep(700);
        EXPECT_EQ(0, g_waits_of_the_thread.load());
    });
}

TEST(StartEdges, ASessionThatWasJustClosedIsFollowedByANewOne) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] {
            SessionClose();
            SessionConnect();
        });
        EXPECT_EQ("", AwaitBox(200));
        ASSERT_TRUE(host.Accept());
        host.Send("again");
        EXPECT_TRUE(TerminalShows("again"));
    });
}

// ---------------------------------------------------------------- the command bar

TEST(CommandBarEdges, ItsButtonsNeverGetTheFocus) {
    RunProgram({}, [] {
        ASSERT_TRUE(Started());
        OnWindowThread([] {
            const QWidget* bar = FindWindowRecord(session.command_bar)->widget;
            const auto buttons = bar->findChildren<QToolButton*>();
            EXPECT_FALSE(buttons.isEmpty());
            for (const QToolButton* button : buttons) EXPECT_EQ(Qt::NoFocus, button->focusPolicy());
        });
    });
}

TEST(CommandBarEdges, AStripThatIsMissingOrTooSmallHasNoPictures) {
    constexpr int kSide = 16, kPastePicture = 1542, kNone = 9999;
    RunProgram({}, [] {
        ASSERT_TRUE(Started());
        OnWindowThread([] {
            const auto add = [](int id, int count) {
                return CommandBar_AddBitmap(session.command_bar, nullptr, id, count, kSide, kSide);
            };
            EXPECT_EQ(-1, add(kNone, 1));
            EXPECT_EQ(-1, add(kPastePicture, 2));
            EXPECT_LE(0, add(kPastePicture, 1));
        });
    });
}

// ---------------------------------------------------------------- the input panel

namespace {

class KeyTexts : public QObject {
  public:
    std::vector<std::string> texts;

  protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::KeyPress)
            texts.push_back(static_cast<QKeyEvent*>(event)->text().toStdString());
        return QObject::eventFilter(object, event);
    }
};

class Hides : public QObject {
  public:
    int count = 0;

  protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        count += event->type() == QEvent::Hide;
        return QObject::eventFilter(object, event);
    }
};

void ShowPanel() {
    OnWindowThread([] { ShowInputPanel(true); });
    EXPECT_TRUE(Eventually([] { return session.input_panel_up == 1; }));
}

}  // namespace

TEST(InputPanelEdges, KeysOfSignsAreEquallyWideAndRepeatAtThePaceOfAKeyboard) {
    RunProgram({}, [] {
        ASSERT_TRUE(Started());
        ShowPanel();
        OnWindowThread([] {
            const int width = KeyLabelled("1")->width();
            for (const char* label : {"2", "9", "0", "-", "=", "q"}) {
                EXPECT_NEAR(width, KeyLabelled(label)->width(), 1) << label;
                EXPECT_EQ(60, KeyLabelled(label)->autoRepeatInterval()) << label;
            }
        });
    });
}

TEST(InputPanelEdges, KeysThatTypeNoSignHaveTheTextOfAKeyboard) {
    RunProgram({}, [] {
        ASSERT_TRUE(Started());
        ShowPanel();
        OnWindowThread([] {
            KeyTexts keys;
            QWidget* target = QApplication::focusWidget();
            ASSERT_NE(nullptr, target);
            target->installEventFilter(&keys);
            for (const char* label : {"Enter", "Tab", "Bksp", "Esc"}) KeyLabelled(label)->click();
            QCoreApplication::sendPostedEvents();
            EXPECT_EQ((std::vector<std::string>{"\r", "\t", "\b", "\033"}), keys.texts);
        });
    });
}

TEST(InputPanelEdges, ADialogOverThePanelLeavesItAsItIs) {
    RunProgram({}, [] {
        ASSERT_TRUE(Started());
        ShowPanel();
        OnWindowThread([] {
            Hides hides;
            ShellInputPanel()->installEventFilter(&hides);
            QWidget dialog(DeviceScreen(), Qt::Tool);
            const QPoint corner = DeviceScreen()->mapToGlobal(InputPanelPlace().topLeft());
            dialog.setGeometry(QRect(corner, QSize(100, 50)));
            LendInputPanel(&dialog);
            EXPECT_EQ(0, hides.count);
            EXPECT_TRUE(ShellInputPanel()->isVisible());
        });
    });
}
