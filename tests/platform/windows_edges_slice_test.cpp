// SPDX-License-Identifier: MIT
// What windows, keys, fonts and the clipboard do in cases that come up seldom.
#include <QBackingStore>
#include <QMenuBar>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QStyle>
#include <QTest>
#include <QToolButton>
#include <set>

#include "platform/qt/host/host.h"
#include "platform/qt/services/resources.h"
#include "platform/qt/services/services.h"
#include "platform/qt/shell/shell.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/gdi.h"
#include "platform/qt/window/messages.h"
#include "tests/platform/test_windows.h"

namespace {

class WindowEdges : public WindowTest {
  protected:
    static QWidget* WidgetOf(HWND window) { return FindWindowRecord(window)->widget; }
    static qsizetype BarsOf(HWND window) {
        return WidgetOf(window)->findChildren<QScrollBar*>().size();
    }
};

int CALLBACK Count(const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM count) {
    return ++*reinterpret_cast<int*>(count);
}

int CALLBACK TakeFirst(const LOGFONTW* font, const TEXTMETRICW*, DWORD, LPARAM face) {
    *reinterpret_cast<LOGFONTW*>(face) = *font;
    return 0;
}

LONG HeightOf(HDC dc) {
    TEXTMETRICW metrics = {};
    EXPECT_TRUE(GetTextMetricsW(dc, &metrics));
    return metrics.tmHeight;
}

LONG HeightOfSystemFont(HDC dc, LONG height) {
    LOGFONTW wanted = {};
    wanted.lfHeight = height;
    CopyUnits(wanted.lfFaceName, WideFromUtf8(QApplication::font().family().toStdString()).c_str(),
              LF_FACESIZE);
    const HFONT font = CreateFontIndirectW(&wanted);
    const HGDIOBJ before = SelectObject(dc, font);
    const LONG result = HeightOf(dc);
    SelectObject(dc, before);
    DeleteObject(font);
    return result;
}

std::set<const QMenuBar*> g_own_bars;  // that the program keeps from the desktop

// While the device opens, text is so many times as wide as its font makes it: 80 letters of the
// first font may need less than the narrowest screen.
constexpr int kWider = 2;
bool g_opens = true;

// The size that the device has opened with, before a test changes it.
class OpenedSize : public testing::Environment {
  public:
    void SetUp() override {
        g_opens = false;
        size = DeviceScreen()->size();
        DeviceScreen()->resize(400, size.height());
    }
    QSize size;
};
OpenedSize* g_opened = static_cast<OpenedSize*>(testing::AddGlobalTestEnvironment(new OpenedSize));

}  // namespace

void RealNative(QMenuBar* bar, bool native) asm("__real__ZN8QMenuBar16setNativeMenuBarEb");
void SeenNative(QMenuBar* bar, bool native) asm("__wrap__ZN8QMenuBar16setNativeMenuBarEb");
void SeenNative(QMenuBar* bar, bool native) {
    if (!native) g_own_bars.insert(bar);
    RealNative(bar, native);
}

int RealDrawText(HDC dc, LPCWSTR text, int length, RECT* rect,
                 UINT format) asm("__real__Z9DrawTextWP18SliceDeviceContextPKDsiP4RECTj");
int WiderDrawText(HDC dc, LPCWSTR text, int length, RECT* rect,
                  UINT format) asm("__wrap__Z9DrawTextWP18SliceDeviceContextPKDsiP4RECTj");
int WiderDrawText(HDC dc, LPCWSTR text, int length, RECT* rect, UINT format) {
    const int height = RealDrawText(dc, text, length, rect, format);
    if (g_opens) rect->right *= kWider;
    return height;
}

TEST_F(WindowEdges, EraseMessageIsAnsweredByOne) {
    const HDC dc = GetDC(top);
    EXPECT_EQ(1, SendMessageW(top, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0));
    ReleaseDC(top, dc);
}

TEST_F(WindowEdges, AWindowHasTheScrollBarsOfItsStyleOnly) {
    EXPECT_EQ(0, BarsOf(Child(1)));
    EXPECT_EQ(1, BarsOf(Child(2, WS_VSCROLL)));
    EXPECT_EQ(1, BarsOf(Child(3, WS_HSCROLL)));
    EXPECT_EQ(2, BarsOf(Child(4, WS_VSCROLL | WS_HSCROLL)));
}

