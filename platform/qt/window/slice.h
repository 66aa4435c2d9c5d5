// What the window half of the slice shares: the records behind the handles, the message queue's
// inner side, and the device's screen.
#ifndef QUILL_PLATFORM_QT_WINDOW_SLICE_H
#define QUILL_PLATFORM_QT_WINDOW_SLICE_H

#include <bitset>
#include <functional>
#include <memory>
#include <QApplication>
#include <QPointer>
#include <QRegion>
#include <QString>
#include <QWidget>
#include <string>
#include <vector>

#include "windows_ce.h"

class QScrollBar;
class QLabel;
class WindowWidget;
struct DialogData;
struct ControlData;

struct WindowClass {
    std::u16string name;
    UINT style = 0;
    WNDPROC procedure = nullptr;
    HBRUSH background = nullptr;
    bool system = false;  // the slice's own, there from the start
};

struct ScrollBarState {
    QScrollBar* bar = nullptr;  // null: the window has no such bar
    int minimum = 0;
    int maximum = 0;
    UINT page = 0;
    int position = 0;
    bool shown = false;
};

// One window; `handle` is a number that is never given out twice in a run.
struct Window {
    HWND handle = nullptr;
    const WindowClass* window_class = nullptr;
    HWND parent = nullptr;
    int id = 0;
    std::u16string text;
    QPointer<QWidget> widget;  // a WindowWidget where the program paints
    ScrollBarState vertical;
    ScrollBarState horizontal;
    QWidget* corner = nullptr;  // between the bars, shown with both
    QRegion invalid;            // to be painted
    QRegion painted;            // what the last BeginPaint made valid
    bool erase = true;          // the next BeginPaint sends WM_ERASEBKGND
    bool destroying = false;
    std::shared_ptr<DialogData> dialog;    // of dialogs, sheets and pages
    std::shared_ptr<ControlData> control;  // of their controls
};

inline QString FromWide(LPCWSTR text) { return QString(reinterpret_cast<const QChar*>(text)); }
inline std::u16string ToWide(const QString& text) { return text.toStdU16String(); }

// windows.cpp
Window* AddWindow(const WindowClass* window_class, HWND parent, int id);  // without a widget
Window* FindWindowRecord(HWND handle);                // null for a window that is gone
std::vector<Window*> AllWindows();                    // oldest first
Window* FirstWindow(bool (*wanted)(Window& window));  // the oldest one; null: none
Window* TopLevelOf(Window* window);
bool IsProgramWindow(const Window& window);         // top-level, and no dialog
WindowWidget* PaintedWidget(const Window& window);  // null where the program does not paint
QRect ClientArea(const Window& window);             // the widget less its shown scroll bars
void RegisterSystemClass(LPCWSTR name, WNDPROC procedure);
void PlaceWindow(Window& window, const QRect& rect);  // moves, and sends WM_SIZE on a new size
void SendSize(Window& window);
void DestroyAllWindows();

// messages.cpp
LRESULT CallWindowProcedure(Window& window, UINT message, WPARAM wparam, LPARAM lparam);
void QueueInput(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
// A key press with the characters that TranslateMessage is to make of it.
void QueueKey(HWND window, UINT message, WPARAM key, LPARAM flags, const QString& characters);
void RunModalLoop(const std::function<bool()>& done);  // dispatches until done or WM_QUIT
// What is posted, for a frame at most; neither input nor the toolkit's events have their turn.
void DispatchPosted(const std::function<bool()>& done);
void TakeMessagesFor(HWND window);       // from now on posts to it are taken
void ForgetWindowMessages(HWND window);  // and from now on no more
// Takes posted messages back that nobody has got yet; whether there were any.
bool DropPosted(HWND window, UINT message, WPARAM wparam);
void ResetMessages();
bool QuitPosted();

// command_bar.cpp
inline constexpr int kCommandBarHeight = 26;
inline constexpr int kBarPicture = 16;       // pixels of a picture's sides
inline constexpr int kTwiceAsLarge = 10000;  // from a bitmap's number to that of the larger one
inline constexpr LPCWSTR kCommandBarClass = u"QuillCommandBar";
void RegisterCommandBar();

// controls.cpp
int StatusHeight();  // of a status window, pixels
void AttachScrollBars(Window& window, DWORD style);
void ArrangeScrollBars(Window& window);

// keyboard.cpp
void QueueKeyEvent(HWND window, QKeyEvent* event, bool down);
void QueueCommittedText(HWND window, const QString& text);
void ResetKeyboard();
using KeyStates = std::bitset<256>;
KeyStates CurrentKeyStates();                 // as the last event left them
KeyStates TakenKeyStates();                   // as they were for the message taken last
void TakeKeyStates(const KeyStates& states);  // what GetKeyState answers from

// device_screen.cpp: the desktop window that is the device's screen.
inline constexpr int kMenuBarHeight = 26;
QWidget* DeviceScreen();
void OpenDeviceScreen(QSize size);
void CloseDeviceScreen();
void SetDeviceTitle(const QString& title);
void ReturnFocus();      // to the program's window, after a box or dialog over it has closed
QRect MainWindowArea();  // the room of a top-level window: the screen above the menu bar

// gdi.cpp
struct SliceGdiObject;
COLORREF BrushColor(HBRUSH brush);
void ReleaseGdi();

// instance.cpp: one program a device root.
void ServeOtherInstances(HWND window);
HWND FindOtherInstance();
bool IsOtherInstance(HWND window);
void AskOtherInstance(const char* request);
void StopServingInstances();

#endif
