// SPDX-License-Identifier: MIT
// The bars that a program puts on its window. The command bar is a row of flat buttons at the top
// of a window, each with a picture and a tool tip. The buttons are the desktop's, so finger, mouse
// and screen reader can use them; they never take the focus from the window. The pictures come from
// the resources and are shown in the desktop's colours. The status window is a line of text at the
// bottom of its parent.
#include "platform/qt/shell/shell.h"

#include <cmath>
#include <map>
#include <QImage>
#include <QPixmap>
#include <QToolButton>

#include "platform/qt/services/resources.h"
#include "platform/qt/window/gdi.h"
#include "platform/qt/window/messages.h"
#include "platform/qt/window/window.h"

constexpr int kBarPicture = 16;       // pixels of a picture's sides
constexpr int kTwiceAsLarge = 10000;  // added to a bitmap's number: the larger version
constexpr int kTwice = 2;

namespace {

// Pictures are drawn in the device's colours; each of these is replaced by one of the desktop's, in
// every window that of an active one.
struct SystemColor {
    uint32_t drawn;  // 0x00RRGGBB
    QPalette::ColorRole role;
};

}  // namespace

constexpr uint32_t kFace = 0xC0C0C0;  // the bar itself: becomes transparent

static const SystemColor kSystemColors[] = {
    {0x000000, QPalette::ButtonText},
    {0x808080, QPalette::Dark},
    {0xFFFFFF, QPalette::Light},
};

namespace {

struct Pictures {
    QPalette palette;  // the colours that they were made with
    std::vector<QIcon> icons;
};

}  // namespace

static std::map<int, Pictures> g_pictures;  // by the bitmap's number

static QRgb Shown(uint32_t drawn, const QPalette& palette) {
    if (drawn == kFace) return qRgba(0, 0, 0, 0);
    for (const SystemColor& row : kSystemColors)
        if (row.drawn == drawn) return palette.color(QPalette::Active, row.role).rgb();
    return 0xFF000000u | drawn;
}

static bool SameColors(const QPalette& one, const QPalette& other) {
    for (const SystemColor& row : kSystemColors)
        if (one.color(QPalette::Active, row.role) != other.color(QPalette::Active, row.role))
            return false;
    return true;
}

static QImage Translated(const Bitmap& bitmap, const QPalette& palette) {
    QImage image(bitmap.width, bitmap.height, QImage::Format_ARGB32);
    const uint32_t* next = bitmap.pixels.data();
    uint32_t drawn = kFace;  // the pixel before, because most pixels are like it
    QRgb shown = Shown(drawn, palette);
    for (int y = 0; y < bitmap.height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < bitmap.width; ++x, ++next) {
            if (*next != drawn) shown = Shown(drawn = *next, palette);
            line[x] = shown;
        }
    }
    return image;
}

// Returns the strip's picture; a null image if it is missing, damaged or too small for `count`
// pictures.
static QImage LoadStrip(int id, int count, int side, const QPalette& palette) {
    const uint8_t* bytes = nullptr;
    size_t length = 0;
    Bitmap bitmap;
    if (!FindResourceBytes(MAKEINTRESOURCE(kResourceBitmap), MAKEINTRESOURCE(id), &bytes, &length))
        return QImage();
    if (!ReadBitmap({bytes, length}, &bitmap)) return QImage();
    if (bitmap.height < side || bitmap.width / side < count) return QImage();
    return Translated(bitmap, palette);
}

static void AddPicture(QIcon* icon, const QImage& strip, int index, int side, double ratio) {
    if (strip.isNull()) return;
    QPixmap picture = QPixmap::fromImage(strip.copy(index * side, 0, side, side));
    picture.setDevicePixelRatio(ratio);
    icon->addPixmap(picture);
}

static std::vector<QIcon> MakePictures(int id, int count, const QPalette& palette) {
    const QImage plain = LoadStrip(id, count, kBarPicture, palette);
    const QImage sharp = LoadStrip(id + kTwiceAsLarge, count, kBarPicture * kTwice, palette);
    std::vector<QIcon> icons;
    for (int i = 0; i < count && !plain.isNull(); ++i) {
        QIcon icon;
        AddPicture(&icon, plain, i, kBarPicture, 1);
        AddPicture(&icon, sharp, i, kBarPicture * kTwice, kTwice);
        icons.push_back(icon);
    }
    return icons;
}

