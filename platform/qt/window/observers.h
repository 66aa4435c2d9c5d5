// Who looks on while the program runs: procedures that are null unless somebody sets them. Each is
// called on the window thread.
#ifndef QUILL_PLATFORM_QT_WINDOW_OBSERVERS_H
#define QUILL_PLATFORM_QT_WINDOW_OBSERVERS_H

#include "windows_ce.h"

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
