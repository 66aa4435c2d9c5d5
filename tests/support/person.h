// SPDX-License-Identifier: MIT
// Drives the real program in this process as a person would: WinMain runs on the main thread, the
// person's actions run on another one. Every call below is made on the person's thread and returns
// when the action is done.
#ifndef QUILL_TESTS_SUPPORT_PERSON_H
#define QUILL_TESTS_SUPPORT_PERSON_H

#include <functional>
#include <QApplication>
#include <QImage>
#include <string>

#include "windows_ce.h"

struct Stage {
    std::string root = {};  // the device's root folder; empty: a new one
    int width = 640;        // pixels of the device's screen
    int height = 480;
    std::string config = {};            // text of mconfig.cfg; empty: no file
    std::function<void()> before = {};  // runs on the window thread before the program starts
};

// Runs the program from start to end; returns its exit code. When `person` returns while the
// program still runs, the program is ended by WM_QUIT.
int RunProgram(const Stage& stage, const std::function<void()>& person);

std::string FreshRoot();  // a new empty folder, removed at the end of the test program

void OnWindowThread(const std::function<void()>& action);
bool Eventually(const std::function<bool()>& condition, int milliseconds = 10000);
bool ProgramRuns();

void TypeText(const std::string& text);
void PressKey(int qt_key, int qt_modifiers = 0);
void PostToMain(UINT message, WPARAM wparam = 0, LPARAM lparam = 0);
void ResizeDevice(int width, int height);

// The message box on the screen as "caption: text"; "" when none comes within the time.
std::string AwaitBox(int milliseconds = 10000);
void PressOk();
void PressCancel();
bool DismissBox(const std::string& expected);  // waits for exactly this box, then presses OK

std::string TerminalRow(int row);  // a row of the grid without trailing blanks
std::string TerminalText();        // all rows, one line for each
std::string DrawnText();           // as drawn on the terminal window
std::string StatusText();
std::string Title();
QImage Picture();                             // of the whole device screen
bool TerminalShows(const std::string& text);  // waits until the grid holds the text

#endif
