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

// Of a dialog, a property sheet or one of its pages (Window::dialog).
struct DialogData {
    DLGPROC procedure = nullptr;
    QWidget* content = nullptr;  // the parent of the controls
    QSize wanted;                // pixels that the template asks for
    LONG_PTR message_result = 0;
    LONG_PTR user = 0;
    INT_PTR result = 0;
    bool ended = false;
    std::shared_ptr<SheetData> sheet;
};

// The desktop's window around a dialog: its keys, and its close button.
class DialogWidget : public QDialog {
    Q_OBJECT
  public:
    DialogWidget(HWND dialog, QWidget* parent) : QDialog(parent), dialog_(dialog) {}
    void SetBody(QWidget* body);  // what fills it
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
HWND DialogOwner(HWND owner);  // the top-level window of it
// A dialog's window without its controls; `owner` may be null.
Window* MakeDialogWindow(const WindowClass* window_class, HWND owner, const std::u16string& title,
                         DLGPROC procedure);
void StartDialog(HWND dialog, LPARAM parameter);  // WM_INITDIALOG and the focus that it asks for
// Shows it until its end, and destroys it: at once, or after what is posted.
INT_PTR RunDialog(HWND dialog, bool at_once);
extern const WindowOperations kDialogOperations;
void PlaceDialog(Window& window, const QRect& rect);  // on the device's screen
QScrollArea* MakeScrolledContent(QWidget* parent, QWidget** content);

// controls.cpp
struct MessageRow {
    UINT message;
    LRESULT (*handle)(Window& window, WPARAM wparam, LPARAM lparam);
};
// One class of control: how its widget is made, and the messages that it knows.
struct ControlClass {
    WORD number;   // in templates
    LPCWSTR name;  // likewise
    QWidget* (*make)(HWND control, const DialogItem& item, QWidget* parent);
    const MessageRow* messages;  // a row with message 0 ends them
};
struct ControlData {
    const ControlClass* kind = nullptr;
    DWORD style = 0;
    int limit = 0;         // of what the user types into an edit
    bool at_once = false;  // notices are sent, not queued: the program clicks, not the user
};
void LimitTyping(HWND control, QWidget* edit, int limit);  // edits.cpp

extern const ControlClass kListBoxClass;   // lists.cpp
extern const ControlClass kComboBoxClass;  // combo_boxes.cpp

// All of a template's controls, with focus order, groups and names; false for an unknown class.
bool MakeControls(Window& dialog, const DialogTemplate& shape);
HWND MakeControl(Window& dialog, const DialogItem& item);  // null for an unknown class
// The height, at most that one, in which a list shows no line cut off.
int WholeLines(QWidget* list, int height);
HWND FirstTabStop(const Window& dialog);   // null: none
void FocusControl(const Window& control);  // and selects an edit's text, as Tab does

// message_box.cpp
void AnswerMessageBoxes(bool answer);  // each presses its own default button, unattended

// control_base.cpp
QSize DialogPixels(int width, int height);  // of dialog units
QString WithoutMnemonic(const QString& text);
// WM_COMMAND to the dialog: in its turn behind the input before, or at once.
void QueueNotice(HWND control, WORD code);
void SendNotice(HWND control, WORD code);
LRESULT CopyText(const QString& text, WPARAM size, LPARAM buffer);  // as WM_GETTEXT does
// The entries of lists and combo boxes: the row of one by its text, and where a new one goes:
// behind those that sort before it, or at a row that a message names (-1: the end). -1: there is
// none.
int FindEntry(const QStringList& entries, int after, const QString& wanted, bool whole);
int SortedPlace(const QStringList& entries, const QString& text);
int PlaceOf(WPARAM row, int count);

// dialogs.cpp: the button that Enter presses
class QPushButton;

// From now on the push button with the focus is the window's default button, and the `usual` one
// while the focus is elsewhere. It is the one that is drawn so: QPushButton::isDefault tells it.
// The usual one may be null.
void FollowFocusWithDefault(QWidget* window, const std::function<QPushButton*()>& usual);

// The window's default button, if it can be seen; else null.
QPushButton* ShownDefault(const QWidget& window);
// buttons.cpp, edits.cpp
extern const ControlClass kButtonClass;
extern const ControlClass kEditClass;
extern const ControlClass kStaticClass;

void ShowLabel(Window& window);  // a static's text; its "&" marks a letter once it has a buddy

#endif
