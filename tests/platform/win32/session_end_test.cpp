// SPDX-License-Identifier: MIT
// The end of the desktop's session, also while a modal box is open.
#include <atomic>

#include "tests/platform/test_windows.h"

namespace {

enum Open { kNothing, kBox };

// A program on a separate thread, in one of these states when the session ends.
struct Program {
    Open open = kNothing;
    std::atomic<bool> runs = false;
    std::atomic<bool> saved = false;  // set after its loop, where the program saves settings
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
        if (open != kNothing) {
            answer = MessageBoxW(nullptr, L"?", L"Quill session test", MB_OKCANCEL);
            next_answer = MessageBoxW(nullptr, L"?", L"Quill session test", MB_OKCANCEL);
        }
        while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
        Sleep(300);
        saved = true;
    }
    void Start() { thread = CreateThread(nullptr, 0, Run, this, 0, nullptr); }
    ~Program() { CloseHandle(thread); }
};

HWND AwaitWindow(LPCWSTR window_class, LPCWSTR title) {
    HWND found = nullptr;
    for (int i = 0; i < 100 && !(found = FindWindowW(window_class, title)); i++) Sleep(50);
    return found;
}

// The guard answers when the program's thread has ended.
void EndSession(Program& program) {
    program.Start();
    for (int i = 0; i < 100 && !program.runs; i++) Sleep(50);
    const HWND guard = AwaitWindow(L"QuillSessionEnd", nullptr);
    ASSERT_NE(nullptr, guard);
    if (program.open != kNothing) {
        ASSERT_NE(nullptr, AwaitWindow(nullptr, L"Quill session test"));
    }
    DWORD_PTR may_end = 0, answer = 1;
    SendMessageTimeoutW(guard, WM_QUERYENDSESSION, 0, 0, SMTO_NORMAL, 5000, &may_end);
    EXPECT_EQ(1u, may_end);
    SendMessageTimeoutW(guard, WM_ENDSESSION, FALSE, 0, SMTO_NORMAL, 5000, &answer);
    EXPECT_EQ(0u, answer);
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(program.thread, 300));  // the session goes on
    EXPECT_NE(0, SendMessageTimeoutW(guard, WM_ENDSESSION, TRUE, 0, SMTO_NORMAL, 20000, &answer));
    EXPECT_TRUE(program.saved);
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(program.thread, 0));
    PostMessageW(guard, WM_CLOSE, 0, 0);
    for (int i = 0; i < 100 && IsWindow(guard); i++) Sleep(20);
}

}  // namespace

TEST(SessionEnd, WaitsUntilTheProgramHasEndedInItsUsualWay) {
    Program program;
    EndSession(program);
    EXPECT_TRUE(SessionEnds());
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
