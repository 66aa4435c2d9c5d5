// SPDX-License-Identifier: MIT
// Windows: creation, destruction, positions, texts and scroll bars.
#include "tests/platform/test_windows.h"

namespace {

class Windows : public WindowTest {};

int Width(const RECT& rect) { return static_cast<int>(rect.right - rect.left); }
int Height(const RECT& rect) { return static_cast<int>(rect.bottom - rect.top); }

RECT ClientOf(HWND window) {
    RECT rect = {-1, -1, -1, -1};
    GetClientRect(window, &rect);
    return rect;
}

RECT OuterOf(HWND window) {
    RECT rect = {};
    GetWindowRect(window, &rect);
    return rect;
}

void SetBar(HWND window, int bar, int last, UINT page, int position) {
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMax = last;
    info.nPage = page;
    info.nPos = position;
    SetScrollInfo(window, bar, &info, TRUE);
}

SCROLLINFO BarOf(HWND window, int bar) {
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    GetScrollInfo(window, bar, &info);
    return info;
}

}  // namespace

TEST_F(Windows, ClassIsRegisteredOnce) {
    WNDCLASSW again = {};
    again.lpfnWndProc = Procedure;
    again.lpszClassName = TEXT("QuillTestWindow");
    EXPECT_EQ(0, RegisterClassW(&again));
}

TEST_F(Windows, UnknownClassMakesNoWindow) {
    EXPECT_EQ(nullptr, CreateWindowExW(0, TEXT("QuillNoSuchClass"), nullptr, WS_CHILD, 0, 0, 1, 1,
                                       top, nullptr, nullptr, nullptr));
}

TEST_F(Windows, CreateMessageCarriesTheRequestedValues) {
    int parameter = 0;
    CREATESTRUCTW seen = {};
    answer = [&seen](const Heard& now, LRESULT*) {
        if (now.message == WM_CREATE) seen = *reinterpret_cast<CREATESTRUCTW*>(now.lparam);
        return false;
    };
    HWND child = CreateWindowExW(0, TEXT("QuillTestWindow"), nullptr, WS_CHILD | WS_VISIBLE, 1, 2,
                                 30, 40, top, reinterpret_cast<HMENU>(static_cast<INT_PTR>(77)),
                                 nullptr, &parameter);
    ASSERT_NE(nullptr, child);
    EXPECT_EQ(1u, Of(WM_CREATE, child).size());
    EXPECT_EQ(&parameter, seen.lpCreateParams);
    EXPECT_EQ(top, seen.hwndParent);
    EXPECT_EQ(1, seen.x);
    EXPECT_EQ(2, seen.y);
    EXPECT_EQ(30, seen.cx);
    EXPECT_EQ(40, seen.cy);
}

TEST_F(Windows, MinusOneFromCreateLeavesNoWindow) {
    answer = [](const Heard& now, LRESULT* result) {
        *result = -1;
        return now.message == WM_CREATE;
    };
    EXPECT_EQ(nullptr, Child(5));
    EXPECT_EQ(nullptr, GetDlgItem(top, 5));
}

TEST_F(Windows, ChildIsFoundByItsId) {
    HWND child = Child(42);
    EXPECT_EQ(child, GetDlgItem(top, 42));
    EXPECT_EQ(nullptr, GetDlgItem(top, 43));
    EXPECT_EQ(top, GetParent(child));
    EXPECT_EQ(nullptr, GetParent(top));
}

TEST_F(Windows, ChildHasTheRequestedSize) {
    HWND child = Child(1, 0, 10, 20, 100, 60);
    EXPECT_EQ(100, ClientOf(child).right);
    EXPECT_EQ(60, ClientOf(child).bottom);
    EXPECT_EQ(0, ClientOf(child).left);
    EXPECT_EQ(100, Width(OuterOf(child)));
    EXPECT_EQ(60, Height(OuterOf(child)));
}

TEST_F(Windows, ChildrenAreAsFarApartAsRequested) {
    HWND one = Child(1, 0, 10, 20), other = Child(2, 0, 13, 27);
    EXPECT_EQ(3, OuterOf(other).left - OuterOf(one).left);
    EXPECT_EQ(7, OuterOf(other).top - OuterOf(one).top);
}

