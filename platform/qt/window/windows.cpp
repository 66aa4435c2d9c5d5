// SPDX-License-Identifier: MIT
// Windows: creation and destruction, places, texts, focus, and the default handling of messages.
#include "platform/qt/window/window.h"

#include "platform/qt/services/services.h"
#include "platform/qt/window/accessible.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/gdi.h"
#include "platform/qt/window/messages.h"
#include "platform/qt/window/window_widget.h"

static QRect InitialPlace(int x, int y, int width, int height) {
    const QRect room = MainWindowArea();
    if (x == CW_USEDEFAULT) x = room.left(), y = room.top();
    if (width == CW_USEDEFAULT) width = room.width(), height = room.height();
    return QRect(x, y, std::max(width, 0), std::max(height, 0));
}

// Maps through the desktop, because dialogs are separate windows of it.
static QPoint CornerOnScreen(const Window& window) {
    return DeviceScreen()->mapFromGlobal(window.widget->mapToGlobal(QPoint(0, 0)));
}

static std::vector<HWND> ChildrenOf(HWND parent) {
    std::vector<HWND> children;
    for (const Window* window : AllWindows())
        if (window->parent == parent) children.push_back(window->handle);
    return children;
}

static void RemoveWindow(HWND handle) {
    Window* window = FindWindowRecord(handle);
    if (!window) return;
    if (window->widget) {
        TellWidgetGone(window->widget);
        window->widget->hide();
        window->widget->deleteLater();
    }
    ForgetWindowMessages(handle);
    RemoveWindowRecord(handle);
}

// ---------------------------------------------------------------- operations

static void PaintNow(Window& window) {
    if (WindowWidget* widget = PaintedWidget(window)) widget->PaintInvalid();
}

static void PlaceOwn(Window& window, const QRect& rect) {
    if (!window.widget) return;
    const bool resized = window.widget->size() != rect.size();
    const HWND handle = window.handle;
    window.widget->setGeometry(rect);
    if (!resized) return;
    ArrangeScrollBars(window);
    window.invalid = window.widget->rect();
    window.erase = true;
    if (Window* still = FindWindowRecord(handle)) SendSize(*still);
}

static LRESULT SendToPainted(Window& window, UINT message, WPARAM wparam, LPARAM lparam) {
    WindowWidget* widget = PaintedWidget(window);
    if (message != WM_PAINT || !widget || widget->painting())
        return CallWindowProcedure(window, message, wparam, lparam);
    InvalidateRect(window.handle, nullptr, TRUE);
    widget->PaintInvalid();
    return 0;
}

constexpr WindowOperations kPaintedOperations = {PaintNow, PlaceOwn, ShowOwnWindow, BringOwnWindow,
                                                 SendToPainted};

// ---------------------------------------------------------------- default procedure

static LRESULT CloseByDefault(Window& window, WPARAM) {
    DestroyWindow(window.handle);
    return 0;
}

static LRESULT PaintByDefault(Window& window, WPARAM) {
    PAINTSTRUCT paint;
    BeginPaint(window.handle, &paint);
    EndPaint(window.handle, &paint);
    return 0;
}

static LRESULT EraseByDefault(Window& window, WPARAM dc) {
    const HBRUSH background = window.window_class->background;
    if (!background) return 0;
    RECT area;
    GetClientRect(window.handle, &area);
    FillRect(reinterpret_cast<HDC>(dc), &area, background);
    return 1;
}

static LRESULT TakeKeyByDefault(Window& window, WPARAM key) {
    if (key == VK_F10 && IsProgramWindow(window)) OpenScreenMenu();
    return 0;
}

namespace {

struct DefaultRow {
    UINT message;
    LRESULT (*handle)(Window& window, WPARAM wparam);
};

}  // namespace

static const DefaultRow kDefaults[] = {
    {WM_CLOSE, CloseByDefault},
    {WM_PAINT, PaintByDefault},
    {WM_ERASEBKGND, EraseByDefault},
    {WM_KEYDOWN, TakeKeyByDefault},
};

constexpr WindowOperations kToolkitOperations = {nullptr, PlaceOwn, ShowOwnWindow, BringOwnWindow,
                                                 CallWindowProcedure};

Window* AddWindow(const WindowClass* window_class, const WindowOperations* operations, HWND parent,
                  int id) {
    Window* window = AddWindowRecord(window_class, operations, parent, id);
    TakeMessagesFor(window->handle);
    return window;
}

BOOL ShowOwnWindow(Window& window, int show) {
    if (!window.widget) return FALSE;
    const BOOL before = window.widget->isVisible();
    window.widget->setVisible(show != SW_HIDE);
    if (IsProgramWindow(window) && show != SW_HIDE) {
        DeviceScreen()->show();
        window.widget->setFocus();
    }
    return before;
}