TEST_F(WindowEdges, WindowsAreListedFromTheOldestToTheYoungest) {
    const std::vector<HWND> made = {top, Child(1), Child(2), Child(3), Child(4)};
    std::vector<HWND> listed;
    for (const Window* window : AllWindows())
        if (std::count(made.begin(), made.end(), window->handle)) listed.push_back(window->handle);
    EXPECT_EQ(made, listed);
    EXPECT_EQ(0, std::count(made.begin(), made.end(), nullptr));
}

TEST_F(WindowEdges, ATapBesideTheThumbMovesByThePage) {
    const HWND child = Child(1, WS_VSCROLL);
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_RANGE | SIF_PAGE;
    info.nMax = 99;
    info.nPage = 17;
    SetScrollInfo(child, SB_VERT, &info, TRUE);
    EXPECT_EQ(17, WidgetOf(child)->findChild<QScrollBar*>()->pageStep());
}

TEST_F(WindowEdges, AScrollBarWhoseProgramDoesNothingStaysWhereItIs) {
    const HWND child = Child(1, WS_VSCROLL);
    SCROLLINFO info = {};
    info.cbSize = sizeof(info);
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMax = 99;
    info.nPage = 17;
    info.nPos = 20;
    SetScrollInfo(child, SB_VERT, &info, TRUE);
    auto* bar = WidgetOf(child)->findChild<QScrollBar*>();
    for (const auto action : {QAbstractSlider::SliderSingleStepAdd,
                              QAbstractSlider::SliderPageStepSub, QAbstractSlider::SliderToMaximum})
        bar->triggerAction(action);
    EXPECT_EQ(20, bar->value());
}

TEST_F(WindowEdges, TheRightButtonIsNoStylus) {
    QTest::mousePress(WidgetOf(top), Qt::RightButton);
    QTest::mouseRelease(WidgetOf(top), Qt::RightButton);
    RunUntilIdle();
    EXPECT_TRUE(Of(WM_LBUTTONDOWN).empty());
    EXPECT_TRUE(Of(WM_LBUTTONUP).empty());
    QTest::mousePress(WidgetOf(top), Qt::LeftButton);
    QTest::mouseRelease(WidgetOf(top), Qt::LeftButton);
    RunUntilIdle();
    EXPECT_EQ(1u, Of(WM_LBUTTONDOWN).size());
    EXPECT_EQ(1u, Of(WM_LBUTTONUP).size());
}

// Such a modifier comes from a desktop's on-screen keyboard.
TEST_F(WindowEdges, AModifierWithoutItsKeyIsTheLeftKeyAndHasTheHighBitAlone) {
    std::vector<SHORT> states;
    answer = [&](const Heard& now, LRESULT*) {
        if (now.message == WM_KEYDOWN)
            for (const int key : {VK_LCONTROL, VK_RCONTROL, VK_LSHIFT, VK_RSHIFT, VK_CONTROL})
                states.push_back(GetKeyState(key));
        return false;
    };
    const auto press = [&](Qt::KeyboardModifier modifier) {
        QKeyEvent down(QEvent::KeyPress, Qt::Key_F1, modifier);
        QKeyEvent none(QEvent::KeyRelease, Qt::Key_F1, Qt::NoModifier);
        QueueKeyEvent(top, &down, true);
        QueueKeyEvent(top, &none, false);
        RunUntilIdle();
    };
    const auto down = static_cast<SHORT>(0x8000);
    press(Qt::ControlModifier);
    EXPECT_EQ((std::vector<SHORT>{down, 0, 0, 0, down}), states);
    states.clear();
    press(Qt::ShiftModifier);
    EXPECT_EQ((std::vector<SHORT>{0, 0, down, 0, 0}), states);
}

TEST_F(WindowEdges, ACommandSaysThatItComesFromAnAccelerator) {
    SliceAccelerators table = {{{kAcceleratorKey, VK_F1, 321}}};
    MSG message = {};
    message.hwnd = top;
    message.message = WM_KEYDOWN;
    message.wParam = VK_F1;
    EXPECT_EQ(1, TranslateAcceleratorW(top, &table, &message));
    ASSERT_EQ(1u, Of(WM_COMMAND).size());
    EXPECT_EQ(321, LOWORD(Of(WM_COMMAND)[0].wparam));
    EXPECT_EQ(1, HIWORD(Of(WM_COMMAND)[0].wparam));
}