TEST_F(Windows, NewSizeSendsASizeMessage) {
    HWND child = Child(1);
    heard.clear();
    EXPECT_TRUE(MoveWindow(child, 0, 0, 50, 31, TRUE));
    const auto sizes = Of(WM_SIZE, child);
    ASSERT_EQ(1u, sizes.size());
    EXPECT_EQ(SIZE_RESTORED, static_cast<int>(sizes[0].wparam));
    EXPECT_EQ(50, LOWORD(sizes[0].lparam));
    EXPECT_EQ(31, HIWORD(sizes[0].lparam));
    EXPECT_EQ(50, ClientOf(child).right);
}

TEST_F(Windows, NewPositionSendsNoSizeMessage) {
    HWND child = Child(1, 0, 0, 0, 50, 30);
    heard.clear();
    EXPECT_TRUE(MoveWindow(child, 5, 5, 50, 30, TRUE));
    EXPECT_TRUE(Of(WM_SIZE, child).empty());
}

TEST_F(Windows, NegativeSizeBecomesZero) {
    HWND child = Child(1);
    MoveWindow(child, 0, 0, -5, -5, TRUE);
    EXPECT_EQ(0, ClientOf(child).right);
    EXPECT_EQ(0, ClientOf(child).bottom);
}

TEST_F(Windows, TextReadsBackAsFarAsThereIsRoom) {
    WCHAR text[20];
    EXPECT_TRUE(SetWindowTextW(top, TEXT("stores")));
    EXPECT_EQ(6, GetWindowTextW(top, text, 20));
    EXPECT_EQ(Text(TEXT("stores")), text);
    EXPECT_EQ(3, GetWindowTextW(top, text, 4));
    EXPECT_EQ(Text(TEXT("sto")), text);
    SetWindowTextW(top, TEXT(""));
    EXPECT_EQ(0, GetWindowTextW(top, text, 20));
}

TEST_F(Windows, DestroyedWindowTakesItsChildrenAlong) {
    HWND child = Child(1);
    EXPECT_TRUE(DestroyWindow(top));
    const auto ends = Of(WM_DESTROY);
    ASSERT_EQ(2u, ends.size());
    EXPECT_EQ(top, ends[0].window);
    EXPECT_EQ(child, ends[1].window);
    EXPECT_FALSE(IsWindow(top));
    EXPECT_FALSE(IsWindow(child));
}

TEST_F(Windows, DestroyedWindowIsRefused) {
    HWND child = Child(1);
    RECT rect;
    DestroyWindow(child);
    EXPECT_FALSE(DestroyWindow(child));
    EXPECT_FALSE(IsWindowVisible(child));
    EXPECT_FALSE(GetClientRect(child, &rect));
    EXPECT_FALSE(MoveWindow(child, 0, 0, 1, 1, TRUE));
    EXPECT_FALSE(SetWindowTextW(child, TEXT("x")));
    EXPECT_FALSE(PostMessageW(child, kTestMessage, 0, 0));
    EXPECT_EQ(0, SendMessageW(child, kTestMessage, 0, 0));
    EXPECT_EQ(nullptr, GetParent(child));
    EXPECT_FALSE(IsWindow(nullptr));
}

TEST_F(Windows, ShowWindowReturnsWhetherItWasVisible) {
    HWND child = Child(1);
    EXPECT_TRUE(IsWindowVisible(child));
    EXPECT_TRUE(ShowWindow(child, SW_HIDE));
    EXPECT_FALSE(IsWindowVisible(child));
    EXPECT_FALSE(ShowWindow(child, SW_SHOW));
    EXPECT_TRUE(IsWindowVisible(child));
}

TEST_F(Windows, ChildOfAHiddenWindowIsNotVisible) {
    HWND child = Child(1);
    ShowWindow(top, SW_HIDE);
    EXPECT_FALSE(IsWindowVisible(child));
    ShowWindow(top, SW_SHOW);
    EXPECT_TRUE(IsWindowVisible(child));
}

