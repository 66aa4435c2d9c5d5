// SPDX-License-Identifier: MIT
// The shell: puts the menu bar and the input panel below the program's window, and reports the
// input panel's place and the visible part of the screen. It also gives the device the desktop's
// clipboard, for text only, and its viewer. The help viewer is the only program that can be
// started: it is the desktop's viewer with the help page that this program contains.
#include "platform/qt/shell/shell.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMimeData>
#include <QMouseEvent>
#include <QScrollArea>
#include <QTemporaryFile>
#include <QUrl>
#include <QWindow>

#include "platform/qt/services/services.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/window.h"

static RECT PanelRect() {
    const QRect panel = InputPanelPlace();
    return RECT{panel.left(), panel.top(), panel.left() + panel.width(),
                panel.top() + panel.height()};
}

static bool ReadState(SIPINFO* info) {
    const QSize size = DeviceScreen()->size();
    const bool shown = InputPanelShown();
    info->fdwFlags = shown ? SIPF_ON : 0;
    info->rcSipRect = PanelRect();
    info->rcVisibleDesktop = RECT{0, 0, size.width(), shown ? info->rcSipRect.top : size.height()};
    return true;
}

static bool TakeState(const SIPINFO& info) {
    ShowInputPanel((info.fdwFlags & SIPF_ON) != 0);
    return true;
}

void InitCommonControls() {
    RegisterStatusWindow();
    RegisterCommandBar();
}

void FurnishShell() {
    auto* strip = new MenuStrip(DeviceScreen());
    auto* panel = new InputPanel(DeviceScreen());
    QObject::connect(strip->panel_button(), &QToolButton::clicked, strip, ShowInputPanel);
    FurnishScreen({strip, panel, ActivateMenuBar});
}

bool InputPanelShown() { return !ShellInputPanel()->isHidden(); }

static bool g_raised = false;  // by a tap into a field of a dialog

void ShowInputPanel(bool show) {
    g_raised = false;
    if (show == InputPanelShown()) return;
    ShellInputPanel()->setVisible(show);
    ShellMenuStrip()->panel_button()->setChecked(show);
    for (const Window* window : AllWindows())
        if (IsProgramWindow(*window))
            PostMessageW(window->handle, WM_SETTINGCHANGE, SPI_SETSIPINFO, 0);
}

static void MoveToOwnWindow(InputPanel* panel, QWidget* dialog) {
    constexpr Qt::WindowFlags kOwnWindow =
        Qt::Tool | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus;
    const QRect place = InputPanelPlace();
    const QRect on_desktop(DeviceScreen()->mapToGlobal(place.topLeft()), place.size());
    const bool free = dialog && !dialog->geometry().intersects(on_desktop);
    if (!free && !panel->isWindow()) return;
    panel->LetGo();  // the release of its mouse button goes elsewhere
    panel->setParent(DeviceScreen(), free ? kOwnWindow : Qt::Widget);
    panel->setAttribute(Qt::WA_ShowWithoutActivating);
    if (free) {
        panel->winId();  // creates the native window, which then follows the dialog
        panel->windowHandle()->setTransientParent(dialog->windowHandle());
    }
    ArrangeScreen();
    panel->show();
}

QSize WithFoot(const QWidget& dialog, QSize size) {
    const int foot = dialog.contentsMargins().bottom();
    if (foot == 0) return size;
    return QSize(std::max(size.width(), DeviceScreen()->width()), size.height() + foot);
}

// Makes room below the dialog's controls, as wide as the device. The room stays while the dialog is
// open, also while the panel is in another one above it.
static void MakeFoot(QWidget* dialog) {
    if (dialog->contentsMargins().bottom() > 0) return;
    const QSize own = dialog->size();
    dialog->setContentsMargins(0, 0, 0, kInputPanelHeight);
    const QSize size = WithFoot(*dialog, own);
    dialog->setMaximumSize(dialog->maximumSize().expandedTo(size));
    dialog->resize(size);
}

