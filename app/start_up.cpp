// SPDX-License-Identifier: MIT
// The program's entry point: it brings a running instance to the front or else starts the program,
// and saves the settings at the end.
#include "app/start_up.h"

#include "connection/connection.h"
#include "protocol/protocols.h"
#include "resources/resource_ids.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "settings/settings.h"
#include "terminal/screen_buffer.h"
#include "ui/dialogs/dialogs.h"
#include "ui/main_window.h"
#include "ui/view/view.h"

constexpr int kMenuBarPixels = 26;
constexpr UINT kTimerId = 1;
constexpr UINT kTimerMilliseconds = 1000;

static bool HandOverToFirstInstance() {
    const HWND first = FindWindowW(TEXT("TELNET"), nullptr);
    if (!first) return false;
    SetForegroundWindow(first);
    ShowWindow(first, SW_SHOW);
    SendMessageW(first, WM_PAINT, 0, 0);
    return true;
}

static void FillPorts() {
    session_ports = {
        .repaint = RepaintTerminal,
        .show_changes = ShowChanges,
        .update_status = UpdateStatus,
        .rebuild_menu_bar = RebuildMenuBar,
        .ask_sign_on = AskSignOn,
        .close_session = SessionClose,
        .send = SendSessionData,
    };
}

static void FindColorDialog() {
    session.common_dialogs = LoadLibraryW(TEXT("COMMDLG.DLL"));
    if (!session.common_dialogs) return;
    session.choose_color = reinterpret_cast<ChooseColorProcedure>(
        reinterpret_cast<void*>(GetProcAddressW(session.common_dialogs, TEXT("ChooseColor"))));
}

static BOOL RegisterMainWindow(HINSTANCE instance) {
    WNDCLASSW main_class = {};
    main_class.style = CS_DBLCLKS;
    main_class.lpfnWndProc = MainWindowProcedure;
    main_class.hInstance = instance;
    main_class.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    main_class.lpszClassName = TEXT("TELNET");
    return RegisterClassW(&main_class) != 0;
}

static int StartSockets() {
    WSADATA data;
    if (WSAStartup(MAKEWORD(1, 1), &data) == 0) return 1;
    ShowError(TEXT("cannot find WinSock DLL. Maybe TCP/IP is missing"));
    return 0;
}

static int RunMessageLoop() {
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0)) {
        if (TranslateAcceleratorW(session.main_window, session.accelerators, &message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return static_cast<int>(message.wParam);
}

static int RunSessions() {
    if (session.settings.autoconnect == 1) {
        SessionConnect();
        RebuildMenuBar();
    }
    const int result = RunMessageLoop();
    SessionClose();
    EndReceiving();
    ForgetSshSession();
    WSACleanup();
    return result;
}

int InitApplication(HINSTANCE instance) {
    InitCommonControls();
    if (!RegisterMainWindow(instance)) return 1;
    if (!RegisterClientWindow(instance)) return 2;
    FindColorDialog();
    return 0;
}

HWND InitInstance(HINSTANCE instance, int show) {
    session.instance = instance;
    SIPINFO sip = {};
    sip.cbSize = sizeof(sip);
    SHSipInfo(SPI_GETSIPINFO, 0, &sip, 0);
    const RECT& desktop = sip.rcVisibleDesktop;
    const int reduction = sip.fdwFlags & SIPF_ON ? 0 : kMenuBarPixels;
    const HWND window = CreateWindowExW(0, TEXT("TELNET"), TEXT("Quill TELNET"), WS_VISIBLE,
                                        CW_USEDEFAULT, CW_USEDEFAULT, desktop.right - desktop.left,
                                        desktop.bottom - desktop.top - reduction, nullptr, nullptr,
                                        instance, nullptr);
    if (!window) return nullptr;
    ShowWindow(window, show);
    UpdateWindow(window);
    if (session.command_bar) CommandBar_Show(session.command_bar, TRUE);
    SetTimer(window, kTimerId, kTimerMilliseconds, nullptr);
    return window;
}

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPWSTR, int show) {
    if (HandOverToFirstInstance()) return 0;
    FillPorts();
    if (const int failure = InitApplication(instance)) return failure;
    ClearAll();
    std::memset(session.custom_colors, 0, sizeof(session.custom_colors));
    if (!InitInstance(instance, show)) return 16;
    session.accelerators = LoadAcceleratorsW(instance, MAKEINTRESOURCE(IDR_ACCELERATORS));
    int result = 0;
    if (StartSockets()) result = RunSessions();
    if (session.save_settings == 1) SaveSettings();
    return result;
}
