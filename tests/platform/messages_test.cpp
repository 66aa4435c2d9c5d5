// SPDX-License-Identifier: MIT
// The message queue: order, filters, timers, painting when idle, and the end.
#include "tests/platform/test_windows.h"

namespace {

class Messages : public WindowTest {
  protected:
    std::vector<WPARAM> Parameters(UINT message) const {
        std::vector<WPARAM> parameters;
        for (const Heard& each : Of(message)) parameters.push_back(each.wparam);
        return parameters;
    }
    void PaintAll() {
        answer = [](const Heard& now, LRESULT* result) {
            if (now.message != WM_PAINT) return false;
            PAINTSTRUCT paint;
            BeginPaint(now.window, &paint);
            EndPaint(now.window, &paint);
            *result = 0;
            return true;
        };
    }
};

DWORD WINAPI PostThree(LPVOID window) {
    for (WPARAM i = 1; i <= 3; i++) PostMessageW(static_cast<HWND>(window), kTestMessage, i, 0);
    return 0;
}

}  // namespace

TEST_F(Messages, PostedOnesComeInOrder) {
    for (WPARAM i = 1; i <= 5; i++) EXPECT_TRUE(PostMessageW(top, kTestMessage, i, 0));
    EXPECT_TRUE(Of(kTestMessage).empty());
    RunUntilIdle();
    EXPECT_EQ((std::vector<WPARAM>{1, 2, 3, 4, 5}), Parameters(kTestMessage));
}

TEST_F(Messages, SentOneIsAnsweredAtOnce) {
    answer = [](const Heard& now, LRESULT* result) {
        *result = static_cast<LRESULT>(now.wparam) + now.lparam;
        return now.message == kTestMessage;
    };
    PostMessageW(top, kTestMessage + 1, 0, 0);
    EXPECT_EQ(7, SendMessageW(top, kTestMessage, 3, 4));
    EXPECT_TRUE(Of(kTestMessage + 1).empty());
}

TEST_F(Messages, AnotherThreadsPostsArriveInOrder) {
    HANDLE thread = CreateThread(nullptr, 0, PostThree, top, 0, nullptr);
    EXPECT_TRUE(RunUntil([this] { return Of(kTestMessage).size() == 3; }));
    EXPECT_EQ((std::vector<WPARAM>{1, 2, 3}), Parameters(kTestMessage));
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}

TEST_F(Messages, FilterTakesOnlyItsNumbers) {
    MSG message;
    PostMessageW(top, kTestMessage, 1, 0);
    PostMessageW(top, kTestMessage + 2, 2, 0);
    ASSERT_TRUE(PeekMessageW(&message, top, kTestMessage + 1, kTestMessage + 3, PM_REMOVE));
    EXPECT_EQ(kTestMessage + 2, message.message);
    EXPECT_EQ(2u, message.wParam);
    EXPECT_EQ(top, message.hwnd);
    EXPECT_FALSE(PeekMessageW(&message, top, kTestMessage + 1, kTestMessage + 3, PM_REMOVE));
    ASSERT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(kTestMessage, message.message);
}

TEST_F(Messages, FilterTakesOnlyItsWindow) {
    MSG message;
    HWND child = Child(1);
    RunUntilIdle();
    PostMessageW(top, kTestMessage, 1, 0);
    PostMessageW(child, kTestMessage, 2, 0);
    ASSERT_TRUE(PeekMessageW(&message, child, 0, 0, PM_REMOVE));
    EXPECT_EQ(2u, message.wParam);
    EXPECT_FALSE(PeekMessageW(&message, child, 0, 0, PM_REMOVE));
}

TEST_F(Messages, ThoseOfADestroyedWindowAreDropped) {
    HWND child = Child(1);
    RunUntilIdle();
    heard.clear();
    PostMessageW(child, kTestMessage, 1, 0);
    DestroyWindow(child);
    RunUntilIdle();
    EXPECT_TRUE(Of(kTestMessage).empty());
}

TEST_F(Messages, QuitComesAfterPostedMessages) {
    MSG message;
    PostQuitMessage(9);
    PostMessageW(top, kTestMessage, 1, 0);
    ASSERT_TRUE(GetMessageW(&message, nullptr, 0, 0));
    EXPECT_EQ(kTestMessage, message.message);
    EXPECT_FALSE(GetMessageW(&message, nullptr, 0, 0));
    EXPECT_EQ(WM_QUIT, message.message);
    EXPECT_EQ(9u, message.wParam);
}

TEST_F(Messages, QuitPassesEveryFilter) {
    MSG message;
    PostQuitMessage(3);
    ASSERT_TRUE(PeekMessageW(&message, nullptr, kTestMessage, kTestMessage, PM_REMOVE));
    EXPECT_EQ(WM_QUIT, message.message);
    EXPECT_EQ(3u, message.wParam);
}

