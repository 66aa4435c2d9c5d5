// What tests and the host's snapshot read of a running program: drawing calls, the text on the
// screen, beeps and message boxes.
#ifndef QUILL_PLATFORM_QT_TESTING_H
#define QUILL_PLATFORM_QT_TESTING_H

#include <QMessageBox>

#include "slice.h"

struct DrawCall {
    enum class Kind { kText, kFill, kLine } kind;
    HWND window = nullptr;
    RECT rect = {};  // filled by the call; a line's two ends
    std::u16string text;
    COLORREF color = 0;  // of text or line
    COLORREF background = 0;
};

void StartRecording();  // forgets what was recorded
void StopRecording();
std::vector<DrawCall> RecordedCalls();
int PaintCount();  // WM_PAINTs since the program's start
int BeepCount();
UINT LastBeep();
int SilentKeyCount();  // synthetic keys that only keep the device awake, since the start

// The text that stands on a window, line by line as it was drawn last; blanks at the end cut.
void KeepScreenText(bool keep);
QStringList ScreenText(HWND window);

QMessageBox* ShownMessageBox();        // null while none is shown
void AnswerMessageBoxes(bool answer);  // each box presses its own default button

// Windows of that class cannot be made, as when the device is out of memory; null: all can.
void RefuseWindows(LPCWSTR class_name);
bool WindowRefused(LPCWSTR class_name);

// gdi.cpp and message_box.cpp report here.
void RecordText(HWND window, int x, int y, const RECT* rect, const std::u16string& text,
                COLORREF color, COLORREF background, int advance);
void RecordFill(HWND window, const RECT& rect, COLORREF color);
void RecordLine(HWND window, POINT from, POINT to, COLORREF color);
void RecordPaint(HWND window);
void ForgetRecords();

#endif
