// SPDX-License-Identifier: MIT
// The records behind the window handles, their table, the operations of each kind of window, and
// the observers. Window thread only.
#ifndef QUILL_PLATFORM_QT_WINDOW_WINDOW_H
#define QUILL_PLATFORM_QT_WINDOW_WINDOW_H

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
struct DialogData;
struct ControlData;
struct Window;

struct WindowClass {
    std::u16string name;
    UINT style = 0;
    WNDPROC procedure = nullptr;
    HBRUSH background = nullptr;
    bool system = false;  // a class of the slice, registered from the start
};

// What a window does when it is asked to. Each kind of window has one record of these, so the
// caller need not know the kind.
struct WindowOperations {
    // Paints what is invalid, at once. Null: the toolkit paints the window.
    void (*paint)(Window& window);
    void (*place)(Window& window, const QRect& rect);  // moves; sends WM_SIZE if the size changes
    BOOL (*show)(Window& window, int show);            // as ShowWindow
    BOOL (*foreground)(Window& window);                // as SetForegroundWindow
    LRESULT (*send)(Window& window, UINT message, WPARAM wparam, LPARAM lparam);
};

struct ScrollBarState {
    QScrollBar* bar = nullptr;  // null: the window has no such bar
    int minimum = 0;
    int maximum = 0;
    UINT page = 0;
    int position = 0;
    bool shown = false;
};

// One window. A run never uses the same `handle` twice.
struct Window {
    HWND handle = nullptr;
    const WindowClass* window_class = nullptr;
    const WindowOperations* operations = nullptr;
    HWND parent = nullptr;
    int id = 0;
    std::u16string text;
    QPointer<QWidget> widget;  // a WindowWidget if the program paints it
    ScrollBarState vertical;
    ScrollBarState horizontal;
    QWidget* corner = nullptr;  // between the bars, shown if both are
    QRegion invalid;            // to be painted
    QRegion painted;            // what the last BeginPaint made valid
    bool erase = true;          // the next BeginPaint sends WM_ERASEBKGND
    bool destroying = false;
    std::shared_ptr<DialogData> dialog;    // of dialogs, sheets and pages
    std::shared_ptr<ControlData> control;  // of their controls
};

inline QString FromWide(LPCWSTR text) { return QString(reinterpret_cast<const QChar*>(text)); }
inline std::u16string ToWide(const QString& text) { return text.toStdU16String(); }

// The table of windows.
Window* AddWindowRecord(const WindowClass* window_class, const WindowOperations* operations,
                        HWND parent, int id);
void RemoveWindowRecord(HWND handle);
Window* FindWindowRecord(HWND handle);                // null if the window is gone
std::vector<Window*> AllWindows();                    // oldest first
Window* FirstWindow(bool (*wanted)(Window& window));  // the oldest wanted one; null: there is none
Window* TopLevelOf(Window* window);
bool IsProgramWindow(const Window& window);  // top-level, and not a dialog
Window* ProgramWindow();                     // the oldest one; null: there is none

// The window of another program. It is not in the table; only FindAnyWindow finds it.
void SetForeignWindow(Window* window);
Window* FindAnyWindow(HWND handle);  // a window of the table, or the foreign one

// The table of classes.
void RegisterSystemClass(LPCWSTR name, WNDPROC procedure);
inline constexpr LPCWSTR kCommandBarClass = u"QuillCommandBar";
const WindowClass* FindWindowClass(LPCWSTR name);  // null: there is none
void ForgetProgramClasses();

inline constexpr int kScrollBarSize = 13;     // pixels across
QRect ClientArea(const Window& window);       // the widget without the scroll bars that are shown
bool PaintedByProgram(const Window& window);  // by WM_PAINT, not by the toolkit
LRESULT CallWindowProcedure(Window& window, UINT message, WPARAM wparam, LPARAM lparam);
void SendSize(Window& window);

// Adds a record without a widget. From now on messages can be posted to it.
Window* AddWindow(const WindowClass* window_class, const WindowOperations* operations, HWND parent,
                  int id);
void DestroyAllWindows();

// The operations of a window that the toolkit paints, and parts of them for kinds that do some
// things differently.
extern const WindowOperations kToolkitOperations;
BOOL ShowOwnWindow(Window& window, int show);
BOOL BringOwnWindow(Window& window);

HWND FindOtherInstance();               // null: no other program runs on the device root
void ServeOtherInstances(HWND window);  // the window that they ask for
void StopServingInstances();

struct TextDrawing {
    HWND window;
    int x, y;
    RECT area;  // filled with the background; empty, at x and y: nothing was filled
    LPCWSTR text;
    UINT count;
    COLORREF color, background;
    int advance;  // of its first character, in pixels; 0: the font's own
};

// Each is called after the call has drawn.
struct DrawingObserver {
    void (*text)(const TextDrawing& drawn) = nullptr;
    void (*fill)(HWND window, const RECT& area, COLORREF color) = nullptr;
    void (*line)(HWND window, POINT from, POINT to, COLORREF color) = nullptr;
    void (*paint)(HWND window) = nullptr;  // BeginPaint of a WM_PAINT
    void (*frame)() = nullptr;             // a frame begins
};

inline DrawingObserver drawing_observer;

struct WindowObserver {
    bool (*refuse)(LPCWSTR class_name) = nullptr;  // true: no window of that class can be made
    bool (*hide_library)(LPCWSTR name) = nullptr;  // true: the library is missing
    // A timer starts; below 0 milliseconds: it stops.
    void (*timer)(HWND window, UINT_PTR id, int milliseconds) = nullptr;
    void (*silent_key)(BYTE virtual_key, DWORD flags) = nullptr;
    void (*beep)(UINT type) = nullptr;
    void (*dialog)() = nullptr;  // a dialog, a sheet or a chooser has appeared
    void (*idle)() = nullptr;    // the queue is empty and is about to sleep
};

inline WindowObserver window_observer;

#endif