// Returns the first `count` pictures of that bitmap in the palette's colours, each also at twice
// the size if there is a bitmap for it. Empty if the bitmap is missing, damaged or too small. The
// pictures are made only once, because the toolkit keeps data of every picture that it has drawn.
static const std::vector<QIcon>& BarPictures(int id, int count, const QPalette& palette) {
    Pictures& known = g_pictures[id];
    if (known.icons.size() != static_cast<size_t>(count) || !SameColors(known.palette, palette))
        known = {palette, MakePictures(id, count, palette)};
    return known.icons;
}

constexpr int kButtonWidth = 21;
constexpr int kButtonMargin = 2;  // above and below a button

namespace {

struct Picture {
    int id = 0, count = 0;  // the bitmap with its number of pictures
    size_t index = 0;
};

struct CommandBar {
    std::vector<Picture> pictures;
    std::vector<QPointer<QToolButton>> buttons;  // from the left
};

// Its picture follows the desktop when that changes its colours.
class PictureButton : public QToolButton {
  public:
    PictureButton(QWidget* bar, const Picture& picture) : QToolButton(bar), picture_(picture) {
        ShowPicture();
    }

  protected:
    void changeEvent(QEvent* event) override {
        QToolButton::changeEvent(event);
        if (event->type() == QEvent::PaletteChange) ShowPicture();
    }

  private:
    void ShowPicture() {
        const auto& icons = BarPictures(picture_.id, picture_.count, parentWidget()->palette());
        if (picture_.index < icons.size()) setIcon(icons[picture_.index]);
    }
    Picture picture_;
};

}  // namespace

static std::map<HWND, CommandBar> g_bars;

static QWidget* WidgetOf(HWND bar) {
    const Window* window = FindWindowRecord(bar);
    return window ? window->widget.data() : nullptr;
}

static CommandBar* FindBar(HWND bar) {
    const auto found = g_bars.find(bar);
    return found == g_bars.end() ? nullptr : &found->second;
}

// The command is queued, so it comes after the keys that were typed before.
static void QueueCommand(HWND bar, int id) {
    const Window* window = FindWindowRecord(bar);
    if (window)
        QueueInput(window->parent, WM_COMMAND, static_cast<WPARAM>(id & 0xFFFF),
                   reinterpret_cast<LPARAM>(bar));
}

static QToolButton* MakeButton(HWND bar, const CommandBar& record, const TBBUTTON& wanted) {
    const auto index = static_cast<size_t>(wanted.iBitmap);
    const bool known = wanted.iBitmap >= 0 && index < record.pictures.size();
    auto* button = new PictureButton(WidgetOf(bar), known ? record.pictures[index] : Picture());
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    button->setIconSize(QSize(kBarPicture, kBarPicture));
    button->setEnabled(wanted.fsState & TBSTATE_ENABLED);
    const int id = wanted.idCommand;
    QObject::connect(button, &QToolButton::clicked, button, [=] { QueueCommand(bar, id); });
    return button;
}

static void ArrangeButtons(const CommandBar& record) {
    int left = 0;
    for (const auto& button : record.buttons) {
        button->setGeometry(left, kButtonMargin, kButtonWidth,
                            kCommandBarHeight - 2 * kButtonMargin);
        left += kButtonWidth;
    }
}

static void EraseBar(HWND handle, HDC dc) {
    const QColor color = WidgetOf(handle)->palette().color(QPalette::Window);
    RECT area;
    GetClientRect(handle, &area);
    const HBRUSH brush = CreateSolidBrush(ValueOf(color));
    FillRect(dc, &area, brush);
    DeleteObject(brush);
}

static LRESULT CALLBACK CommandBarProcedure(HWND handle, UINT message, WPARAM wparam,
                                            LPARAM lparam) {
    if (message == WM_CREATE) {
        g_bars[handle] = {};
        WidgetOf(handle)->setFocusPolicy(Qt::NoFocus);
        return 0;
    }
    if (message == WM_DESTROY) return g_bars.erase(handle), 0;
    if (message != WM_ERASEBKGND) return DefWindowProcW(handle, message, wparam, lparam);
    EraseBar(handle, reinterpret_cast<HDC>(wparam));
    return 1;
}

void ForgetBarPictures() { g_pictures.clear(); }

void RegisterCommandBar() { RegisterSystemClass(kCommandBarClass, CommandBarProcedure); }

HWND CommandBar_Create(HINSTANCE instance, HWND parent, int id) {
    RECT room;
    if (!GetClientRect(parent, &room)) return nullptr;
    return CreateWindowExW(0, kCommandBarClass, nullptr, WS_CHILD | WS_VISIBLE, 0, 0, room.right,
                           kCommandBarHeight, parent,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), instance, nullptr);
}

BOOL CommandBar_Show(HWND bar, BOOL show) { return ShowWindow(bar, show ? SW_SHOW : SW_HIDE); }

