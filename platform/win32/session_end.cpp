// SPDX-License-Identifier: MIT
// The end of the desktop's session: log-off, restart, power-off. The system ends a program as soon
// as all of its windows have answered WM_ENDSESSION. So an invisible window with its own thread
// delays its answer until the program has ended in the usual way, with its settings saved.
#include <atomic>

#include "device.h"

static const LPCWSTR kClass = L"QuillSessionEnd";
// The desktop shows this if the program's end takes more than a few seconds.
static const LPCWSTR kReason = L"Quill saves its settings";
constexpr DWORD kPatience = 200;  // milliseconds between two requests

static std::atomic<bool> session_ends = false;

// Ends an open menu or a drag: they have their own message loops, which may lose WM_QUIT.
static void EndInnerLoop(DWORD thread) {
    GUITHREADINFO state = {};
    state.cbSize = sizeof(state);
    if (!GetGUIThreadInfo(thread, &state)) return;
    for (const HWND busy : {state.hwndMenuOwner, state.hwndCapture})
        if (busy) PostMessageW(busy, WM_CANCELMODE, 0, 0);
}

// Repeats the request until the program has ended.
static void EndProgram(HANDLE program) {
    const DWORD thread = GetThreadId(program);
    session_ends = true;
    do {
        EndInnerLoop(thread);
        PostThreadMessageW(thread, WM_QUIT, 0, 0);
    } while (WaitForSingleObject(program, kPatience) == WAIT_TIMEOUT);
}

static LRESULT CALLBACK GuardProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_ENDSESSION && wparam) {
        ShutdownBlockReasonCreate(window, kReason);
        EndProgram(reinterpret_cast<HANDLE>(GetWindowLongPtrW(window, GWLP_USERDATA)));
        return 0;
    }
    return DefWindowProcW(window, message, wparam, lparam);
}

static HWND MakeGuard(HANDLE program) {
    WNDCLASSW guard = {};
    guard.lpfnWndProc = GuardProcedure;
    guard.lpszClassName = kClass;
    RegisterClassW(&guard);  // fails from the second time on
    const HWND window = CreateWindowExW(0, kClass, nullptr, WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                                        nullptr, nullptr);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(program));
    return window;
}

static DWORD WINAPI Guard(LPVOID program) {
    if (!MakeGuard(program)) return 1;
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
    return 0;
}

void WatchSessionEnd() {
    HANDLE program = nullptr;
    const HANDLE process = GetCurrentProcess();
    if (!DuplicateHandle(process, GetCurrentThread(), process, &program, 0, FALSE,
                         DUPLICATE_SAME_ACCESS))
        return;
    if (const HANDLE guard = CreateThread(nullptr, 0, Guard, program, 0, nullptr))
        CloseHandle(guard);
}

bool SessionEnds() { return session_ends; }
