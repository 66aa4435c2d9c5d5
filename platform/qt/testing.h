// What tests and the host's snapshot read of a running program: drawing calls, the text on the
// screen, beeps and message boxes.
#ifndef QUILL_PLATFORM_QT_TESTING_H
#define QUILL_PLATFORM_QT_TESTING_H

#include <QColorDialog>
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
int PaintCount();        // WM_PAINTs since the program's start
bool MessagesWaiting();  // posted ones, or input; on the window thread
int BeepCount();
UINT LastBeep();
int SilentKeyCount();  // synthetic keys that only keep the device awake, since the start

struct SilentKey {
    BYTE virtual_key;
    DWORD flags;
};
SilentKey LastSilentKey();

int TimerMilliseconds(HWND window, UINT_PTR id);  // -1: no such timer runs

// The text that stands on a window, line by line as it was drawn last; blanks at the end cut.
void KeepScreenText(bool keep);
QStringList ScreenText(HWND window);

QMessageBox* ShownMessageBox();        // null while none is shown
void AnswerMessageBoxes(bool answer);  // each box presses its own default button

// Dialogs, property sheets and the chooser of colours. They are modal: what a person is to do in
// one is given before it opens. Each call takes the next function and runs it, from the message
// loop, once the dialog stands on the screen.
void OnNextDialog(const std::function<void()>& person);
bool DialogsAwaited();  // functions that no dialog has taken yet
HWND ShownDialog();     // the dialog or sheet on top; null while none is open
HWND ShownPage();       // the same, but of a sheet the page on top
QString DialogTitle();
QColorDialog* ShownColorDialog();

// What a person does on the dialog on top; false where there is no such control, or it is hidden
// or switched off.
QWidget* DialogWidgetOf(int id);  // the desktop's own; null: no such control
bool ClickControl(int id);        // with the mouse, in its middle (a check box: on its mark)
bool TypeInto(int id, const QString& text);  // over what stands there
bool ClickEntry(int id, int row);            // of a list, or of a combo box
bool DoubleClickEntry(int id, int row);      // of a list
bool PressInDialog(int key, int modifiers = 0, const QString& text = QString());
void TurnPage(int index);  // of a property sheet
QString ControlText(int id);
bool ControlChecked(int id);
QStringList ControlEntries(int id);  // of a list or combo box

void TakeLibrariesAway(bool missing);  // LoadLibraryW finds nothing

// Windows of that class cannot be made, as when the device is out of memory; null: all can.
void RefuseWindows(LPCWSTR class_name);
bool WindowRefused(LPCWSTR class_name);

void AnnounceDialog();  // a dialog has come up

// gdi.cpp and message_box.cpp report here.
void RecordText(HWND window, int x, int y, const RECT* rect, const std::u16string& text,
                COLORREF color, COLORREF background, int advance);
void RecordFill(HWND window, const RECT& rect, COLORREF color);
void RecordLine(HWND window, POINT from, POINT to, COLORREF color);
void RecordPaint(HWND window);
void ForgetRecords();
void ForgetDialogs();

#endif