int CommandBar_Height(HWND bar) {
    RECT rect;
    return GetWindowRect(bar, &rect) ? rect.bottom - rect.top : 0;
}

void CommandBar_Destroy(HWND bar) { DestroyWindow(bar); }

int CommandBar_AddBitmap(HWND bar, HINSTANCE, int id, int count, int width, int height) {
    CommandBar* record = FindBar(bar);
    if (!record || id < 0 || id > 0xFFFF - kTwiceAsLarge || count < 1) return -1;
    if (width != kBarPicture || height != kBarPicture) return -1;
    if (BarPictures(id, count, WidgetOf(bar)->palette()).empty()) return -1;
    const size_t first = record->pictures.size();
    for (size_t i = 0; i < static_cast<size_t>(count); ++i)
        record->pictures.push_back({id, count, i});
    return static_cast<int>(first);
}

BOOL CommandBar_InsertButton(HWND bar, int index, const TBBUTTON* button) {
    CommandBar* record = FindBar(bar);
    if (!record || !button || index < 0) return FALSE;
    const int count = static_cast<int>(record->buttons.size());
    QToolButton* widget = MakeButton(bar, *record, *button);
    record->buttons.insert(record->buttons.begin() + std::min(index, count), widget);
    ArrangeButtons(*record);
    widget->show();
    return TRUE;
}

BOOL CommandBar_AddToolTips(HWND bar, UINT count, LPWSTR* tips) {
    CommandBar* record = FindBar(bar);
    if (!record || !tips) return FALSE;
    for (size_t i = 0; i < record->buttons.size() && i < count; ++i) {
        const QString text = FromWide(tips[i]);
        record->buttons[i]->setToolTip(text);
        record->buttons[i]->setAccessibleName(text);
    }
    return TRUE;
}

// ---------------------------------------------------------------- the status window

// Keeps the status window at the bottom of its parent, one line high. The parent may be in the
// middle of a paint that began when that area was still its own.
static void PlaceStatus(Window& window) {
    const Window* parent = FindWindowRecord(window.parent);
    if (!parent) return;
    const QRect room = ClientArea(*parent);
    const int height = StatusHeight();
    const QRect place(0, room.height() - height, room.width(), height);
    if (window.widget->geometry() == place) return;
    window.widget->setGeometry(place);
    InvalidateRect(window.handle, nullptr, TRUE);
}

static bool IsAscii(const std::u16string& text) {
    return std::all_of(text.begin(), text.end(), [](char16_t c) { return c < 128; });
}

static void DrawStatusText(QPainter& painter, const QFont& font, const QRect& area,
                           const std::u16string& text) {
    if (!IsAscii(text)) {
        painter.setFont(font);
        painter.drawText(area, Qt::AlignVCenter | Qt::AlignLeft, FromWide(text.c_str()));
        return;
    }
    const LineFont& line = LineFontOf(font);
    const double ascent = line.raw.ascent(), height = ascent + line.raw.descent();
    const double baseline = std::round(area.top() + (area.height() - height) / 2 + ascent);
    DrawLineOfText(painter, line, QPointF(area.left(), baseline), text);
}

static void PaintStatus(Window& window) {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(window.handle, &paint);
    if (!dc) return;
    const QRect area = window.widget->rect();
    const QPalette& colors = window.widget->palette();
    dc->painter->fillRect(area, colors.color(QPalette::Window));
    dc->painter->fillRect(area.left(), area.top(), area.width(), 1, colors.color(QPalette::Mid));
    dc->painter->setPen(colors.color(QPalette::WindowText));
    DrawStatusText(*dc->painter, window.widget->font(), area.adjusted(4, 1, -4, 0), window.text);
    window.widget->setAccessibleName(FromWide(window.text.c_str()).simplified());
    const RECT whole = {0, 0, area.width(), area.height()};
    if (drawing_observer.text)
        drawing_observer.text({window.handle, 0, 0, whole, window.text.c_str(),
                               static_cast<UINT>(window.text.size()), 0, 0, 0});
    EndPaint(window.handle, &paint);
}

static LRESULT CALLBACK StatusProcedure(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) {
    Window* window = FindWindowRecord(handle);
    if (message == WM_PAINT) return PaintStatus(*window), 0;
    if (message == WM_ERASEBKGND) return 1;
    if (message != WM_CREATE && message != WM_SIZE)
        return DefWindowProcW(handle, message, wparam, lparam);
    PlaceStatus(*window);
    return 0;
}

int StatusHeight() { return QFontMetrics(QApplication::font()).height() + 4; }

void RegisterStatusWindow() { RegisterSystemClass(STATUSCLASSNAME, StatusProcedure); }
