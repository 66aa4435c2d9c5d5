// Who looks on while the program draws: procedures that are null unless somebody sets them. Each is
// called on the window thread, after the call has drawn.
#ifndef QUILL_PLATFORM_QT_WINDOW_DRAWING_OBSERVER_H
#define QUILL_PLATFORM_QT_WINDOW_DRAWING_OBSERVER_H

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

struct DrawingObserver {
    void (*text)(const TextDrawing& drawn) = nullptr;
    void (*fill)(HWND window, const RECT& area, COLORREF color) = nullptr;
    void (*line)(HWND window, POINT from, POINT to, COLORREF color) = nullptr;
    void (*paint)(HWND window) = nullptr;  // BeginPaint of a WM_PAINT
    void (*frame)() = nullptr;             // a frame begins
};

extern DrawingObserver drawing_observer;

#endif
