// Windows: classes, creation and destruction, the tree, places and texts.
#include <map>
#include <memory>
#include <QScrollBar>

#include "platform/qt/dialog/dialogs.h"
#include "platform/qt/testing.h"
#include "platform/qt/window/accessible.h"
#include "platform/qt/window/window_widget.h"

namespace {

struct WithoutCase {
    bool operator()(const std::u16string& a, const std::u16string& b) const {
        return lstrcmpiW(a.c_str(), b.c_str()) < 0;
    }
};

std::map<std::u16string, std::unique_ptr<WindowClass>, WithoutCase> g_classes;
std::map<UINT_PTR, std::unique_ptr<Window>> g_windows;  // ordered by age
UINT_PTR g_next_handle = 0x10;

UINT_PTR Number(HWND handle) { return reinterpret_cast<UINT_PTR>(handle); }

QRect InitialPlace(int x, int y, int width, int height) {
    const QRect room = MainWindowArea();
    if (x == CW_USEDEFAULT) x = room.left(), y = room.top();
    if (width == CW_USEDEFAULT) width = room.width(), height = room.height();
    return QRect(x, y, std::max(width, 0), std::max(height, 0));
}

std::vector<HWND> ChildrenOf(HWND parent) {
    std::vector<HWND> children;
    for (const auto& entry : g_windows)
        if (entry.second->parent == parent) children.push_back(entry.second->handle);
    return children;
}

void RemoveWindow(HWND handle) {
    Window* window = FindWindowRecord(handle);
    if (!window) return;
    if (window->widget) {
        TellWidgetGone(window->widget);
        window->widget->hide();
        window->widget->deleteLater();
    }
    ForgetWindowMessages(handle);
    g_windows.erase(Number(handle));
}

// Dialogs are desktop windows of their own.
QPoint CornerOnScreen(const Window& window) {
    return DeviceScreen()->mapFromGlobal(window.widget->mapToGlobal(QPoint(0, 0)));
}

}  // namespace

Window* AddWindow(const WindowClass* window_class, HWND parent, int id) {
    auto window = std::make_unique<Window>();
    Window* result = window.get();
    const UINT_PTR number = g_next_handle += 4;
    window->handle = reinterpret_cast<HWND>(number);
    window->window_class = window_class;
    window->parent = parent;
    window->id = id;
    g_windows[number] = std::move(window);
    TakeMessagesFor(result->handle);
    return result;
}

Window* FindWindowRecord(HWND handle) {
    const auto found = g_windows.find(Number(handle));
    return found == g_windows.end() ? nullptr : found->second.get();
}