static void MoveToFoot(InputPanel* panel, QWidget* dialog) {
    QWidget* before = panel->parentWidget();
    if (before == (dialog ? dialog : DeviceScreen())) return;
    const bool shown = !panel->isHidden();  // a widget with a new parent is hidden
    panel->LetGo();
    before->removeEventFilter(panel);
    if (dialog) {
        MakeFoot(dialog);
        panel->setParent(dialog);
        dialog->installEventFilter(panel);
        panel->FillFoot();
    } else {
        panel->setParent(DeviceScreen());
        ArrangeScreen();
    }
    panel->setVisible(shown);
}

void LendInputPanel(QWidget* dialog) {
    InputPanel* panel = ShellInputPanel();
    if (!panel || panel->isHidden()) return;
    DesktopTellsPlaces() ? MoveToOwnWindow(panel, dialog) : MoveToFoot(panel, dialog);
    if (!dialog && g_raised) ShowInputPanel(false);
}

void TakeInputPanelFrom(const QWidget* dialog) {
    InputPanel* panel = ShellInputPanel();
    if (panel && DeviceScreen() && panel->parentWidget() == dialog) MoveToFoot(panel, nullptr);
}

static bool LeavesRoom() {
    constexpr int kLeastRoom = 100;
    return InputPanelPlace().top() >= kLeastRoom;
}

static void RaiseInputPanel(QLineEdit* field, const std::function<void()>& make_room) {
    if (InputPanelShown() || !LeavesRoom()) return;
    ShowInputPanel(true);
    g_raised = true;
    make_room();
    LendInputPanel(field->window());
    for (QWidget* each = field; each; each = each->parentWidget())
        if (auto* area = qobject_cast<QScrollArea*>(each)) area->ensureWidgetVisible(field, 4, 4);
}

// The toolkit makes mouse events of what a finger or a stylus does.
static bool IsTap(const QObject* field, const QEvent& event) {
    if (event.type() != QEvent::MouseButtonRelease) return false;
    const bool by_mouse =
        static_cast<const QMouseEvent&>(event).source() == Qt::MouseEventNotSynthesized;
    return !by_mouse && !static_cast<const QLineEdit*>(field)->isReadOnly();
}

namespace {

class TapWatch : public QObject {
  public:
    TapWatch(QLineEdit* field, std::function<void()> make_room)
        : QObject(field), field_(field), make_room_(std::move(make_room)) {}
    // The field takes the tap first: it moves when there is room to be made.
    bool eventFilter(QObject* field, QEvent* event) override {
        if (IsTap(field, *event))
            QMetaObject::invokeMethod(
                this, [this] { RaiseInputPanel(field_, make_room_); }, Qt::QueuedConnection);
        return false;
    }

  private:
    QLineEdit* field_;
    std::function<void()> make_room_;
};

}  // namespace

void OfferInputPanel(QLineEdit* field, const std::function<void()>& make_room) {
    field->installEventFilter(new TapWatch(field, make_room));
}

QSize RoomForDialogs() {
    QSize room = DeviceScreen()->size();
    if (InputPanelShown() && LeavesRoom()) room.setHeight(InputPanelPlace().top());
    return room;
}

QRect CenteredPlace(QSize size) {
    const QSize room = RoomForDialogs();
    return QRect(QPoint(std::max((room.width() - size.width()) / 2, 0),
                        std::max((room.height() - size.height()) / 2, 0)),
                 size);
}

BOOL SHSipInfo(UINT action, UINT, LPVOID info, UINT) {
    auto* sip = static_cast<SIPINFO*>(info);
    if (!sip || sip->cbSize < sizeof(SIPINFO)) return FALSE;
    if (action == SPI_GETSIPINFO) return ReadState(sip);
    return action == SPI_SETSIPINFO && TakeState(*sip);
}

// ---------------------------------------------------------------- the desktop's clipboard and
// viewer

static bool g_open = false;
static HLOCAL g_lent = nullptr;  // the block that GetClipboardData returned