TEST_F(Messages, TimerTicksWithItsNumberUntilItIsEnded) {
    EXPECT_EQ(5u, SetTimer(top, 5, 20, nullptr));
    EXPECT_TRUE(RunUntil([this] { return Of(WM_TIMER).size() >= 2; }));
    EXPECT_EQ(5u, Of(WM_TIMER)[0].wparam);
    EXPECT_TRUE(KillTimer(top, 5));
    RunUntilIdle();
    heard.clear();
    Sleep(60);
    RunUntilIdle();
    EXPECT_TRUE(Of(WM_TIMER).empty());
    EXPECT_FALSE(KillTimer(top, 5));
}

TEST_F(Messages, TimerDoesNotRepeatMissedTicks) {
    SetTimer(top, 5, 10, nullptr);
    Sleep(200);
    const DWORD begin = GetTickCount();
    RunUntilIdle();
    const DWORD passed = GetTickCount() - begin;  // ticks during this time are not missed ones
    EXPECT_LE(Of(WM_TIMER).size(), 2u + passed / 10);
    KillTimer(top, 5);
}

TEST_F(Messages, TwoInvalidationsAreOnePaint) {
    HWND child = Child(1);
    PaintAll();
    RunUntil([&] { return !Of(WM_PAINT, child).empty(); });
    heard.clear();
    InvalidateRect(child, nullptr, FALSE);
    InvalidateRect(child, nullptr, FALSE);
    EXPECT_TRUE(Of(WM_PAINT).empty());
    EXPECT_TRUE(RunUntil([&] { return !Of(WM_PAINT, child).empty(); }));
    RunUntilIdle();
    EXPECT_EQ(1u, Of(WM_PAINT, child).size());
}

TEST_F(Messages, PaintComesAfterPostedMessages) {
    HWND child = Child(1);
    PaintAll();
    RunUntil([&] { return !Of(WM_PAINT, child).empty(); });
    Sleep(40);  // longer than a frame
    heard.clear();
    InvalidateRect(child, nullptr, FALSE);
    PostMessageW(child, kTestMessage, 0, 0);
    ASSERT_TRUE(RunUntil([&] { return !Of(WM_PAINT, child).empty(); }));
    EXPECT_EQ(kTestMessage, heard.front().message);
}

TEST_F(Messages, UpdateWindowPaintsAtOnceIfThereIsSomethingToPaint) {
    HWND child = Child(1);
    PaintAll();
    RunUntil([&] { return !Of(WM_PAINT, child).empty(); });
    heard.clear();
    UpdateWindow(child);
    EXPECT_TRUE(Of(WM_PAINT, child).empty());
    InvalidateRect(child, nullptr, FALSE);
    UpdateWindow(child);
    EXPECT_EQ(1u, Of(WM_PAINT, child).size());
}

TEST_F(Messages, BeginPaintSendsTheEraseMessage) {
    HWND child = Child(1);
    PaintAll();
    RunUntil([&] { return !Of(WM_PAINT, child).empty(); });
    heard.clear();
    InvalidateRect(child, nullptr, FALSE);
    UpdateWindow(child);
    EXPECT_TRUE(Of(WM_ERASEBKGND, child).empty());
    InvalidateRect(child, nullptr, TRUE);
    EXPECT_TRUE(Of(WM_ERASEBKGND, child).empty());
    UpdateWindow(child);
    EXPECT_EQ(1u, Of(WM_ERASEBKGND, child).size());
}

TEST_F(Messages, PaintRectangleIsTheInvalidatedOne) {
    HWND child = Child(1, 0, 0, 0, 100, 60);
    RECT painted = {};
    answer = [&painted](const Heard& now, LRESULT*) {
        if (now.message != WM_PAINT) return false;
        PAINTSTRUCT paint;
        BeginPaint(now.window, &paint);
        painted = paint.rcPaint;
        EndPaint(now.window, &paint);
        return true;
    };
    UpdateWindow(child);
    const RECT piece = {10, 20, 30, 25};
    InvalidateRect(child, &piece, FALSE);
    UpdateWindow(child);
    EXPECT_EQ(10, painted.left);
    EXPECT_EQ(20, painted.top);
    EXPECT_EQ(30, painted.right);
    EXPECT_EQ(25, painted.bottom);
}

TEST_F(Messages, HiddenWindowIsNotPainted) {
    HWND child = Child(1);
    PaintAll();
    RunUntil([&] { return !Of(WM_PAINT, child).empty(); });
    ShowWindow(child, SW_HIDE);
    RunUntilIdle();
    heard.clear();
    InvalidateRect(child, nullptr, FALSE);
    RunUntilIdle();
    EXPECT_TRUE(Of(WM_PAINT, child).empty());
}

TEST_F(Messages, CloseDestroysUnlessTheWindowSaysOtherwise) {
    SendMessageW(top, WM_CLOSE, 0, 0);
    EXPECT_FALSE(IsWindow(top));
}
