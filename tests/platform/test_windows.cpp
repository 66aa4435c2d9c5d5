// SPDX-License-Identifier: MIT
// The window class of the tests.
#include "tests/platform/test_windows.h"

namespace {

const LPCWSTR kClass = TEXT("QuillTestWindow");

void RegisterOnce(WNDPROC procedure) {
    static bool registered = false;
    if (registered) return;
    WNDCLASSW test_class = {};
    test_class.style = CS_DBLCLKS;
    test_class.lpfnWndProc = procedure;
    test_class.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    test_class.lpszClassName = kClass;
    registered = RegisterClassW(&test_class) != 0;
    ASSERT_TRUE(registered);
}

}  // namespace

std::vector<Heard>& WindowTest::HeardMessages() {
    static std::vector<Heard> messages;
    return messages;
}

std::function<bool(const Heard&, LRESULT*)>& WindowTest::Answer() {
    static std::function<bool(const Heard&, LRESULT*)> procedure;
    return procedure;
}

LRESULT CALLBACK WindowTest::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const Heard now = {window, message, wparam, lparam};
    HeardMessages().push_back(now);
    LRESULT result = 0;
    if (Answer() && Answer()(now, &result)) return result;
    return DefWindowProcW(window, message, wparam, lparam);
}

void WindowTest::SetUp() {
    answer = nullptr;
    RegisterOnce(Procedure);
    top = CreateWindowExW(0, kClass, TEXT("tests"), WS_VISIBLE, CW_USEDEFAULT, CW_USEDEFAULT, 300,
                          200, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(nullptr, top);
    RunUntilIdle();
    heard.clear();
}

void WindowTest::TearDown() {
    answer = nullptr;
    if (IsWindow(top)) DestroyWindow(top);
    RunUntilIdle();
    heard.clear();
}

HWND WindowTest::Child(int id, DWORD style, int x, int y, int width, int height) {
    return CreateWindowExW(0, kClass, nullptr, WS_CHILD | WS_VISIBLE | style, x, y, width, height,
                           top, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr,
                           nullptr);
}

std::vector<Heard> WindowTest::Of(UINT message, HWND window) const {
    std::vector<Heard> found;
    for (const Heard& each : heard)
        if (each.message == message && (!window || each.window == window)) found.push_back(each);
    return found;
}

bool WindowTest::RunUntilIdle() {
    bool quit = false;
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) quit = true;
        DispatchMessageW(&message);
    }
    return quit;
}

bool WindowTest::RunUntil(const std::function<bool()>& done) {
    const DWORD started = GetTickCount();
    for (;;) {
        RunUntilIdle();
        if (done()) return true;
        if (GetTickCount() - started > 5000) return false;
        Sleep(2);
    }
}
