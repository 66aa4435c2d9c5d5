// SPDX-License-Identifier: MIT
// The tables of windows and of their classes, and questions that a window's record answers without
// the toolkit.
#include "platform/qt/window/window.h"

#include <map>

namespace {

struct WithoutCase {
    bool operator()(const std::u16string& a, const std::u16string& b) const {
        return lstrcmpiW(a.c_str(), b.c_str()) < 0;
    }
};

}  // namespace

static std::map<std::u16string, std::unique_ptr<WindowClass>, WithoutCase> g_classes;
static std::map<UINT_PTR, std::unique_ptr<Window>> g_windows;  // ordered by age
static UINT_PTR g_next_handle = 0x10;

static Window* g_foreign = nullptr;

static UINT_PTR Number(HWND handle) { return reinterpret_cast<UINT_PTR>(handle); }

Window* AddWindowRecord(const WindowClass* window_class, const WindowOperations* operations,
                        HWND parent, int id) {
    auto window = std::make_unique<Window>();
    Window* result = window.get();
    const UINT_PTR number = g_next_handle += 4;
    window->handle = reinterpret_cast<HWND>(number);
    window->window_class = window_class;
    window->operations = operations;
    window->parent = parent;
    window->id = id;
    g_windows[number] = std::move(window);
    return result;
}

void RemoveWindowRecord(HWND handle) { g_windows.erase(Number(handle)); }

Window* FindWindowRecord(HWND handle) {
    const auto found = g_windows.find(Number(handle));
    return found == g_windows.end() ? nullptr : found->second.get();
}

std::vector<Window*> AllWindows() {
    std::vector<Window*> result;
    result.reserve(g_windows.size());
    for (auto& entry : g_windows) result.push_back(entry.second.get());
    return result;
}

Window* FirstWindow(bool (*wanted)(Window& window)) {
    for (auto& entry : g_windows)
        if (wanted(*entry.second)) return entry.second.get();
    return nullptr;
}

Window* TopLevelOf(Window* window) {
    while (window && window->parent) window = FindWindowRecord(window->parent);
    return window;
}

bool IsProgramWindow(const Window& window) { return !window.parent && !window.dialog; }

Window* ProgramWindow() {
    return FirstWindow([](Window& window) { return IsProgramWindow(window); });
}

void SetForeignWindow(Window* window) { g_foreign = window; }

Window* FindAnyWindow(HWND handle) {
    if (g_foreign && g_foreign->handle == handle) return g_foreign;
    return FindWindowRecord(handle);
}

void RegisterSystemClass(LPCWSTR name, WNDPROC procedure) {
    if (g_classes.count(name)) return;
    auto window_class = std::make_unique<WindowClass>();
    window_class->name = name;
    window_class->procedure = procedure;
    window_class->system = true;
    g_classes[name] = std::move(window_class);
}

const WindowClass* FindWindowClass(LPCWSTR name) {
    const auto found = g_classes.find(name);
    return found == g_classes.end() ? nullptr : found->second.get();
}

void ForgetProgramClasses() {
    for (auto entry = g_classes.begin(); entry != g_classes.end();)
        entry = entry->second->system ? std::next(entry) : g_classes.erase(entry);
}

constexpr size_t kFirstAtom = 0xC000;

ATOM RegisterClassW(const WNDCLASSW* window_class) {
    if (!window_class || !window_class->lpszClassName || !window_class->lpfnWndProc) return 0;
    auto& slot = g_classes[window_class->lpszClassName];
    if (slot) return 0;
    slot = std::make_unique<WindowClass>();
    slot->name = window_class->lpszClassName;
    slot->style = window_class->style;
    slot->procedure = window_class->lpfnWndProc;
    slot->background = window_class->hbrBackground;
    return static_cast<ATOM>(kFirstAtom + g_classes.size());
}

QRect ClientArea(const Window& window) {
    if (!window.widget) return QRect();
    QRect area = window.widget->rect();
    if (window.vertical.shown) area.setWidth(area.width() - kScrollBarSize);
    if (window.horizontal.shown) area.setHeight(area.height() - kScrollBarSize);
    return QRect(0, 0, std::max(area.width(), 0), std::max(area.height(), 0));
}

bool PaintedByProgram(const Window& window) { return window.widget && window.operations->paint; }

LRESULT CallWindowProcedure(Window& window, UINT message, WPARAM wparam, LPARAM lparam) {
    return window.window_class->procedure(window.handle, message, wparam, lparam);
}

void SendSize(Window& window) {
    const QRect area = ClientArea(window);
    CallWindowProcedure(window, WM_SIZE, SIZE_RESTORED, MAKELPARAM(area.width(), area.height()));
}

BOOL IsWindow(HWND handle) { return FindWindowRecord(handle) != nullptr; }

HWND GetParent(HWND handle) {
    const Window* window = FindWindowRecord(handle);
    return window ? window->parent : nullptr;
}

HWND GetDlgItem(HWND parent, int id) {
    for (const Window* window : AllWindows())
        if (parent && window->parent == parent && window->id == id && !window->dialog)
            return window->handle;
    return nullptr;
}

BOOL GetClientRect(HWND handle, RECT* rect) {
    const Window* window = FindWindowRecord(handle);
    if (!window || !rect) return FALSE;
    const QRect area = ClientArea(*window);
    *rect = RECT{0, 0, area.width(), area.height()};
    return TRUE;
}

BOOL InvalidateRect(HWND handle, const RECT* rect, BOOL erase) {
    Window* window = FindWindowRecord(handle);
    if (!window || !window->widget) return FALSE;
    if (!PaintedByProgram(*window)) return window->widget->update(), TRUE;
    const QRect area = ClientArea(*window);
    window->invalid +=
        rect
            ? QRect(QPoint(rect->left, rect->top), QPoint(rect->right - 1, rect->bottom - 1)) & area
            : area;
    if (erase) window->erase = true;
    return TRUE;
}

HWND GetActiveWindow() {
    const QWidget* active = QApplication::activeWindow();
    for (const Window* window : AllWindows()) {
        const QWidget* widget = window->widget;
        const bool framed = IsProgramWindow(*window) || window->dialog;
        if (!active || !widget || !framed) continue;
        if (active == (window->dialog ? widget : widget->window())) return window->handle;
    }
    return nullptr;
}
