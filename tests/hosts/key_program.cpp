// SPDX-License-Identifier: MIT
// A program on a pseudo-terminal, and a user who presses keys and looks for texts on the screen.
#include "tests/hosts/key_program.h"

#include <gtest/gtest.h>

#include "terminal/screen_buffer.h"
#include "tests/hosts/program_walks.h"

std::string RowText(int row) {
    std::string text;
    for (int col = 1; col <= kScreenColumns; ++col) text += static_cast<char>(GetCell(row, col));
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

std::string ScreenText() {
    std::string text;
    for (int row = 1; row <= kScreenRows; ++row) text += RowText(row) + "\n";
    return text;
}

bool ScreenHas(const std::string& text) {
    for (int row = 1; row <= kScreenRows; ++row) {
        if (RowText(row).find(text) != std::string::npos) return true;
    }
    return false;
}

KeyProgram::KeyProgram(const std::string& name, const std::string& locale,
                       const std::vector<std::string>& arguments, const std::string& home,
                       const std::vector<std::string>& variables)
    : term(name) {
    PtyOptions options = {arguments, {"LC_ALL=" + locale}, home, name, true, -1};
    options.environment.insert(options.environment.end(), variables.begin(), variables.end());
    EXPECT_TRUE(StartOnPty(options, &program));
    FeedUntilRest(&program);
}

KeyProgram::~KeyProgram() { EndOnPty(&program); }

bool KeyProgram::Shows(const std::string& keys, const std::string& text) {
    SendKeys(&program, KeysOf(keys, term));
    return FeedUntil(&program, [&] { return ScreenHas(text); });
}

void KeyProgram::Press(const std::string& keys) {
    SendKeys(&program, KeysOf(keys, term));
    FeedUntilRest(&program);
}
