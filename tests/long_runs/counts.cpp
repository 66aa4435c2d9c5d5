// SPDX-License-Identifier: MIT
// The calls that take and give back, by way of the linker (CMakeLists.txt has their names too).
#include "tests/long_runs/counts.h"

#include "windows_ce.h"

Counts counts;

// COUNTED(NAME, SYMBOL, RESULT, PARAMETERS, ARGUMENTS, CHANGE): CHANGE sees `result`.
#define COUNTED(name, symbol, type, parameters, arguments, change) \
    type Real##name parameters __asm__("__real_" symbol);          \
    type Counted##name parameters __asm__("__wrap_" symbol);       \
    type Counted##name parameters {                                \
        const type result = Real##name arguments;                  \
        change;                                                    \
        return result;                                             \
    }

COUNTED(Thread, "_Z12CreateThreadPvjPFjS_ES_jPj", HANDLE,
        (LPVOID security, DWORD stack, LPTHREAD_START_ROUTINE run, LPVOID of, DWORD how, DWORD* id),
        (security, stack, run, of, how, id), counts.handles += result != nullptr)
COUNTED(Event, "_Z12CreateEventWPviiPKDs", HANDLE,
        (LPVOID security, BOOL manual, BOOL set, LPCWSTR name), (security, manual, set, name),
        counts.handles += result != nullptr)
COUNTED(CloseHandle, "_Z11CloseHandleP11SliceHandle", BOOL, (HANDLE handle), (handle),
        counts.handles -= result != FALSE)
COUNTED(Font, "_Z19CreateFontIndirectWPK8LOGFONTW", HFONT, (const LOGFONTW* font), (font),
        counts.objects += result != nullptr)
COUNTED(Brush, "_Z16CreateSolidBrushj", HBRUSH, (COLORREF color), (color),
        counts.objects += result != nullptr)
COUNTED(Pen, "_Z9CreatePeniij", HPEN, (int style, int width, COLORREF color), (style, width, color),
        counts.objects += result != nullptr)
COUNTED(DeleteObject, "_Z12DeleteObjectP14SliceGdiObject", BOOL, (HGDIOBJ object), (object),
        counts.objects -= result != FALSE)
COUNTED(GetDC, "_Z5GetDCP11SliceWindow", HDC, (HWND window), (window),
        counts.contexts += result != nullptr)
COUNTED(ReleaseDC, "_Z9ReleaseDCP11SliceWindowP18SliceDeviceContext", int, (HWND window, HDC dc),
        (window, dc), counts.contexts -= result != 0)
COUNTED(Socket, "_Z11SliceSocketiii", SOCKET, (int family, int type, int protocol),
        (family, type, protocol), counts.sockets += result != INVALID_SOCKET)
COUNTED(CloseSocket, "_Z16SliceCloseSocketm", int, (SOCKET made), (made),
        counts.sockets -= result == 0)
COUNTED(OpenKey, "_Z13RegOpenKeyExWP8SliceKeyPKDsjjPS0_", LONG,
        (HKEY key, LPCWSTR name, DWORD options, DWORD access, HKEY* opened),
        (key, name, options, access, opened), counts.keys += result == ERROR_SUCCESS)
COUNTED(CreateKey, "_Z15RegCreateKeyExWP8SliceKeyPKDsjPDsjjPvPS0_Pj", LONG,
        (HKEY key, LPCWSTR name, DWORD reserved, LPWSTR kind, DWORD options, DWORD access,
         LPVOID security, HKEY* opened, DWORD* how),
        (key, name, reserved, kind, options, access, security, opened, how),
        counts.keys += result == ERROR_SUCCESS)
COUNTED(CloseKey, "_Z11RegCloseKeyP8SliceKey", LONG, (HKEY key), (key),
        counts.keys -= result == ERROR_SUCCESS)