std::vector<Window*> AllWindows() {
    std::vector<Window*> result;
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

WindowWidget* PaintedWidget(const Window& window) {
    return qobject_cast<WindowWidget*>(window.widget.data());
}

void RegisterSystemClass(LPCWSTR name, WNDPROC procedure) {
    auto window_class = std::make_unique<WindowClass>();
    window_class->name = name;
    window_class->procedure = procedure;
    window_class->system = true;
    g_classes[name] = std::move(window_class);
}

ATOM RegisterClassW(const WNDCLASSW* window_class) {
    if (!window_class || !window_class->lpszClassName || !window_class->lpfnWndProc) return 0;
    auto& slot = g_classes[window_class->lpszClassName];
    if (slot) return 0;
    slot = std::make_unique<WindowClass>();
    slot->name = window_class->lpszClassName;
    slot->style = window_class->style;
    slot->procedure = window_class->lpfnWndProc;
    slot->background = window_class->hbrBackground;
    return static_cast<ATOM>(0xC000 + g_classes.size());
}

HWND CreateWindowExW(DWORD ex_style, LPCWSTR class_name, LPCWSTR title, DWORD style, int x, int y,
                     int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                     LPVOID parameter) {
    const auto found = g_classes.find(class_name);
    Window* parent_window = FindWindowRecord(parent);
    const bool child = style & WS_CHILD;
    if (found == g_classes.end() || (child && !parent_window)) return nullptr;
    if (WindowRefused(class_name)) return nullptr;

    const int id = child ? static_cast<int>(reinterpret_cast<INT_PTR>(menu)) : 0;
    Window* window = AddWindow(found->second.get(), child ? parent : nullptr, id);
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

void DestroyAllWindows() {
    while (!g_windows.empty()) {
        const HWND last = g_windows.rbegin()->second->handle;
        if (!DestroyWindow(last)) RemoveWindow(last);
    }
    for (auto entry = g_classes.begin(); entry != g_classes.end();)
        entry = entry->second->system ? std::next(entry) : g_classes.erase(entry);
}

BOOL IsWindow(HWND handle) { return FindWindowRecord(handle) != nullptr; }

BOOL IsWindowVisible(HWND handle) {
    const Window* window = FindWindowRecord(handle);
    return window && window->widget && window->widget->isVisible();
}

BOOL ShowWindow(HWND handle, int show) {
    if (IsOtherInstance(handle)) return AskOtherInstance("show"), TRUE;
    Window* window = FindWindowRecord(handle);
    if (!window || !window->widget) return FALSE;
    const BOOL before = window->widget->isVisible();
    window->widget->setVisible(show != SW_HIDE);
    if (IsProgramWindow(*window) && show != SW_HIDE) {
        DeviceScreen()->show();
        window->widget->setFocus();
    }
    return before;
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

QRect ClientArea(const Window& window) {
    if (!window.widget) return QRect();
    QRect area = window.widget->rect();
    if (window.vertical.shown) area.setWidth(area.width() - GetSystemMetrics(SM_CXVSCROLL));
    if (window.horizontal.shown) area.setHeight(area.height() - GetSystemMetrics(SM_CYHSCROLL));
    return QRect(0, 0, std::max(area.width(), 0), std::max(area.height(), 0));
}

void SendSize(Window& window) {
    const QRect area = ClientArea(window);
    CallWindowProcedure(window, WM_SIZE, SIZE_RESTORED, MAKELPARAM(area.width(), area.height()));
}

void PlaceWindow(Window& window, const QRect& rect) {
    if (!window.widget) return;
    if (window.dialog) return PlaceDialog(window, rect);
    const bool resized = window.widget->size() != rect.size();
    const HWND handle = window.handle;
    window.widget->setGeometry(rect);
    if (!resized) return;
    ArrangeScrollBars(window);
    window.invalid = window.widget->rect();
    window.erase = true;
    if (Window* still = FindWindowRecord(handle)) SendSize(*still);
}

BOOL MoveWindow(HWND handle, int x, int y, int width, int height, BOOL repaint) {
    Window* window = FindWindowRecord(handle);
    if (!window) return FALSE;
    PlaceWindow(*window, QRect(x, y, std::max(width, 0), std::max(height, 0)));
    if (repaint) InvalidateRect(handle, nullptr, TRUE);
    return TRUE;
}

BOOL GetClientRect(HWND handle, RECT* rect) {
    const Window* window = FindWindowRecord(handle);
    if (!window || !rect) return FALSE;
    const QRect area = ClientArea(*window);
    *rect = RECT{0, 0, area.width(), area.height()};
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
    PlaceWindow(*window, place);
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
    lstrcpynW(text, window ? window->text.c_str() : u"", size);
    return lstrlenW(text);
}

HWND GetDlgItem(HWND parent, int id) {
    for (const Window* window : AllWindows())
        if (parent && window->parent == parent && window->id == id && !window->dialog)
            return window->handle;
    return nullptr;
}

HWND GetParent(HWND handle) {
    const Window* window = FindWindowRecord(handle);
    return window ? window->parent : nullptr;
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

HWND GetActiveWindow() {
    const QWidget* active = QApplication::activeWindow();
    for (const Window* window : AllWindows())
        if (active && (IsProgramWindow(*window) ? active == DeviceScreen()
                                                : window->dialog && window->widget == active))
            return window->handle;
    return nullptr;
}

BOOL IsWindowEnabled(HWND handle) {
    const Window* window = FindWindowRecord(handle);
    return window && window->widget && window->widget->isEnabled();
}

BOOL SetForegroundWindow(HWND handle) {
    if (IsOtherInstance(handle)) return AskOtherInstance("foreground"), TRUE;
    Window* window = FindWindowRecord(handle);
    if (!window || !window->widget) return FALSE;
    QWidget* screen = DeviceScreen();
    screen->setWindowState(screen->windowState() & ~Qt::WindowMinimized);
    screen->show();
    screen->raise();
    screen->activateWindow();
    window->widget->setFocus();
    return TRUE;
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

BOOL InvalidateRect(HWND handle, const RECT* rect, BOOL erase) {
    Window* window = FindWindowRecord(handle);
    if (!window || !window->widget) return FALSE;
    if (!PaintedWidget(*window)) return window->widget->update(), TRUE;
    const QRect area = ClientArea(*window);
    window->invalid +=
        rect
            ? QRect(QPoint(rect->left, rect->top), QPoint(rect->right - 1, rect->bottom - 1)) & area
            : area;
    if (erase) window->erase = true;
    return TRUE;
}
