// SPDX-License-Identifier: MIT
// What the program tells a screen reader, heard where it calls the toolkit. The linker leads these
// calls here, as the toolkit's invisible screen has no screen readers.
#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QApplication>
#include <QCheckBox>
#include <QTest>

#include "platform/qt/window/accessible.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/window_widget.h"
#include "tests/platform/test_windows.h"

namespace {

bool g_listening = false;
std::vector<std::pair<QAccessible::Event, QObject*>> g_told;

}  // namespace

bool IsListening() asm("__wrap__ZN11QAccessible8isActiveEv");
bool IsListening() { return g_listening; }

void Hear(QAccessibleEvent* event) asm(
    "__wrap__ZN11QAccessible19updateAccessibilityEP16QAccessibleEvent");
void Hear(QAccessibleEvent* event) { g_told.push_back({event->type(), event->object()}); }

namespace {

TextScreen g_screen;
HWND g_text_window = nullptr;
int g_reads = 0;

class ScreenReader : public WindowTest {
  protected:
    void SetUp() override {
        WindowTest::SetUp();
        g_listening = true;
        g_told.clear();
        g_text_window = top;
        g_screen = {{"order", "4711"}, QPoint(0, 0), QRect(), QRect(0, 0, 6, 10)};
        text_screen_source.window = [] { return g_text_window; };
        text_screen_source.read = [] { return ++g_reads, g_screen; };
        TellTextChanges();
        g_reads = 0;
    }
    void TearDown() override {
        ForgetTextChanges();
        text_screen_source = TextScreenSource();
        g_listening = false;
        WindowTest::TearDown();
    }
    static QWidget* WidgetOf(HWND window) { return FindWindowRecord(window)->widget; }
    static QAccessibleInterface* InterfaceOf(HWND window) {
        return QAccessible::queryAccessibleInterface(WidgetOf(window));
    }
    static QAccessibleTextInterface* TextOf(HWND window) {
        return InterfaceOf(window)->textInterface();
    }
    // The toolkit asks what a window is when it is shown, so that must be known by then.
    HWND ChildWithText() {
        answer = [](const Heard& now, LRESULT*) {
            if (now.message == WM_CREATE) g_text_window = now.window;
            return false;
        };
        Child(1);
        answer = nullptr;
        return g_text_window;
    }
    using Range = std::pair<int, int>;
    static Range SelectionOf(QAccessibleTextInterface* text, int index) {
        Range range = {-1, -1};
        text->selection(index, &range.first, &range.second);
        return range;
    }
    static int TimesTold(QAccessible::Event type, const QObject* object) {
        int count = 0;
        for (const auto& each : g_told) count += each.first == type && each.second == object;
        return count;
    }
    // How often a change of the text is told as an event of that type.
    int TimesTold(QAccessible::Event type, const std::function<void()>& change) {
        g_told.clear();
        change();
        TellTextChanges();
        RunUntil([&] { return TimesTold(type, WidgetOf(top)) > 0; });
        return TimesTold(type, WidgetOf(top));
    }
};

}  // namespace

TEST_F(ScreenReader, HearsOfAWindowBeforeItHasGone) {
    const HWND child = Child(1);
    const QObject* widget = WidgetOf(child);
    DestroyWindow(child);
    EXPECT_EQ(1, TimesTold(QAccessible::ObjectDestroyed, widget));
}

TEST_F(ScreenReader, HearsEachKindOfChangeOfTheText) {
    EXPECT_EQ(1, TimesTold(QAccessible::TextInserted, [] { g_screen.rows[0] = "orders"; }));
    EXPECT_EQ(1, TimesTold(QAccessible::TextRemoved, [] { g_screen.rows[0] = "order"; }));
    EXPECT_EQ(1, TimesTold(QAccessible::TextUpdated, [] { g_screen.rows[0] = "ordex"; }));
    EXPECT_EQ(1, TimesTold(QAccessible::TextCaretMoved, [] { g_screen.cursor = QPoint(2, 1); }));
    EXPECT_EQ(1, TimesTold(QAccessible::TextSelectionChanged,
                           [] { g_screen.selected = QRect(0, 0, 2, 2); }));
}

TEST_F(ScreenReader, ChangesThatComeTogetherAreReadOnce) {
    TellTextChanges();
    TellTextChanges();
    EXPECT_TRUE(RunUntil([] { return g_reads > 0; }));
    QTest::qWait(300);
    EXPECT_EQ(1, g_reads);
}

TEST_F(ScreenReader, NothingIsReadWhileNobodyListens) {
    g_listening = false;
    TellTextChanges();
    QTest::qWait(100);
    EXPECT_EQ(0, g_reads);
    const HWND child = Child(1);
    g_told.clear();
    DestroyWindow(child);
    EXPECT_TRUE(g_told.empty());
}

