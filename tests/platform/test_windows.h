// SPDX-License-Identifier: MIT
// A window class of the tests, which writes down what its windows hear. Window thread only.
#ifndef QUILL_TESTS_PLATFORM_TEST_WINDOWS_H
#define QUILL_TESTS_PLATFORM_TEST_WINDOWS_H

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "windows_ce.h"

typedef std::basic_string<WCHAR> Text;

inline constexpr UINT kTestMessage = 120;  // free for tests, and so are the nine after it

struct Heard {
    HWND window;
    UINT message;
    WPARAM wparam;
    LPARAM lparam;
};

class WindowTest : public testing::Test {
  protected:
    void SetUp() override;     // opens `top`, with an empty queue
    void TearDown() override;  // destroys it

    // A child of `top`; the default is below the whole of the class's style.
    HWND Child(int id, DWORD style = 0, int x = 10, int y = 20, int width = 100, int height = 60);
    // The messages of that number, as they came.
    std::vector<Heard> Of(UINT message, HWND window = nullptr) const;
    // Takes what waits in the queue and hands it out, until it is empty. True: WM_QUIT came.
    bool RunUntilIdle();
    // The same until the condition holds; false after 5 seconds.
    bool RunUntil(const std::function<bool()>& done);

    HWND top = nullptr;
    std::vector<Heard>& heard = HeardMessages();
    // Called for each message before the default; a result ends the matter.
    std::function<bool(const Heard&, LRESULT*)>& answer = Answer();

    static std::vector<Heard>& HeardMessages();
    static std::function<bool(const Heard&, LRESULT*)>& Answer();
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
};

#endif