TEST_F(WindowEdges, ATimersTickWaitsOnceForEachWindow) {
    constexpr UINT kLong = 1000000;
    const HWND child = Child(1);
    for (const HWND window : {top, child}) SetTimer(window, 5, 1, nullptr);
    QTest::qWait(100);  // many ticks
    for (const HWND window : {top, child}) SetTimer(window, 5, kLong, nullptr);
    RunUntilIdle();
    EXPECT_EQ(1u, Of(WM_TIMER, top).size());
    EXPECT_EQ(1u, Of(WM_TIMER, child).size());
    for (const HWND window : {top, child}) KillTimer(window, 5);
}

TEST_F(WindowEdges, AWindowThatBecameValidStartsToWaitAnew) {
    const auto invalidate = [&] { FindWindowRecord(top)->invalid = QRegion(0, 0, 1, 1); };
    FindWindowRecord(top)->invalid = QRegion();
    EXPECT_FALSE(FrameOverdue());
    invalidate();
    EXPECT_FALSE(FrameOverdue());
    Sleep(100);  // longer than a frame
    FindWindowRecord(top)->invalid = QRegion();
    EXPECT_FALSE(FrameOverdue());
    invalidate();
    EXPECT_FALSE(FrameOverdue());
}

TEST_F(WindowEdges, AKeyOfTheProgramsOwnGoesToTheActiveWindow) {
    std::vector<std::pair<UINT, bool>> keys;  // the message, and whether the key is down
    answer = [&](const Heard& now, LRESULT*) {
        if (now.window == top && now.wparam == VK_F1 &&
            (now.message == WM_KEYDOWN || now.message == WM_KEYUP))
            keys.push_back({now.message, GetKeyState(VK_F1) < 0});
        return false;
    };
    SetFocus(top);
    keybd_event(VK_F1, 0, 0, 0);
    keybd_event(VK_F1, 0, KEYEVENTF_KEYUP, 0);
    RunUntilIdle();
    EXPECT_EQ((std::vector<std::pair<UINT, bool>>{{WM_KEYDOWN, true}, {WM_KEYUP, false}}), keys);
}

TEST_F(WindowEdges, TheScreensFocusKeysAndEndAreTheProgramWindows) {
    answer = [](const Heard& now, LRESULT*) { return now.message == WM_CLOSE; };
    EXPECT_FALSE(DeviceScreen()->close()) << "the program decides";
    QTest::keyClick(DeviceScreen(), Qt::Key_F5);
    RunUntilIdle();
    EXPECT_TRUE(DeviceScreen()->isVisible());
    EXPECT_EQ(1u, Of(WM_CLOSE, top).size());
    EXPECT_EQ(1u, Of(WM_KEYDOWN, top).size());
    EXPECT_EQ(1u, Of(WM_KEYUP, top).size());
    DeviceScreen()->activateWindow();
    DeviceScreen()->setFocus();
    EXPECT_TRUE(RunUntil([&] { return QApplication::focusWidget() == WidgetOf(top); }));
}

TEST_F(WindowEdges, AWindowIsFoundByBothOfItsNames) {
    EXPECT_EQ(top, FindWindowW(TEXT("QuillTestWindow"), TEXT("tests")));
    EXPECT_EQ(top, FindWindowW(nullptr, TEXT("tests")));
    EXPECT_EQ(nullptr, FindWindowW(TEXT("QuillTestWindow"), TEXT("test")));
    EXPECT_EQ(nullptr, FindWindowW(TEXT("OtherWindow"), TEXT("tests")));
}

TEST_F(WindowEdges, AnUnknownMeasureIsZero) { EXPECT_EQ(0, GetSystemMetrics(9999)); }

TEST_F(WindowEdges, OutsideAPaintNothingCanBePainted) {
    PAINTSTRUCT paint;
    EXPECT_EQ(nullptr, BeginPaint(top, &paint));
    EXPECT_EQ(nullptr, paint.hdc);
}

