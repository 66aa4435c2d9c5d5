// SPDX-License-Identifier: MIT
// What tests see of a running program and do to it: beeps, message boxes, dialogs, refusals. It is
// behind the observers of platform/qt, which it sets when it is linked. Window thread only.
#ifndef QUILL_TESTS_QT_DRIVER_DRIVER_H
#define QUILL_TESTS_QT_DRIVER_DRIVER_H

#include <functional>
#include <QColorDialog>
#include <QMessageBox>

#include "platform/qt/dialog/dialogs.h"
#include "platform/qt/window/device_screen.h"

// True until the queue has been empty since the first of a row of calls: to be asked until it is
// false.
bool MessagesWaiting();
int BeepCount();
UINT LastBeep();
int SilentKeyCount();  // synthetic keys that only keep the device awake, since the start

struct SilentKey {
    BYTE virtual_key;
    DWORD flags;
};
SilentKey LastSilentKey();

int TimerMilliseconds(HWND window, UINT_PTR id);  // -1: no such timer runs

QMessageBox* ShownMessageBox();  // the one on top; null while none is shown

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

// What was asked for is forgotten, and silent keys are counted anew; after each run of the program.
void ForgetRecords();
void ForgetDialogs();

#endif
