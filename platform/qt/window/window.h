// SPDX-License-Identifier: MIT
// The records behind the window handles, their table, what can be done with a window of any kind,
// and who looks on. Window thread only.
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
    bool system = false;  // the slice's own, there from the start
};

// What a window does when it is asked to. Each kind of window has one record of them; whoever asks
// need not know the kind.
struct WindowOperations {
    // Paints what is invalid, at once. Null: the toolkit paints the window by itself.
    void (*paint)(Window& window);
    void (*place)(Window& window, const QRect& rect);  // moves, and sends WM_SIZE on a new size
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

// One window; `handle` is a number that is never given out twice in a run.
struct Window {
    HWND handle = nullptr;
    const WindowClass* window_class = nullptr;
    const WindowOperations* operations = nullptr;
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

// The table of windows.
Window* AddWindowRecord(const WindowClass* window_class, const WindowOperations* operations,
                        HWND parent, int id);
void RemoveWindowRecord(HWND handle);
Window* FindWindowRecord(HWND handle);                // null for a window that is gone
std::vector<Window*> AllWindows();                    // oldest first
Window* FirstWindow(bool (*wanted)(Window& window));  // the oldest one; null: none
Window* TopLevelOf(Window* window);
bool IsProgramWindow(const Window& window);  // top-level, and no dialog
Window* ProgramWindow();                     // the oldest of those; null: none

// The window of another program, which is in no list, and is found by its handle here alone.
void SetForeignWindow(Window* window);
Window* FindAnyWindow(HWND handle);  // a window of the table, or that one

// The table of classes.
void RegisterSystemClass(LPCWSTR name, WNDPROC procedure);
inline constexpr LPCWSTR kCommandBarClass = u"QuillCommandBar";
const WindowClass* FindWindowClass(LPCWSTR name);  // null: none
void ForgetProgramClasses();

inline constexpr int kScrollBarSize = 13;     // pixels across
QRect ClientArea(const Window& window);       // the widget less its shown scroll bars
bool PaintedByProgram(const Window& window);  // by WM_PAINT, and not by the toolkit
LRESULT CallWindowProcedure(Window& window, UINT message, WPARAM wparam, LPARAM lparam);
void SendSize(Window& window);

// A record without a widget; what is posted to it is taken from now on.
Window* AddWindow(const WindowClass* window_class, const WindowOperations* operations, HWND parent,
                  int id);
void DestroyAllWindows();

// Of a window that the toolkit paints, and parts for kinds that do some of it otherwise.
extern const WindowOperations kToolkitOperations;
BOOL ShowOwnWindow(Window& window, int show);
BOOL BringOwnWindow(Window& window);

HWND FindOtherInstance();               // null: this is the one that runs on the device root
void ServeOtherInstances(HWND window);  // the one that others ask for
void StopServingInstances();

struct TextDrawing {
    HWND window;
    int x, y;
    RECT area;  // filled with the background; empty, at x and y: nothing was
    LPCWSTR text;
    UINT count;
    COLORREF color, background;
    int advance;  // of its first character, pixels; 0: the font's
};

// Called after the call has drawn.
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
    bool (*hide_library)(LPCWSTR name) = nullptr;  // true: there is no such library
    // A timer runs from now on; below 0 milliseconds: no more.
    void (*timer)(HWND window, UINT_PTR id, int milliseconds) = nullptr;
    void (*silent_key)(BYTE virtual_key, DWORD flags) = nullptr;
    void (*beep)(UINT type) = nullptr;
    void (*dialog)() = nullptr;  // a dialog, a sheet or a chooser has come up
    void (*idle)() = nullptr;    // the queue is empty and goes to sleep
};

inline WindowObserver window_observer;

#endif