// The toolkit makes such a store anew, which loses what other parts of the window show.
TEST_F(WindowEdges, AStoreOfAnotherSizeIsPaintedWhole) {
    RunUntilIdle();
    QBackingStore* store = DeviceScreen()->backingStore();
    ASSERT_NE(nullptr, store);
    std::vector<QRect> painted;
    answer = [&](const Heard& now, LRESULT*) {
        if (now.message != WM_PAINT || now.window != top) return false;
        PAINTSTRUCT paint;
        BeginPaint(top, &paint);
        const RECT& part = paint.rcPaint;
        painted.push_back(
            QRect(QPoint(static_cast<int>(part.left), static_cast<int>(part.top)),
                  QPoint(static_cast<int>(part.right) - 1, static_cast<int>(part.bottom) - 1)));
        EndPaint(top, &paint);
        return true;
    };
    const RECT corner = {0, 0, 5, 5};
    for (const bool other_size : {false, true}) {
        if (other_size) store->resize(QSize(10, 10));
        InvalidateRect(top, &corner, TRUE);
        UpdateWindow(top);
    }
    EXPECT_EQ(DeviceScreen()->size(), store->size());
    EXPECT_EQ((std::vector<QRect>{QRect(0, 0, 5, 5), WidgetOf(top)->rect()}), painted);
}

TEST_F(WindowEdges, ASlantedLineGoesFromCornerToCorner) {
    const HWND child = Child(1, 0, 0, 0, 40, 40);
    answer = [&](const Heard& now, LRESULT*) {
        if (now.message != WM_PAINT || now.window != child) return false;
        PAINTSTRUCT paint;
        const HDC dc = BeginPaint(child, &paint);
        const POINT line[] = {{0, 0}, {30, 30}};
        const HPEN pen = CreatePen(PS_SOLID, 1, RGB(255, 0, 0));
        const HGDIOBJ before = SelectObject(dc, pen);
        EXPECT_TRUE(Polyline(dc, line, 2));
        SelectObject(dc, before);
        DeleteObject(pen);
        EndPaint(child, &paint);
        return true;
    };
    const QImage picture = WidgetOf(child)->grab().toImage();
    for (int at = 0; at < 30; ++at) EXPECT_EQ(QColor(Qt::red), picture.pixelColor(at, at)) << at;
    for (const QPoint other : {QPoint(10, 0), QPoint(0, 10), QPoint(35, 35)})
        EXPECT_NE(QColor(Qt::red), picture.pixelColor(other));
}

// ---------------------------------------------------------------- fonts and text

TEST_F(WindowEdges, WithoutAFontTextHasTheHeightOfTheSystemsFont) {
    const HDC dc = GetDC(top);
    const LONG height = HeightOf(dc);
    EXPECT_EQ(HeightOfSystemFont(dc, 10), height);
    EXPECT_NE(HeightOfSystemFont(dc, 9), height);
    ReleaseDC(top, dc);
}

TEST_F(WindowEdges, EnumerationOfAFamilyListsThatOne) {
    LOGFONTW face = {};
    EnumFontFamiliesW(nullptr, nullptr, TakeFirst, reinterpret_cast<LPARAM>(&face));
    int count = 0;
    EnumFontFamiliesW(nullptr, face.lfFaceName, Count, reinterpret_cast<LPARAM>(&count));
    EXPECT_EQ(1, count);
    count = 0;
    EnumFontFamiliesW(nullptr, TEXT("no such family"), Count, reinterpret_cast<LPARAM>(&count));
    EXPECT_EQ(0, count);
}

// 80 columns and 24 rows of the first font, and the bars.
TEST_F(WindowEdges, TheDeviceOpensAsLargeAsTheTerminal) {
    LOGFONTW face = {};
    EnumFontFamiliesW(nullptr, nullptr, TakeFirst, reinterpret_cast<LPARAM>(&face));
    face.lfHeight = 8;
    const HDC dc = GetDC(top);
    const HFONT font = CreateFontIndirectW(&face);
    const HGDIOBJ before = SelectObject(dc, font);
    TEXTMETRICW metrics = {};
    GetTextMetricsW(dc, &metrics);
    SelectObject(dc, before);
    DeleteObject(font);
    ReleaseDC(top, dc);
    const int bars = kCommandBarHeight + StatusHeight() + kMenuBarHeight;
    const int width = static_cast<int>(metrics.tmAveCharWidth) * kWider * 80;
    EXPECT_GT(width, 400) << "wider than the narrowest screen";
    EXPECT_EQ(width, g_opened->size.width());
    EXPECT_EQ(metrics.tmHeight * 24 + bars, g_opened->size.height());
}

