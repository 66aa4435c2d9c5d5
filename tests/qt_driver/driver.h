// SPDX-License-Identifier: MIT
// What tests see of a running program and do to it: beeps, message boxes, dialogs, calls that fail.
// It sets the observers of platform/qt when it is linked. Window thread only.
#ifndef QUILL_TESTS_QT_DRIVER_DRIVER_H
#define QUILL_TESTS_QT_DRIVER_DRIVER_H

#include <functional>
#include <QColorDialog>
#include <QMessageBox>

#include "platform/qt/dialog/dialogs.h"
#include "platform/qt/window/device_screen.h"

// False once the queue has been empty since the first call of a series. Call it until it is false.
bool MessagesWaiting();
int BeepCount();
UINT LastBeep();
int SilentKeyCount();  // synthetic keys since the start that only keep the device awake

struct SilentKey {
    BYTE virtual_key;
    DWORD flags;
};
SilentKey LastSilentKey();

int TimerMilliseconds(HWND window, UINT_PTR id);  // -1: no such timer runs

QMessageBox* ShownMessageBox();  // the topmost one; null while none is shown

// Dialogs, property sheets and the colour chooser. They are modal, so a test says before one opens
// what the person does in it. Each dialog takes the next function and runs it from the message loop
// once it is on the screen.
void OnNextDialog(const std::function<void()>& person);
bool DialogsAwaited();  // true while no dialog has taken a function yet
HWND ShownDialog();     // the topmost dialog or sheet; null while none is open
HWND ShownPage();       // the same, but for a sheet its current page
QString DialogTitle();
QColorDialog* ShownColorDialog();

// What a person does on the topmost dialog. False if there is no such control, or it is hidden or
// disabled.
QWidget* DialogWidgetOf(int id);  // the toolkit's widget; null: no such control
bool ClickControl(int id);        // by mouse in its middle, or on the mark of a check box
bool TypeInto(int id, const QString& text);  // replaces the text in it
bool ClickEntry(int id, int row);            // of a list, or of a combo box
bool DoubleClickEntry(int id, int row);      // of a list
bool PressInDialog(int key, int modifiers = 0, const QString& text = QString());
void TurnPage(int index);  // of a property sheet
QString ControlText(int id);
bool ControlChecked(int id);
QStringList ControlEntries(int id);  // of a list or combo box

void TakeLibrariesAway(bool missing);  // true: LoadLibraryW finds no library

// Windows of this class cannot be created, as when the device is out of memory; null: all can.
void RefuseWindows(LPCWSTR class_name);

// Discards what tests asked for and resets the counts; called after each run of the program.
void ForgetRecords();
void ForgetDialogs();

#endif