static void TakeBack() {
    if (g_lent) LocalFree(g_lent);
    g_lent = nullptr;
}

static std::u16string WithCarriageReturns(const std::u16string& text) {
    std::u16string lines;
    lines.reserve(text.size() + text.size() / 16);
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'\n' && (i == 0 || text[i - 1] != u'\r')) lines += u'\r';
        lines += text[i];
    }
    return lines;
}

static QString TextOf(HLOCAL block) {
    const auto* text = static_cast<const char16_t*>(LocalLock(block));
    const size_t units = LocalSize(block) / sizeof(char16_t);
    const size_t length = std::u16string_view(text, units).find(u'\0');
    const QString whole = QString::fromUtf16(text, static_cast<qsizetype>(std::min(length, units)));
    return QString(whole).replace("\r\n", "\n");
}

static HLOCAL BlockOf(const std::u16string& text) {
    const size_t bytes = (text.size() + 1) * sizeof(char16_t);
    const HLOCAL block = LocalAlloc(LMEM_MOVEABLE, bytes);
    if (block) memcpy(LocalLock(block), text.c_str(), bytes);
    return block;
}

BOOL OpenClipboard(HWND) {
    if (g_open) return FALSE;
    return g_open = true;
}

BOOL CloseClipboard() {
    if (!g_open) return FALSE;
    TakeBack();
    g_open = false;
    return TRUE;
}

BOOL EmptyClipboard() {
    if (!g_open) return FALSE;
    TakeBack();
    QGuiApplication::clipboard()->clear();
    return TRUE;
}

HANDLE SetClipboardData(UINT format, HANDLE block) {
    if (!g_open || format != CF_UNICODETEXT || !LocalLock(block)) return nullptr;
    QGuiApplication::clipboard()->setText(TextOf(block));
    LocalFree(block);
    return block;
}

// The toolkit offers a list of files as text too, but the program must not get it.
HANDLE GetClipboardData(UINT format) {
    if (!g_open || format != CF_UNICODETEXT) return nullptr;
    TakeBack();
    const QMimeData* content = QGuiApplication::clipboard()->mimeData();
    if (!content || !content->hasFormat("text/plain")) return nullptr;
    return g_lent = BlockOf(WithCarriageReturns(ToWide(content->text())));
}

extern "C" const uint8_t quill_help_page[];
extern "C" const uint8_t quill_help_page_end[];

static bool WritePage(QFile& file) {
    const auto size = static_cast<qint64>(quill_help_page_end - quill_help_page);
    return file.write(reinterpret_cast<const char*>(quill_help_page), size) == size && file.flush();
}

static QString PageInRoot() {
    QFile file(QString::fromStdString(DevicePath(u"\\telnet.htm")));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) return {};
    return WritePage(file) ? file.fileName() : QString();
}

// The file gets a name that nobody can take first, because others may write in that folder too.
static QString TemporaryPage() {
    QTemporaryFile file(QDir::tempPath() + "/quill-XXXXXX-telnet.htm");
    if (!file.open() || !WritePage(file)) return {};
    file.setAutoRemove(false);
    return file.fileName();
}

// The viewer needs a file that outlives this program. The file is in the device's root folder or,
// if that cannot be written, among the temporary files.
static bool ShowHelp(LPCWSTR page) {
    if (!page || CompareWithoutCase(page, u"telnet.htm") != 0) return false;
    QString path = PageInRoot();
    if (path.isEmpty()) path = TemporaryPage();
    return !path.isEmpty() && QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

BOOL CreateProcessW(LPCWSTR program, LPWSTR arguments, LPVOID, LPVOID, BOOL, DWORD, LPVOID, LPCWSTR,
                    LPVOID, PROCESS_INFORMATION* process) {
    if (!program || CompareWithoutCase(program, u"PegHelp.exe") != 0) return FALSE;
    if (process) *process = {};
    return ShowHelp(arguments);
}

#include "moc_shell.cpp"
