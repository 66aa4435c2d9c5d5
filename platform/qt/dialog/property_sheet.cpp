// SPDX-License-Identifier: MIT
// Property sheets: tabs whose pages are dialogs, with OK and Cancel below.
#include <QHBoxLayout>
#include <QPushButton>
#include <QScrollArea>
#include <QTabWidget>
#include <QVBoxLayout>

#include "platform/qt/dialog/dialogs.h"
#include "platform/qt/shell/shell.h"
#include "platform/qt/window/messages.h"
#include "platform/qt/window/window.h"

struct SheetPage {
    PROPSHEETPAGEW page = {};
    DialogTemplate shape;
    QScrollArea* place = nullptr;
    HWND window = nullptr;  // null until the page is first shown
};

struct SheetData {
    std::vector<SheetPage> pages;
    QTabWidget* tabs = nullptr;
    int current = -1;
};

static LRESULT CALLBACK SheetProcedure(HWND sheet, UINT message, WPARAM wparam, LPARAM lparam);

static const WindowClass kSheetClass = {u"PropertySheet", 0, SheetProcedure, nullptr};
static const WindowClass kPageClass = {u"PropertyPage", 0, DialogWindowProcedure, nullptr};

namespace {

// A page's area asks for the size of the largest page, whatever it shows at the moment.
class PageArea : public QScrollArea {
  public:
    PageArea(QSize wanted, QWidget* parent) : QScrollArea(parent), wanted_(wanted) {
        setFrameShape(QFrame::NoFrame);
        setFocusPolicy(Qt::NoFocus);
    }
    QSize sizeHint() const override { return wanted_; }
    QSize minimumSizeHint() const override { return QSize(0, 0); }

  private:
    QSize wanted_;
};

}  // namespace

static std::shared_ptr<SheetData> SheetOf(HWND sheet) {
    const Window* window = FindWindowRecord(sheet);
    return window && window->dialog ? window->dialog->sheet : nullptr;
}

static HWND CurrentPage(const SheetData& data) {
    return data.current < 0 ? nullptr : data.pages[static_cast<size_t>(data.current)].window;
}

static LRESULT Notify(HWND sheet, HWND page, UINT code) {
    PSHNOTIFY notice = {};
    notice.hdr.hwndFrom = sheet;
    notice.hdr.code = code;
    return page ? SendMessageW(page, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notice)) : 0;
}

static bool ReadPages(const PROPSHEETHEADERW& header, SheetData* data) {
    for (UINT i = 0; i < header.nPages; ++i) {
        SheetPage page;
        page.page = header.ppsp[i];
        if (page.page.dwSize != sizeof(PROPSHEETPAGEW) || !page.page.pfnDlgProc ||
            !LoadDialogTemplate(page.page.pszTemplate, &page.shape))
            return false;
        data->pages.push_back(std::move(page));
    }
    return !data->pages.empty();
}

static QSize LargestPage(const SheetData& data) {
    QSize size;
    for (const SheetPage& page : data.pages)
        size = size.expandedTo(DialogPixels(page.shape.width, page.shape.height));
    return size;
}

static QString TitleOf(const SheetPage& page) {
    return page.page.dwFlags & PSP_USETITLE ? FromWide(page.page.pszTitle)
                                            : FromWide(page.shape.caption.c_str());
}

// A click on a tab only asks for its page. The sheet turns to it when the current page agrees.
static void ConnectTabs(HWND sheet, QTabWidget* tabs) {
    QObject::connect(tabs, &QTabWidget::currentChanged, tabs, [sheet, tabs](int index) {
        const auto data = SheetOf(sheet);
        if (!data || index == data->current) return;
        const QSignalBlocker quiet(tabs);
        tabs->setCurrentIndex(data->current);
        QueueInput(sheet, PSM_SETCURSEL, static_cast<WPARAM>(index), 0);
    });
}

static void MakeTabs(Window& window, SheetData& data, QLayout* layout) {
    data.tabs = new QTabWidget(window.dialog->content);
    const QSize size = LargestPage(data);
    for (SheetPage& page : data.pages) {
        page.place = new PageArea(size, data.tabs);
        data.tabs->addTab(page.place, TitleOf(page));
    }
    layout->addWidget(data.tabs);
    ConnectTabs(window.handle, data.tabs);
}

static void MakeSheetButton(Window& window, int id, DWORD type, LPCWSTR text, QLayout* row) {
    DialogItem item;
    item.style = WS_VISIBLE | WS_TABSTOP | type;
    item.id = id;
    item.window_class.is_number = true;
    item.window_class.number = 0x80;
    item.text = text;
    row->addWidget(FindWindowRecord(MakeControl(window, item))->widget);
}

static HWND MakeSheet(const PROPSHEETHEADERW& header, const std::shared_ptr<SheetData>& data) {
    const std::u16string title = header.pszCaption ? header.pszCaption : u"";
    Window* window = MakeDialogWindow(&kSheetClass, DialogOwner(header.hwndParent), title, nullptr);
    auto* widget = static_cast<DialogWidget*>(window->widget.data());
    window->dialog->content = new QWidget(widget);
    window->dialog->sheet = data;
    widget->SetBody(window->dialog->content);
    auto* layout = new QVBoxLayout(window->dialog->content);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(4);
    MakeTabs(*window, *data, layout);
    auto* row = new QHBoxLayout;
    row->addStretch();
    layout->addLayout(row);
    MakeSheetButton(*window, IDOK, BS_DEFPUSHBUTTON, u"OK", row);
    MakeSheetButton(*window, IDCANCEL, BS_PUSHBUTTON, u"Cancel", row);
    window->dialog->wanted = window->dialog->content->sizeHint();
    PlaceDialog(*window, CenteredPlace(window->dialog->wanted));
    return window->handle;
}