TEST_F(WindowEdges, AFolderBelowAFileCannotBeTheRoot) {
    EXPECT_FALSE(MakeRoot("/dev/null/folder"));
    EXPECT_TRUE(MakeRoot(""));
    EXPECT_TRUE(MakeRoot("/dev"));
}

TEST_F(WindowEdges, TextIsKeptFromTheLastStartOfTheRecord) {
    const DrawingObserver before = drawing_observer;
    const auto draw = [&] {
        drawing_observer.text({top, 0, 0, {0, 0, 30, 10}, u"abc", 3, 0, 0, 0});
        drawing_observer.paint(top);
    };
    KeepScreenText();
    draw();
    EXPECT_EQ(QStringList("abc"), ScreenText(top));
    EXPECT_EQ(1, PaintsKept());
    KeepScreenText();
    EXPECT_EQ(QStringList(), ScreenText(top));
    EXPECT_EQ(0, PaintsKept());
    draw();
    ForgetScreenText();
    EXPECT_EQ(QStringList(), ScreenText(top));
    drawing_observer = before;
}

// The rightmost column of a status bar that has ink, with that text on it.
static int LastInk(HWND bar, const std::u16string& text) {
    SetWindowTextW(bar, text.c_str());
    QWidget* widget = FindWindowRecord(bar)->widget;
    const QImage picture = widget->grab().toImage();
    const QRgb paper = picture.pixel(picture.width() - 1, picture.height() / 2);
    for (int x = picture.width() - 1; x >= 0; --x)
        for (int y = 2; y < picture.height(); ++y)
            if (picture.pixel(x, y) != paper) return x;
    return -1;
}

TEST_F(WindowEdges, EachAsciiCharacterHasItsPlaceOnAStatusBar) {
    const HWND bar = CreateWindowExW(0, STATUSCLASSNAME, TEXT(""), WS_CHILD | WS_VISIBLE, 0, 0, 0,
                                     0, top, nullptr, nullptr, nullptr);
    ASSERT_NE(nullptr, bar);
    RunUntilIdle();
    EXPECT_EQ(-1, LastInk(bar, u""));
    const int stroke = LastInk(bar, u"|");
    EXPECT_LE(0, stroke);
    for (char16_t c = u' '; c < 127; ++c)
        EXPECT_LT(stroke, LastInk(bar, std::u16string(1, c) + u'|')) << static_cast<int>(c);
    DestroyWindow(bar);
}

TEST_F(WindowEdges, ALineOfTextHasTheGlyphsOfAllPrintableAscii) {
    const QFont font = QApplication::font();
    const QRawFont raw = QRawFont::fromFont(font);
    const LineFont& line = LineFontOf(font);
    for (char16_t c = u' '; c < 127; ++c) {
        const auto found = raw.glyphIndexesForString(QString(QChar(c)));
        ASSERT_EQ(1, found.size());
        EXPECT_EQ(found[0], line.glyphs[c]) << static_cast<int>(c);
        EXPECT_GT(LineAdvance(line, c), 0) << static_cast<int>(c);
    }
}

// ---------------------------------------------------------------- the clipboard

TEST_F(WindowEdges, AClosedClipboardTakesNothing) {
    const auto block = [] {
        const HLOCAL memory = LocalAlloc(LMEM_MOVEABLE, 4);
        memcpy(LocalLock(memory), u"a", 4);
        return memory;
    };
    ASSERT_TRUE(OpenClipboard(top));
    EXPECT_TRUE(EmptyClipboard());
    EXPECT_EQ(nullptr, SetClipboardData(CF_UNICODETEXT, nullptr));
    const HLOCAL taken = block();
    EXPECT_EQ(taken, SetClipboardData(CF_UNICODETEXT, taken));
    EXPECT_EQ(0u, LocalSize(taken)) << "the clipboard has it now, and made its own of it";
    EXPECT_TRUE(CloseClipboard());
    const HLOCAL refused = block();
    EXPECT_EQ(nullptr, SetClipboardData(CF_UNICODETEXT, refused));
    EXPECT_EQ(4u, LocalSize(refused));
    LocalFree(refused);
}