BOOL BringOwnWindow(Window& window) {
    if (!window.widget) return FALSE;
    QWidget* screen = DeviceScreen();
    screen->setWindowState(screen->windowState() & ~Qt::WindowMinimized);
    screen->show();
    screen->raise();
    screen->activateWindow();
    window.widget->setFocus();
    return TRUE;
}

void DestroyAllWindows() {
    for (std::vector<Window*> left = AllWindows(); !left.empty(); left = AllWindows()) {
        const HWND last = left.back()->handle;
        if (!DestroyWindow(last)) RemoveWindow(last);
    }
    ForgetProgramClasses();
}

static bool Refused(LPCWSTR class_name) {
    return window_observer.refuse && window_observer.refuse(class_name);
}

HWND CreateWindowExW(DWORD ex_style, LPCWSTR class_name, LPCWSTR title, DWORD style, int x, int y,
                     int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                     LPVOID parameter) {
    const WindowClass* window_class = FindWindowClass(class_name);
    Window* parent_window = FindWindowRecord(parent);
    const bool child = style & WS_CHILD;
    if (!window_class || (child && !parent_window) || Refused(class_name)) return nullptr;

    const int id = child ? static_cast<int>(reinterpret_cast<INT_PTR>(menu)) : 0;
    Window* window = AddWindow(window_class, &kPaintedOperations, child ? parent : nullptr, id);
    const HWND handle = window->handle;
    window->text = title ? title : u"";
    window->widget =
        new WindowWidget(handle, child ? parent_window->widget.data() : DeviceScreen());
    AttachScrollBars(*window, style);
    const QRect place = InitialPlace(x, y, width, height);
    window->widget->setGeometry(place);
    ArrangeScrollBars(*window);
    if (!child) SetDeviceTitle(FromWide(title));

    CREATESTRUCTW create = {};
    create.lpCreateParams = parameter;
    create.hInstance = instance;
    create.hMenu = menu;
    create.hwndParent = parent;
    create.x = place.x(), create.y = place.y();
    create.cx = place.width(), create.cy = place.height();
    create.style = static_cast<LONG>(style);
    create.lpszName = title;
    create.lpszClass = class_name;
    create.dwExStyle = ex_style;
    if (CallWindowProcedure(*window, WM_CREATE, 0, reinterpret_cast<LPARAM>(&create)) == -1) {
        DestroyWindow(handle);
        return nullptr;
    }
    window = FindWindowRecord(handle);
    if (!window) return nullptr;
    SendSize(*window);
    if (style & WS_VISIBLE) ShowWindow(handle, SW_SHOW);
    if (!child) ServeOtherInstances(handle);
    window = FindWindowRecord(handle);
    if (window) TellWidgetMade(window->widget);
    return window ? handle : nullptr;
}

BOOL DestroyWindow(HWND handle) {
    Window* window = FindWindowRecord(handle);
    if (!window || window->destroying) return FALSE;
    window->destroying = true;
    CallWindowProcedure(*window, WM_DESTROY, 0, 0);
    for (const HWND child : ChildrenOf(handle)) DestroyWindow(child);
    window = FindWindowRecord(handle);
    if (window && IsProgramWindow(*window)) StopServingInstances();
    RemoveWindow(handle);
    return TRUE;
}

BOOL IsWindowVisible(HWND handle) {
    const Window* window = FindWindowRecord(handle);
    return window && window->widget && window->widget->isVisible();
}

BOOL ShowWindow(HWND handle, int show) {
    Window* window = FindAnyWindow(handle);
    return window ? window->operations->show(*window, show) : FALSE;
}

BOOL UpdateWindow(HWND handle) {
    Window* window = FindWindowRecord(handle);
    if (!window || !window->widget) return FALSE;
    WindowWidget* widget = PaintedWidget(*window);
    if (widget && !widget->painting()) widget->PaintInvalid();
    return TRUE;
}

BOOL EnableWindow(HWND handle, BOOL enable) {
    Window* window = FindWindowRecord(handle);
    if (!window || !window->widget) return FALSE;
    const BOOL before = !window->widget->isEnabled();
    window->widget->setEnabled(enable);
    return before;
}

BOOL MoveWindow(HWND handle, int x, int y, int width, int height, BOOL repaint) {
    Window* window = FindWindowRecord(handle);
    if (!window) return FALSE;
    const QRect place(x, y, std::max(width, 0), std::max(height, 0));
    window->operations->place(*window, place);
    if (repaint) InvalidateRect(handle, nullptr, TRUE);
    return TRUE;
}

