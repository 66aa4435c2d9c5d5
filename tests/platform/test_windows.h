// SPDX-License-Identifier: MIT
// A window class for tests that records the messages of its windows. Window thread only.
#ifndef QUILL_TESTS_PLATFORM_TEST_WINDOWS_H
#define QUILL_TESTS_PLATFORM_TEST_WINDOWS_H

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "windows_ce.h"

typedef std::basic_string<WCHAR> Text;

inline constexpr UINT kTestMessage = 120;  // this number and the next nine are free for tests

struct Heard {
    HWND window;
    UINT message;
    WPARAM wparam;
    LPARAM lparam;
};

class WindowTest : public testing::Test {
  protected:
    void SetUp() override;     // opens `top` and empties the queue
    void TearDown() override;  // destroys it

    // Creates a child of `top`.
    HWND Child(int id, DWORD style = 0, int x = 10, int y = 20, int width = 100, int height = 60);
    // The recorded messages of that number, in order.
    std::vector<Heard> Of(UINT message, HWND window = nullptr) const;
    // Dispatches messages until the queue is empty. True if WM_QUIT came.
    bool RunUntilIdle();
    // The same until the condition holds; false after 5 seconds.
    bool RunUntil(const std::function<bool()>& done);

    HWND top = nullptr;
    std::vector<Heard>& heard = HeardMessages();
    // Called for each message before the default procedure; true means that it has set a result.
    std::function<bool(const Heard&, LRESULT*)>& answer = Answer();

    static std::vector<Heard>& HeardMessages();
    static std::function<bool(const Heard&, LRESULT*)>& Answer();
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
};

#endif