// ---------------------------------------------------------------- the strip at the foot

// Some desktops show the menus of all programs in one place, which is not on the device's screen;
// none of those that the tests run on.
TEST_F(WindowEdges, TheMenuBarStaysOnTheDevicesScreen) {
    EXPECT_TRUE(g_own_bars.contains(ShellMenuStrip()->bar()));
}

static QImage PictureOf(const QIcon& icon, const QSize& size) {
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    icon.paint(&painter, picture.rect());
    return picture;
}

TEST_F(WindowEdges, AnIconIsTheSameHoweverItIsAskedFor) {
    const QIcon late =
        QApplication::style()->standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton);
    for (const QIcon& icon : {ShellMenuStrip()->panel_button()->icon(), late}) {
        const QSize size(22, 14);
        const QImage painted = PictureOf(icon, size);
        EXPECT_NE(PictureOf(QIcon(), size), painted);
        QIcon copy = icon;
        copy.addPixmap(QPixmap(1, 1));  // makes it a copy of its own
        EXPECT_EQ(painted, PictureOf(copy, size));
        const QImage asked = copy.pixmap(size).toImage();
        EXPECT_EQ(PictureOf(QIcon(QPixmap::fromImage(asked)), size), painted);
    }
}

TEST_F(WindowEdges, ThePanelsButtonIsAtTheRightEndOfTheMenuBar) {
    constexpr int kButton = 34;
    const QSize strip = ShellMenuStrip()->size();
    EXPECT_EQ(QRect(strip.width() - kButton, 1, kButton, strip.height() - 2),
              ShellMenuStrip()->panel_button()->geometry());
    EXPECT_EQ(0, ShellMenuStrip()->bar()->x());
    EXPECT_EQ(strip.width() - kButton, ShellMenuStrip()->bar()->width());
}

// The style paints over the lower edge of a title in the menu bar alone.
TEST_F(WindowEdges, APushButtonKeepsItsLowerEdge) {
    QPushButton button("Word");
    button.resize(80, 30);
    const QImage picture = button.grab().toImage();
    const QRgb window = button.palette().window().color().rgb();
    EXPECT_TRUE(picture.pixel(40, 29) != window || picture.pixel(40, 28) != window);
}

TEST_F(WindowEdges, AMenuBarWithoutMenusCannotBeChosen) {
    ASSERT_TRUE(ShellMenuStrip()->bar()->actions().isEmpty());
    EXPECT_FALSE(ActivateMenuBar());
    EXPECT_FALSE(ShellMenuStrip()->bar()->hasFocus());
}

TEST_F(WindowEdges, ThePanelsButtonIsFlatUntilItIsPressed) {
    QToolButton* const button = ShellMenuStrip()->panel_button();
    const auto left_edge = [&] { return button->grab().toImage().pixel(1, button->height() / 2); };
    const QRgb bar =
        ShellMenuStrip()->grab().toImage().pixel(button->x() - 1, button->height() / 2);
    EXPECT_EQ(bar, left_edge());
    button->setDown(true);
    EXPECT_NE(bar, left_edge());
    button->setDown(false);
    EXPECT_EQ(bar, left_edge());
}

TEST_F(WindowEdges, ThePanelsButtonShowsAKeyboardOfSixKeysInARow) {
    constexpr int kTimes = 10;
    QImage picture(22 * kTimes, 14 * kTimes, QImage::Format_ARGB32);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    ShellMenuStrip()->panel_button()->icon().paint(&painter, picture.rect());
    painter.end();
    const auto keys = [&](int y) {
        int found = 0;
        bool ink = false;
        for (int x = 2 * kTimes; x < 20.9 * kTimes; ++x) {
            const bool now = qAlpha(picture.pixel(x, y)) > 128;
            found += now && !ink;
            ink = now;
        }
        return found;
    };
    EXPECT_EQ(6, keys(39));
    EXPECT_EQ(6, keys(69));
    EXPECT_EQ(1, keys(103));
}