// A page is a dialog in its tab; `widget` is the parent of its controls.
static bool MakePage(HWND sheet, SheetPage* page) {
    Window* window = AddWindow(&kPageClass, &kDialogOperations, sheet, 0);
    const HWND handle = window->handle;
    window->text = page->shape.caption;
    window->dialog = std::make_shared<DialogData>();
    window->dialog->procedure = page->page.pfnDlgProc;
    window->dialog->content = new QWidget;
    window->widget = window->dialog->content;
    window->widget->setFixedSize(DialogPixels(page->shape.width, page->shape.height));
    page->place->setWidget(window->widget);
    if (!MakeControls(*window, page->shape)) return DestroyWindow(handle), false;
    window->widget->show();
    page->window = handle;
    StartDialog(handle, reinterpret_cast<LPARAM>(&page->page));
    return IsWindow(handle);
}

static bool ActivatePage(HWND sheet, int index) {
    const auto data = SheetOf(sheet);
    SheetPage& page = data->pages[static_cast<size_t>(index)];
    if (!page.window && !MakePage(sheet, &page)) return false;
    if (!IsWindow(sheet)) return false;
    data->current = index;
    {
        const QSignalBlocker quiet(data->tabs);
        data->tabs->setCurrentIndex(index);
    }
    Notify(sheet, page.window, PSN_SETACTIVE);
    return true;
}

static LRESULT TurnTo(HWND sheet, WPARAM index) {
    const auto data = SheetOf(sheet);
    if (index >= data->pages.size()) return FALSE;
    if (static_cast<int>(index) == data->current) return TRUE;
    if (Notify(sheet, CurrentPage(*data), PSN_KILLACTIVE) || !IsWindow(sheet)) return FALSE;
    return ActivatePage(sheet, static_cast<int>(index));
}

// Asks every page that has been shown. A page that refuses becomes the visible one, and the sheet
// stays open.
static bool ApplyPages(HWND sheet, SheetData& data) {
    if (Notify(sheet, CurrentPage(data), PSN_KILLACTIVE)) return false;
    for (size_t i = 0; i < data.pages.size(); ++i) {
        if (Notify(sheet, data.pages[i].window, PSN_APPLY) == PSNRET_NOERROR) continue;
        if (IsWindow(sheet)) ActivatePage(sheet, static_cast<int>(i));
        return false;
    }
    return true;
}

static void Ok(HWND sheet) {
    const auto data = SheetOf(sheet);
    if (ApplyPages(sheet, *data)) EndDialog(sheet, 1);
}

static void Cancel(HWND sheet) {
    const auto data = SheetOf(sheet);
    if (Notify(sheet, CurrentPage(*data), PSN_QUERYCANCEL)) return;
    for (const SheetPage& page : data->pages) Notify(sheet, page.window, PSN_RESET);
    EndDialog(sheet, 0);
}

namespace {

struct ButtonRow {
    WPARAM button;  // in wParam of PSM_PRESSBUTTON
    int id;
    void (*press)(HWND sheet);
};

}  // namespace

static const ButtonRow kSheetButtons[] = {{PSBTN_OK, IDOK, Ok}, {PSBTN_CANCEL, IDCANCEL, Cancel}};

static LRESULT CALLBACK SheetProcedure(HWND sheet, UINT message, WPARAM wparam, LPARAM lparam) {
    const auto data = SheetOf(sheet);
    if (message == PSM_SETCURSEL) return TurnTo(sheet, wparam);
    if (message == PSM_GETCURRENTPAGEHWND) return reinterpret_cast<LRESULT>(CurrentPage(*data));
    for (const ButtonRow& row : kSheetButtons) {
        const bool pressed = message == PSM_PRESSBUTTON && wparam == row.button;
        if (pressed || (message == WM_COMMAND && LOWORD(wparam) == row.id))
            return row.press(sheet), 0;
    }
    return DialogWindowProcedure(sheet, message, wparam, lparam);
}

INT_PTR PropertySheetW(LPCPROPSHEETHEADERW header) {
    if (!header || header->dwSize != sizeof(PROPSHEETHEADERW) || !header->ppsp) return -1;
    if (!(header->dwFlags & PSH_PROPSHEETPAGE)) return -1;
    if (header->hwndParent && !IsWindow(header->hwndParent)) return -1;
    auto data = std::make_shared<SheetData>();
    if (!ReadPages(*header, data.get())) return -1;
    const HWND sheet = MakeSheet(*header, data);
    const UINT start = header->nStartPage < header->nPages ? header->nStartPage : 0;
    if (!ActivatePage(sheet, static_cast<int>(start))) return DestroyWindow(sheet), -1;
    return RunDialogLoop(sheet, true);
}