BOOL GetWindowRect(HWND handle, RECT* rect) {
    const Window* window = FindWindowRecord(handle);
    if (!window || !rect || !window->widget) return FALSE;
    const QPoint corner = CornerOnScreen(*window);
    *rect = RECT{corner.x(), corner.y(), corner.x() + window->widget->width(),
                 corner.y() + window->widget->height()};
    return TRUE;
}

BOOL SetWindowPos(HWND handle, HWND, int x, int y, int width, int height, UINT flags) {
    Window* window = FindWindowRecord(handle);
    if (!window || !window->widget) return FALSE;
    const Window* parent = window->dialog ? nullptr : FindWindowRecord(window->parent);
    QRect place(CornerOnScreen(*window), window->widget->size());
    if (parent) place.translate(-CornerOnScreen(*parent));
    if (!(flags & SWP_NOMOVE)) place.moveTo(x, y);
    if (!(flags & SWP_NOSIZE)) place.setSize(QSize(std::max(width, 0), std::max(height, 0)));
    window->operations->place(*window, place);
    return TRUE;
}

BOOL ClientToScreen(HWND handle, POINT* point) {
    const Window* window = FindWindowRecord(handle);
    if (!window || !window->widget || !point) return FALSE;
    const QPoint corner = CornerOnScreen(*window);
    point->x += corner.x();
    point->y += corner.y();
    return TRUE;
}

BOOL ScreenToClient(HWND handle, POINT* point) {
    const Window* window = FindWindowRecord(handle);
    if (!window || !window->widget || !point) return FALSE;
    const QPoint corner = CornerOnScreen(*window);
    point->x -= corner.x();
    point->y -= corner.y();
    return TRUE;
}

BOOL SetWindowTextW(HWND handle, LPCWSTR text) {
    Window* window = FindWindowRecord(handle);
    if (!window || !text) return FALSE;
    if (window->control)
        return SendMessageW(handle, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)) == TRUE;
    if (window->text == text) return TRUE;
    window->text = text;
    if (IsProgramWindow(*window)) SetDeviceTitle(FromWide(text));
    if (window->dialog && window->widget) window->widget->setWindowTitle(FromWide(text));
    if (window->window_class->name == STATUSCLASSNAME) InvalidateRect(handle, nullptr, FALSE);
    return TRUE;
}

int GetWindowTextW(HWND handle, LPWSTR text, int size) {
    const Window* window = FindWindowRecord(handle);
    if (!text || size < 1) return 0;
    if (window && window->control)
        return static_cast<int>(SendMessageW(handle, WM_GETTEXT, static_cast<WPARAM>(size),
                                             reinterpret_cast<LPARAM>(text)));
    CopyUnits(text, window ? window->text.c_str() : u"", size);
    return lstrlenW(text);
}

HWND SetFocus(HWND handle) {
    Window* window = FindWindowRecord(handle);
    const HWND before = GetFocus();
    if (window && window->widget) window->widget->setFocus();
    return before;
}

HWND GetFocus() {
    const QWidget* focus = QApplication::focusWidget();
    if (!focus) focus = TopMostWidget()->focusWidget();
    for (; focus; focus = focus->parentWidget())
        for (const Window* window : AllWindows())
            if (window->widget == focus) return window->handle;
    return nullptr;
}

BOOL IsWindowEnabled(HWND handle) {
    const Window* window = FindWindowRecord(handle);
    return window && window->widget && window->widget->isEnabled();
}

BOOL SetForegroundWindow(HWND handle) {
    Window* window = FindAnyWindow(handle);
    return window ? window->operations->foreground(*window) : FALSE;
}

HWND FindWindowW(LPCWSTR class_name, LPCWSTR title) {
    for (const Window* window : AllWindows()) {
        const LPCWSTR own_class = window->window_class->name.c_str();
        if (!IsProgramWindow(*window) || (class_name && lstrcmpiW(own_class, class_name) != 0))
            continue;
        if (!title || window->text == title) return window->handle;
    }
    return title ? nullptr : FindOtherInstance();
}

struct MetricRow {
    int index;
    int (*pixels)();
};

static const MetricRow kMetrics[] = {
    {SM_CXSCREEN, [] { return DeviceScreen()->width(); }},
    {SM_CYSCREEN, [] { return DeviceScreen()->height(); }},
    {SM_CXVSCROLL, [] { return kScrollBarSize; }},
    {SM_CYHSCROLL, [] { return kScrollBarSize; }},
};

int GetSystemMetrics(int index) {
    for (const MetricRow& row : kMetrics)
        if (row.index == index) return row.pixels();
    return 0;
}

LRESULT DefWindowProcW(HWND handle, UINT message, WPARAM wparam, LPARAM) {
    Window* window = FindWindowRecord(handle);
    for (const DefaultRow& row : kDefaults)
        if (window && row.message == message) return row.handle(*window, wparam);
    return 0;
}
