// SPDX-License-Identifier: MIT
#include "fuzz/window_balance.h"

#include "windows_ce.h"

Balance balance;

#define REAL(name) __asm__("__real_" name)
#define WRAP(name) __asm__("__wrap_" name)

// ---------------------------------------------------------------- objects

HFONT RealFont(const LOGFONTW*) REAL("_Z19CreateFontIndirectWPK8LOGFONTW");
HFONT CountFont(const LOGFONTW*) WRAP("_Z19CreateFontIndirectWPK8LOGFONTW");
HFONT CountFont(const LOGFONTW* wanted) {
    const HFONT font = RealFont(wanted);
    balance.objects += font != nullptr;
    return font;
}

HBRUSH RealBrush(COLORREF) REAL("_Z16CreateSolidBrushj");
HBRUSH CountBrush(COLORREF) WRAP("_Z16CreateSolidBrushj");
HBRUSH CountBrush(COLORREF color) {
    const HBRUSH brush = RealBrush(color);
    balance.objects += brush != nullptr;
    return brush;
}

HPEN RealPen(int, int, COLORREF) REAL("_Z9CreatePeniij");
HPEN CountPen(int, int, COLORREF) WRAP("_Z9CreatePeniij");
HPEN CountPen(int style, int width, COLORREF color) {
    const HPEN pen = RealPen(style, width, color);
    balance.objects += pen != nullptr;
    return pen;
}

BOOL RealDelete(HGDIOBJ) REAL("_Z12DeleteObjectP14SliceGdiObject");
BOOL CountDelete(HGDIOBJ) WRAP("_Z12DeleteObjectP14SliceGdiObject");
BOOL CountDelete(HGDIOBJ object) {
    const BOOL deleted = RealDelete(object);
    balance.objects -= deleted;
    return deleted;
}

// ---------------------------------------------------------------- contexts

HDC RealBegin(HWND, PAINTSTRUCT*) REAL("_Z10BeginPaintP11SliceWindowP11PAINTSTRUCT");
HDC CountBegin(HWND, PAINTSTRUCT*) WRAP("_Z10BeginPaintP11SliceWindowP11PAINTSTRUCT");
HDC CountBegin(HWND window, PAINTSTRUCT* paint) {
    const HDC context = RealBegin(window, paint);
    balance.contexts += context != nullptr;
    return context;
}

BOOL RealEnd(HWND, const PAINTSTRUCT*) REAL("_Z8EndPaintP11SliceWindowPK11PAINTSTRUCT");
BOOL CountEnd(HWND, const PAINTSTRUCT*) WRAP("_Z8EndPaintP11SliceWindowPK11PAINTSTRUCT");
BOOL CountEnd(HWND window, const PAINTSTRUCT* paint) {
    balance.contexts -= paint->hdc != nullptr;
    return RealEnd(window, paint);
}

HDC RealContext(HWND) REAL("_Z5GetDCP11SliceWindow");
HDC CountContext(HWND) WRAP("_Z5GetDCP11SliceWindow");
HDC CountContext(HWND window) {
    ++balance.contexts;
    return RealContext(window);
}

int RealRelease(HWND, HDC) REAL("_Z9ReleaseDCP11SliceWindowP18SliceDeviceContext");
int CountRelease(HWND, HDC) WRAP("_Z9ReleaseDCP11SliceWindowP18SliceDeviceContext");
int CountRelease(HWND window, HDC context) {
    --balance.contexts;
    return RealRelease(window, context);
}

// ---------------------------------------------------------------- keys

LONG RealOpen(HKEY, LPCWSTR, DWORD, DWORD, HKEY*) REAL("_Z13RegOpenKeyExWP8SliceKeyPKDsjjPS0_");
LONG CountOpen(HKEY, LPCWSTR, DWORD, DWORD, HKEY*) WRAP("_Z13RegOpenKeyExWP8SliceKeyPKDsjjPS0_");
LONG CountOpen(HKEY key, LPCWSTR name, DWORD options, DWORD access, HKEY* opened) {
    const LONG error = RealOpen(key, name, options, access, opened);
    balance.keys += error == ERROR_SUCCESS;
    return error;
}

LONG RealCreate(HKEY, LPCWSTR, DWORD, LPWSTR, DWORD, DWORD, LPVOID, HKEY*, DWORD*)
    REAL("_Z15RegCreateKeyExWP8SliceKeyPKDsjPDsjjPvPS0_Pj");
LONG CountCreate(HKEY, LPCWSTR, DWORD, LPWSTR, DWORD, DWORD, LPVOID, HKEY*, DWORD*)
    WRAP("_Z15RegCreateKeyExWP8SliceKeyPKDsjPDsjjPvPS0_Pj");
LONG CountCreate(HKEY key, LPCWSTR name, DWORD reserved, LPWSTR kind, DWORD options, DWORD access,
                 LPVOID security, HKEY* opened, DWORD* disposition) {
    const LONG error =
        RealCreate(key, name, reserved, kind, options, access, security, opened, disposition);
    balance.keys += error == ERROR_SUCCESS;
    return error;
}

LONG RealClose(HKEY) REAL("_Z11RegCloseKeyP8SliceKey");
LONG CountClose(HKEY) WRAP("_Z11RegCloseKeyP8SliceKey");
LONG CountClose(HKEY key) {
    const LONG error = RealClose(key);
    balance.keys -= error == ERROR_SUCCESS;
    return error;
}

// ---------------------------------------------------------------- blocks

HLOCAL RealAllocate(UINT, size_t) REAL("_Z10LocalAllocjm");
HLOCAL CountAllocate(UINT, size_t) WRAP("_Z10LocalAllocjm");
HLOCAL CountAllocate(UINT flags, size_t bytes) {
    const HLOCAL block = RealAllocate(flags, bytes);
    balance.blocks += block != nullptr;
    return block;
}

HLOCAL RealFree(HLOCAL) REAL("_Z9LocalFreeP11SliceHandle");
HLOCAL CountFree(HLOCAL) WRAP("_Z9LocalFreeP11SliceHandle");
HLOCAL CountFree(HLOCAL block) {
    const HLOCAL left = RealFree(block);
    balance.blocks -= block && !left;
    return left;
}