TEST_F(ScreenReader, TogglesABoxByAnActionAndLeavesOtherActionsToTheToolkit) {
    QCheckBox box("mark", DeviceScreen());
    box.show();
    int clicks = 0;
    QObject::connect(&box, &QCheckBox::clicked, [&] { ++clicks; });
    QAccessibleActionInterface* actions =
        QAccessible::queryAccessibleInterface(&box)->actionInterface();
    ASSERT_NE(nullptr, actions);
    for (const QString& name :
         {QAccessibleActionInterface::toggleAction(), QAccessibleActionInterface::pressAction()}) {
        clicks = 0;
        actions->doAction(name);
        EXPECT_EQ(0, clicks) << "a click may wait for a person, so it is queued";
        EXPECT_TRUE(RunUntil([&] { return clicks == 1; })) << name.toStdString();
    }
    actions->doAction(QAccessibleActionInterface::increaseAction());
    RunUntilIdle();
    EXPECT_EQ(1, clicks);
}

// ---------------------------------------------------------------- the text's own interface

TEST_F(ScreenReader, GetsTheSelectionOfEachRow) {
    QAccessibleTextInterface* text = TextOf(ChildWithText());
    ASSERT_NE(nullptr, text);
    EXPECT_EQ(0, text->selectionCount());
    EXPECT_EQ(Range(0, 0), SelectionOf(text, 0));
    g_screen.selected = QRect(1, 0, 2, 2);
    EXPECT_EQ(2, text->selectionCount());
    EXPECT_EQ(Range(1, 3), SelectionOf(text, 0));
    EXPECT_EQ(Range(7, 9), SelectionOf(text, 1));
    for (const int other : {-1, 2}) EXPECT_EQ(Range(0, 0), SelectionOf(text, other)) << other;
}

TEST_F(ScreenReader, CanNeitherSelectNorMoveTheCursorNorScroll) {
    QAccessibleTextInterface* text = TextOf(ChildWithText());
    ASSERT_NE(nullptr, text);
    g_screen.selected = QRect(1, 0, 2, 1);
    text->addSelection(6, 8);
    EXPECT_EQ(1, text->selectionCount());
    text->setSelection(0, 6, 8);
    EXPECT_EQ(Range(1, 3), SelectionOf(text, 0));
    text->removeSelection(0);
    EXPECT_EQ(1, text->selectionCount());
    text->setCursorPosition(3);
    text->scrollToSubstring(6, 10);
    EXPECT_EQ(0, text->cursorPosition());
    EXPECT_EQ(WidgetOf(g_text_window)->mapToGlobal(QPoint(0, 10)),
              text->characterRect(6).topLeft());
}

TEST_F(ScreenReader, AllOfTheTextLooksAlike) {
    int start = -1, end = -1;
    EXPECT_EQ("", TextOf(ChildWithText())->attributes(7, &start, &end));
    EXPECT_EQ(Range(0, 10), Range(start, end)) << "the whole text";
}

TEST_F(ScreenReader, FindsTextInItsWindowOnly) {
    QAccessibleTextInterface* text = TextOf(ChildWithText());
    const auto at = [&](int x, int y) {
        return text->offsetAtPoint(WidgetOf(g_text_window)->mapToGlobal(QPoint(x, y)));
    };
    EXPECT_EQ(7, at(6, 10));
    EXPECT_EQ(-1, at(-1, 10));
    EXPECT_EQ(-1, at(6, WidgetOf(g_text_window)->height()));
    g_screen.cell = QRect();
    EXPECT_EQ(-1, at(6, 10)) << "before the cells have a size";
}

TEST_F(ScreenReader, FindsTheFocusOfTheProgramOnItsText) {
    ChildWithText();
    const QAccessibleInterface* program = InterfaceOf(top);
    const QAccessibleInterface* text = InterfaceOf(g_text_window);
    EXPECT_EQ(QAccessible::Pane, program->role());
    EXPECT_EQ(QAccessible::Terminal, text->role());
    QWidget* box = new QCheckBox("mark", DeviceScreen());
    box->show();
    DeviceScreen()->activateWindow();
    box->setFocus();
    ASSERT_TRUE(RunUntil([&] { return QApplication::focusWidget() == box; }));
    EXPECT_FALSE(text->state().focused);
    const QAccessibleInterface* other = program->focusChild();
    EXPECT_TRUE(!other || other->object() != WidgetOf(g_text_window));
    WidgetOf(top)->setFocus();
    ASSERT_TRUE(RunUntil([&] { return QApplication::focusWidget() == WidgetOf(top); }));
    delete box;
    EXPECT_TRUE(text->state().focused && text->state().focusable && text->state().multiLine);
    EXPECT_FALSE(program->state().focused || program->state().focusable);
    ASSERT_NE(nullptr, program->focusChild());
    EXPECT_EQ(WidgetOf(g_text_window), program->focusChild()->object());
    g_text_window = nullptr;
    EXPECT_TRUE(program->state().focused) << "where no window shows text";
}

TEST_F(ScreenReader, GetsOtherWindowsOfTheProgramFromTheToolkit) {
    const HWND child = Child(1);
    EXPECT_EQ(QAccessible::Client, InterfaceOf(child)->role());
    EXPECT_EQ(nullptr, TextOf(child));
    // One that is in no table, as while it is made.
    WindowWidget fresh(child, nullptr);
    EXPECT_EQ(QAccessible::Client, QAccessible::queryAccessibleInterface(&fresh)->role());
}
