// SPDX-License-Identifier: MIT
// The end of the desktop's session, also while the program is in a message loop of the desktop: of
// a modal box, an open menu, or a window that the user moves.
#include <atomic>

#include "tests/platform/test_windows.h"

// The last reason that was given for delaying the end of the session.
static Text reason;
static HWND reason_window;
static DWORD reason_thread;

static BOOL WINAPI NoteReason(HWND window, LPCWSTR text) {
    reason_window = window;
    reason_thread = GetCurrentThreadId();
    reason = text;
    return TRUE;
}

// The adapter's call of ShutdownBlockReasonCreate goes through this pointer. Wine has no call that
// reads the reason.
#ifdef _WIN64
#define IMPORTED_REASON "__imp_ShutdownBlockReasonCreate"
#else
#define IMPORTED_REASON "__imp__ShutdownBlockReasonCreate@8"
#endif
extern BOOL(WINAPI* const imported_reason)(HWND, LPCWSTR) asm(IMPORTED_REASON);
BOOL(WINAPI* const imported_reason)(HWND, LPCWSTR) = NoteReason;

namespace {

enum Open { kNothing, kBox, kMenu, kMove };
constexpr DWORD kPatience = 20000;  // milliseconds

// A program on a separate thread, in one of these states when the session ends.
struct Program {
    Open open = kNothing;
    std::atomic<bool> runs = false;
    std::atomic<bool> saved = false;  // set after its loop, where the program saves settings
    bool reason_given = false;        // when its loop had ended
    int answer = -1;
    int next_answer = -1;
    HANDLE thread = nullptr;

    static DWORD WINAPI Run(LPVOID self) {
        static_cast<Program*>(self)->Loop();
        return 0;
    }
    void Loop() {
        MSG message;
        PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
        WatchSessionEnd();
        runs = true;
        if (open == kBox) {
            answer = MessageBoxW(nullptr, L"?", L"Quill session test", MB_OKCANCEL);
            next_answer = MessageBoxW(nullptr, L"?", L"Quill session test", MB_OKCANCEL);
        }
        if (open == kMenu || open == kMove) UseWindow();
        while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
        reason_given = !reason.empty();
        Sleep(300);
        saved = true;
    }
    // Returns when the desktop's own loop has ended.
    void UseWindow() const {
        const HWND window =
            CreateWindowExW(0, L"STATIC", L"Quill session test", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                            50, 50, 200, 100, nullptr, nullptr, nullptr, nullptr);
        const HMENU menu = CreatePopupMenu();
        AppendMenuW(menu, MF_STRING, 1, L"Nothing");
        if (open == kMenu) TrackPopupMenu(menu, 0, 60, 60, 0, window, nullptr);
        if (open == kMove) SendMessageW(window, WM_SYSCOMMAND, SC_MOVE, 0);
        DestroyMenu(menu);
    }
    // True when it has come as far as the test wants.
    bool IsReady() const {
        GUITHREADINFO state = {};
        state.cbSize = sizeof(state);
        if (!runs || !GetGUIThreadInfo(GetThreadId(thread), &state)) return false;
        switch (open) {
            case kBox:
                return FindWindowW(nullptr, L"Quill session test") != nullptr;
            case kMenu:
                return (state.flags & GUI_INMENUMODE) != 0;
            case kMove:
                return (state.flags & GUI_INMOVESIZE) != 0;
            default:
                return true;
        }
    }
    void Start() { thread = CreateThread(nullptr, 0, Run, this, 0, nullptr); }
    ~Program() { CloseHandle(thread); }
};

// The guard answers when the program's thread has ended.
void EndSession(Program& program) {
    reason.clear();
    program.Start();
    HWND guard = nullptr;
    const auto found = [&] {
        return (guard = FindWindowW(L"QuillSessionEnd", nullptr)) != nullptr;
    };
    for (DWORD i = 0; i < kPatience && !(found() && program.IsReady()); i += 50) Sleep(50);
    ASSERT_NE(nullptr, guard);
    ASSERT_TRUE(program.IsReady());
    DWORD_PTR may_end = 0, answer = 1;
    SendMessageTimeoutW(guard, WM_QUERYENDSESSION, 0, 0, SMTO_NORMAL, kPatience, &may_end);
    EXPECT_EQ(1u, may_end);
    SendMessageTimeoutW(guard, WM_ENDSESSION, FALSE, 0, SMTO_NORMAL, kPatience, &answer);
    EXPECT_EQ(0u, answer);
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(program.thread, 300));  // the session goes on
    EXPECT_TRUE(program.IsReady());
    EXPECT_EQ(Text(), reason);
    EXPECT_NE(0,
              SendMessageTimeoutW(guard, WM_ENDSESSION, TRUE, 0, SMTO_NORMAL, kPatience, &answer));
    EXPECT_TRUE(program.saved);
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(program.thread, 0));
    EXPECT_EQ(guard, reason_window);
    EXPECT_EQ(GetWindowThreadProcessId(guard, nullptr), reason_thread);  // the system wants that
    PostMessageW(guard, WM_CLOSE, 0, 0);
    for (DWORD i = 0; i < kPatience && IsWindow(guard); i += 20) Sleep(20);
}

}  // namespace

TEST(SessionEnd, WaitsUntilTheProgramHasEndedInItsUsualWay) {
    Program program;
    EndSession(program);
    EXPECT_TRUE(SessionEnds());
}

TEST(SessionEnd, ShowsWhyTheSystemHasToWaitWhileTheProgramStillRuns) {
    Program program;
    EndSession(program);
    EXPECT_TRUE(program.reason_given);
    EXPECT_EQ(Text(L"Quill saves its settings"), reason);
}

TEST(SessionEnd, ClosesAnOpenMenu) {
    Program program;
    program.open = kMenu;
    EndSession(program);
}

// The loop that moves a window takes the first request and drops it.
TEST(SessionEnd, AsksAgainAfterALoopThatDropsTheRequest) {
    Program program;
    program.open = kMove;
    EndSession(program);
}

TEST(SessionEnd, AnswersTheOpenQuestionWithCancelAndAsksNoOther) {
    Program program;
    program.open = kBox;
    EndSession(program);
    EXPECT_EQ(IDCANCEL, program.answer);
    EXPECT_EQ(IDCANCEL, program.next_answer);
}

static void CALLBACK LookUnderTheBox(HWND, UINT, UINT_PTR id, DWORD) {
    KillTimer(nullptr, id);
    EXPECT_EQ(nullptr, GetCapture());
    PostMessageW(FindWindowW(nullptr, L"Quill modal test"), WM_COMMAND, IDOK, 0);
}

TEST(Modal, ReleasesTheMouseCapture) {
    const HWND window = CreateWindowExW(0, L"STATIC", nullptr, WS_POPUP | WS_VISIBLE, 0, 0, 50, 50,
                                        nullptr, nullptr, nullptr, nullptr);
    SetCapture(window);
    ASSERT_EQ(window, GetCapture());
    SetTimer(nullptr, 0, 300, LookUnderTheBox);
    EXPECT_EQ(IDOK, MessageBoxW(window, L"!", L"Quill modal test", MB_OKCANCEL));
    DestroyWindow(window);
}