TEST_F(Windows, TopLevelOneIsFoundByItsClass) {
    EXPECT_EQ(top, FindWindowW(TEXT("QuillTestWindow"), nullptr));
    EXPECT_EQ(top, FindWindowW(TEXT("quilltestwindow"), nullptr));
    DestroyWindow(top);
    EXPECT_EQ(nullptr, FindWindowW(TEXT("QuillTestWindow"), nullptr));
}

TEST_F(Windows, ScrollBarKeepsWhatACallDoesNotName) {
    HWND child = Child(1, WS_VSCROLL);
    for (const UINT mask : {UINT{SIF_POS}, UINT{SIF_PAGE}, UINT{SIF_RANGE}, UINT{0}}) {
        SCROLLINFO info = {};
        info.cbSize = sizeof(info);
        info.fMask = mask;
        info.nMin = 1;
        info.nMax = 30;
        info.nPage = 8;
        info.nPos = 7;
        SetBar(child, SB_VERT, 23, 10, 5);
        SetScrollInfo(child, SB_VERT, &info, TRUE);
        const SCROLLINFO now = BarOf(child, SB_VERT);
        EXPECT_EQ(mask == SIF_RANGE ? 1 : 0, now.nMin) << mask;
        EXPECT_EQ(mask == SIF_RANGE ? 30 : 23, now.nMax) << mask;
        EXPECT_EQ(mask == SIF_PAGE ? 8u : 10u, now.nPage) << mask;
        EXPECT_EQ(mask == SIF_POS ? 7 : 5, now.nPos) << mask;
    }
}

TEST_F(Windows, ScrollBarReadsBackAsSet) {
    HWND child = Child(1, WS_VSCROLL | WS_HSCROLL);
    SetBar(child, SB_VERT, 23, 10, 5);
    const SCROLLINFO info = BarOf(child, SB_VERT);
    EXPECT_EQ(0, info.nMin);
    EXPECT_EQ(23, info.nMax);
    EXPECT_EQ(10u, info.nPage);
    EXPECT_EQ(5, info.nPos);
}

TEST_F(Windows, ThumbIsClampedToTheLastPage) {
    HWND child = Child(1, WS_VSCROLL);
    SetBar(child, SB_VERT, 23, 10, 100);
    EXPECT_EQ(14, BarOf(child, SB_VERT).nPos);
    SetBar(child, SB_VERT, 23, 10, -3);
    EXPECT_EQ(0, BarOf(child, SB_VERT).nPos);
}

TEST_F(Windows, BarThatHasNothingToScrollGivesItsRoomBack) {
    HWND child = Child(1, WS_VSCROLL | WS_HSCROLL, 0, 0, 200, 100);
    SetBar(child, SB_VERT, 23, 10, 0);
    SetBar(child, SB_HORZ, 79, 10, 0);
    EXPECT_EQ(200 - GetSystemMetrics(SM_CXVSCROLL), ClientOf(child).right);
    EXPECT_EQ(100 - GetSystemMetrics(SM_CYHSCROLL), ClientOf(child).bottom);
    SetBar(child, SB_VERT, 23, 24, 0);
    EXPECT_EQ(200, ClientOf(child).right);
    EXPECT_EQ(100 - GetSystemMetrics(SM_CYHSCROLL), ClientOf(child).bottom);
    SetBar(child, SB_HORZ, 79, 80, 0);
    EXPECT_EQ(100, ClientOf(child).bottom);
}

TEST_F(Windows, BarThatAppearsSendsTheNewSize) {
    HWND child = Child(1, WS_VSCROLL, 0, 0, 200, 100);
    SetBar(child, SB_VERT, 23, 24, 0);
    heard.clear();
    SetBar(child, SB_VERT, 23, 10, 0);
    const auto sizes = Of(WM_SIZE, child);
    ASSERT_FALSE(sizes.empty());
    EXPECT_EQ(200 - GetSystemMetrics(SM_CXVSCROLL), LOWORD(sizes.back().lparam));
}

TEST_F(Windows, EnableWindowReturnsWhetherItWasDisabled) {
    HWND child = Child(1);
    EXPECT_FALSE(EnableWindow(child, FALSE));
    EXPECT_TRUE(EnableWindow(child, TRUE));
}
