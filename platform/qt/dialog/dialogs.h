// SPDX-License-Identifier: MIT
// What dialogs, their controls and property sheets share.
#ifndef QUILL_PLATFORM_QT_DIALOG_DIALOGS_H
#define QUILL_PLATFORM_QT_DIALOG_DIALOGS_H

#include <functional>
#include <memory>
#include <QDialog>

#include "platform/qt/services/resources.h"
#include "platform/qt/window/window.h"

class QScrollArea;
struct SheetData;

// Data of a dialog, a property sheet or one of its pages (Window::dialog).
struct DialogData {
    DLGPROC procedure = nullptr;
    QWidget* content = nullptr;  // the parent of the controls
    QSize wanted;                // size in pixels that the template asks for
    LONG_PTR message_result = 0;
    LONG_PTR user = 0;
    INT_PTR result = 0;
    bool ended = false;
    std::shared_ptr<SheetData> sheet;
};

// The desktop's window of a dialog: handles its keys and its close button.
class DialogWidget : public QDialog {
    Q_OBJECT
  public:
    DialogWidget(HWND dialog, QWidget* parent) : QDialog(parent), dialog_(dialog) {}
    ~DialogWidget() override;
    void SetBody(QWidget* body);  // the widget that fills the window within its margins
    void reject() override;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    HWND dialog_;
    QWidget* body_ = nullptr;
};

// dialogs.cpp
LRESULT CALLBACK DialogWindowProcedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam);
HWND DialogOwner(HWND owner);  // its top-level window
// Makes a dialog's window without its controls. `owner` may be null.
Window* MakeDialogWindow(const WindowClass* window_class, HWND owner, const std::u16string& title,
                         DLGPROC procedure);
void StartDialog(HWND dialog, LPARAM parameter);  // sends WM_INITDIALOG and sets the focus
// Runs the dialog until it ends, then destroys it. Shows it at once, or only after the messages
// that are already posted. Returns -1 if the program or the owner has ended before the dialog.
INT_PTR RunDialogLoop(HWND dialog, bool at_once);
extern const WindowOperations kDialogOperations;
void PlaceDialog(Window& window, const QRect& rect);  // in coordinates of the device's screen
QScrollArea* MakeScrolledContent(QWidget* parent, QWidget** content);

// controls.cpp
struct MessageRow {
    UINT message;
    LRESULT (*handle)(Window& window, WPARAM wparam, LPARAM lparam);
};
// One class of control: how to make its widget, and the messages that it handles.
struct ControlClass {
    WORD number;   // in templates
    LPCWSTR name;  // the same class by its name
    QWidget* (*make)(HWND control, const DialogItem& item, QWidget* parent);
    const MessageRow* messages;  // ends with a row whose message is 0
};
struct ControlData {
    const ControlClass* kind = nullptr;
    DWORD style = 0;
    int limit = 0;         // units that the user may type into an edit
    bool at_once = false;  // true while the program clicks: notices are sent, not queued
};
void LimitTyping(HWND control, QWidget* edit, int limit);  // edits.cpp

extern const ControlClass kListBoxClass;   // lists.cpp
extern const ControlClass kComboBoxClass;  // combo_boxes.cpp

// Makes all controls of a template with their focus order, groups and accessible names. False if a
// class is unknown.
bool MakeControls(Window& dialog, const DialogTemplate& shape);
HWND MakeControl(Window& dialog, const DialogItem& item);  // null for an unknown class
// Returns the largest height, at most `height`, at which the list shows only whole lines (at least
// one). Empties the list.
int WholeLines(QWidget* list, int height);
HWND FirstTabStop(const Window& dialog);   // null if there is no such control
void FocusControl(const Window& control);  // also selects an edit's text, as Tab does

// message_box.cpp
void AnswerMessageBoxes(bool answer);  // true: each box presses its default button by itself

// control_base.cpp
QSize DialogPixels(int width, int height);  // from dialog units
QString WithoutMnemonic(const QString& text);
// Notify the dialog by WM_COMMAND: QueueNotice behind the input that is already queued, SendNotice
// at once.
void QueueNotice(HWND control, WORD code);
void SendNotice(HWND control, WORD code);
LRESULT CopyText(const QString& text, WPARAM size, LPARAM buffer);  // as WM_GETTEXT does
// Entries of lists and combo boxes. FindEntry returns the row of an entry by its text, SortedPlace
// the row for a new entry behind those that sort before it, PlaceOf the row that a message names
// (-1 is the end). FindEntry and PlaceOf return -1 if there is no such row.
int FindEntry(const QStringList& entries, int after, const QString& wanted, bool whole);
int SortedPlace(const QStringList& entries, const QString& text);
int PlaceOf(WPARAM row, int count);

// dialogs.cpp: the button that Enter presses
class QPushButton;

// From now on, the push button that has the focus is the window's default button; while the focus
// is elsewhere it is the `usual` one, which may be null. The default button is the one for which
// QPushButton::isDefault is true, and it is drawn as such.
void FollowFocusWithDefault(QWidget* window, const std::function<QPushButton*()>& usual);

// Returns the window's default button if it is visible, else null.
QPushButton* ShownDefault(const QWidget& window);
// buttons.cpp, edits.cpp
extern const ControlClass kButtonClass;
extern const ControlClass kEditClass;
extern const ControlClass kStaticClass;

void ShowLabel(Window& window);  // a static's text; "&" marks a letter if the label has a buddy

#endif
