// SPDX-License-Identifier: MIT
// The text of a window that the program paints, and how it changes; then the screen readers'
// interfaces of the windows that the program paints.
#include "platform/qt/window/accessible.h"

#include <algorithm>
#include <QAbstractButton>
#include <QAccessible>
#include <QAccessibleWidget>
#include <QElapsedTimer>
#include <QTimer>

#include "platform/qt/window/window_widget.h"

// Counts the rows with text that `now` has in common with `before` when `before` is moved up by
// `shift`.
static int SharedRows(const QStringList& before, const QStringList& now, int shift) {
    int shared = 0;
    for (int i = 0; i < now.size() && i + shift < before.size(); ++i)
        shared += !now[i].isEmpty() && now[i] == before[i + shift];
    return shared;
}

static int RowsMovedUp(const QStringList& before, const QStringList& now) {
    int best = 0;
    for (int shift = 1; shift < before.size(); ++shift)
        if (SharedRows(before, now, shift) > SharedRows(before, now, best)) best = shift;
    return best;
}

// Adds what differs between two rows; `offset` is where the first one begins.
static void AddRowChange(std::vector<TextChange>* changes, int offset, const QString& before,
                         const QString& now) {
    if (before == now) return;
    const auto most = std::min(before.size(), now.size());
    qsizetype head = 0, tail = 0;
    while (head < most && before[head] == now[head]) ++head;
    while (tail < most - head && before[before.size() - 1 - tail] == now[now.size() - 1 - tail])
        ++tail;
    changes->push_back({offset + static_cast<int>(head),
                        before.mid(head, before.size() - tail - head),
                        now.mid(head, now.size() - tail - head)});
}

QString TextOf(const TextScreen& screen) { return screen.rows.join('\n'); }

int OffsetOf(const TextScreen& screen, QPoint place) {
    if (screen.rows.isEmpty()) return 0;
    const int row = std::clamp(place.y(), 0, static_cast<int>(screen.rows.size()) - 1);
    int offset = 0;
    for (int i = 0; i < row; ++i) offset += static_cast<int>(screen.rows[i].size()) + 1;
    return offset + std::clamp(place.x(), 0, static_cast<int>(screen.rows[row].size()));
}

QPoint PlaceOf(const TextScreen& screen, int offset) {
    int row = 0;
    while (row + 1 < screen.rows.size() && offset > screen.rows[row].size())
        offset -= static_cast<int>(screen.rows[row++].size()) + 1;
    return QPoint(std::max(offset, 0), row);
}

int CursorOffset(const TextScreen& screen) { return OffsetOf(screen, screen.cursor); }

std::vector<TextRange> SelectedRanges(const TextScreen& screen) {
    std::vector<TextRange> ranges;
    const QRect& area = screen.selected;
    for (int row = area.top(); !area.isEmpty() && row <= area.bottom(); ++row)
        ranges.push_back({OffsetOf(screen, QPoint(area.left(), row)),
                          OffsetOf(screen, QPoint(area.right() + 1, row))});
    return ranges;
}

std::vector<TextChange> ChangesBetween(const TextScreen& before, const TextScreen& now) {
    std::vector<TextChange> changes;
    QStringList rows = before.rows;
    const int up = RowsMovedUp(rows, now.rows);
    if (up > 0) {
        changes.push_back({0, rows.mid(0, up).join('\n') + '\n', QString()});
        rows = rows.mid(up);
    }
    int offset = 0;
    const auto common = std::min(rows.size(), now.rows.size());
    for (qsizetype i = 0; i < common; ++i) {
        AddRowChange(&changes, offset, rows[i], now.rows[i]);
        offset += static_cast<int>(now.rows[i].size()) + 1;
    }
    const QString feed = common > 0 ? "\n" : "";
    if (rows.size() > common)
        changes.push_back({std::max(offset - 1, 0), feed + rows.mid(common).join('\n'), QString()});
    if (now.rows.size() > common)
        changes.push_back(
            {std::max(offset - 1, 0), QString(), feed + now.rows.mid(common).join('\n')});
    return changes;
}

// ---------------------------------------------------------------- the interfaces

TextScreenSource text_screen_source;

constexpr int kListeningMilliseconds = 50;

namespace {

struct Told {
    TextScreen screen;
    QElapsedTimer since;
    QPointer<QTimer> later;
    QPointer<QWidget> widget;  // the window that `screen` belongs to
};

}  // namespace
static std::unique_ptr<Told> g_told;  // null until something has been reported

static TextScreen ReadScreen() {
    return text_screen_source.read ? text_screen_source.read() : TextScreen();
}

static QWidget* TextWidget() {
    const HWND handle = text_screen_source.window ? text_screen_source.window() : nullptr;
    const Window* window = FindWindowRecord(handle);
    return window ? window->widget.data() : nullptr;
}

static bool IsProgramWidget(const QWidget* widget) {
    for (const Window* window : AllWindows())
        if (widget && window->widget == widget) return IsProgramWindow(*window);
    return false;
}

// True if the program's window has the focus; its keys then go to the text.
static bool TextHasFocus() { return TextWidget() && IsProgramWidget(QApplication::focusWidget()); }

namespace {

// The window that shows text. A screen reader may ask for offsets in an earlier text.
class TextAccessible : public QAccessibleWidget, public QAccessibleTextInterface {
  public:
    explicit TextAccessible(QWidget* widget)
        : QAccessibleWidget(widget, QAccessible::Terminal, "Terminal") {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.focusable = state.multiLine = true;
        state.focused = TextHasFocus();
        return state;
    }

    using QAccessibleWidget::text;
    int characterCount() const override { return static_cast<int>(TextOf(ReadScreen()).size()); }
    QString text(int start, int end) const override {
        const QString whole = TextOf(ReadScreen());
        const int length = static_cast<int>(whole.size());
        start = std::clamp(start, 0, length);
        return whole.mid(start, std::clamp(end, start, length) - start);
    }
    int cursorPosition() const override { return CursorOffset(ReadScreen()); }
    void setCursorPosition(int) override {}  // only the host moves it

    int selectionCount() const override {
        return static_cast<int>(SelectedRanges(ReadScreen()).size());
    }
    void selection(int index, int* start, int* end) const override {
        const std::vector<TextRange> ranges = SelectedRanges(ReadScreen());
        const bool there = index >= 0 && index < static_cast<int>(ranges.size());
        const TextRange range = there ? ranges[static_cast<size_t>(index)] : TextRange{0, 0};
        *start = range.start;
        *end = range.end;
    }
    void addSelection(int, int) override {}  // only the stylus selects
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}

    QRect characterRect(int offset) const override {
        const TextScreen screen = ReadScreen();
        const QPoint place = PlaceOf(screen, offset);
        const QSize cell = screen.cell.size();
        const QPoint corner =
            screen.cell.topLeft() + QPoint(place.x() * cell.width(), place.y() * cell.height());
        return QRect(widget()->mapToGlobal(corner), cell);
    }
    int offsetAtPoint(const QPoint& point) const override {
        const TextScreen screen = ReadScreen();
        const QPoint in = widget()->mapFromGlobal(point) - screen.cell.topLeft();
        if (screen.cell.isEmpty() || !widget()->rect().contains(widget()->mapFromGlobal(point)))
            return -1;
        return OffsetOf(screen,
                        QPoint(in.x() / screen.cell.width(), in.y() / screen.cell.height()));
    }
    void scrollToSubstring(int, int) override {}
    QString attributes(int, int* start, int* end) const override {
        *start = 0;
        *end = characterCount();
        return QString();
    }
};

// The window around the text. Its focus is reported as the text's.
class ProgramAccessible : public QAccessibleWidget {
  public:
    explicit ProgramAccessible(QWidget* widget)
        : QAccessibleWidget(widget, QAccessible::Pane, QString()) {}
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        if (TextWidget()) state.focusable = state.focused = false;
        return state;
    }
    QAccessibleInterface* focusChild() const override {
        return TextHasFocus() ? QAccessible::queryAccessibleInterface(TextWidget())
                              : QAccessibleWidget::focusChild();
    }
};

// Check boxes and radio buttons, whose marks the program follows, and the keys of the soft
// keyboard. The toolkit's own interface would change a mark without the click that a finger makes.
class ButtonAccessible : public QAccessibleWidget {
  public:
    ButtonAccessible(QAbstractButton* button, QAccessible::Role role)
        : QAccessibleWidget(button, role), button_(button) {}

    QString text(QAccessible::Text kind) const override {
        QString own = QAccessibleWidget::text(kind);
        if (kind != QAccessible::Name || !own.isEmpty()) return own;
        return QString(button_->text()).remove('&').simplified();
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = button_->isCheckable();
        state.checked = button_->isChecked();
        return state;
    }
    QStringList actionNames() const override {
        return QStringList(button_->isCheckable() ? toggleAction() : pressAction()) +
               QAccessibleWidget::actionNames();
    }
    void doAction(const QString& name) override {
        if (name != toggleAction() && name != pressAction())
            return QAccessibleWidget::doAction(name);
        // Not within the screen reader's call: what a click does may wait for a person.
        if (button_->isEnabled())
            QMetaObject::invokeMethod(button_, &QAbstractButton::click, Qt::QueuedConnection);
    }

  private:
    QAbstractButton* button_;
};

struct ButtonRow {
    const char* widget_class;
    QAccessible::Role role;
};

}  // namespace

static const ButtonRow kButtons[] = {
    {"QCheckBox", QAccessible::CheckBox},
    {"QRadioButton", QAccessible::RadioButton},
    {"PanelKey", QAccessible::Button},
};

static QAccessibleInterface* OfButton(const QString& class_name, QWidget* widget) {
    auto* button = qobject_cast<QAbstractButton*>(widget);
    if (!button) return nullptr;
    if (class_name == "QToolButton" && button->isCheckable())
        return new ButtonAccessible(button, QAccessible::CheckBox);
    for (const ButtonRow& row : kButtons)
        if (class_name == row.widget_class) return new ButtonAccessible(button, row.role);
    return nullptr;
}

namespace {

struct RoleRow {
    LPCWSTR window_class;
    QAccessible::Role role;
    const char* name;  // empty: the widget's own name
};

}  // namespace

static const RoleRow kRoles[] = {
    {kCommandBarClass, QAccessible::ToolBar, "Toolbar"},
    {STATUSCLASSNAME, QAccessible::StatusBar, ""},
};

static QAccessibleInterface* OfWindow(const Window& window, QWidget* widget) {
    if (widget == TextWidget()) return new TextAccessible(widget);
    if (IsProgramWindow(window)) return new ProgramAccessible(widget);
    for (const RoleRow& row : kRoles)
        if (window.window_class->name == row.window_class)
            return new QAccessibleWidget(widget, row.role, row.name);
    return nullptr;
}

static QAccessibleInterface* MakeAccessible(const QString& class_name, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    if (widget && widget->objectName() == "device")
        return new QAccessibleWidget(widget, QAccessible::Window);
    if (QAccessibleInterface* button = OfButton(class_name, widget)) return button;
    if (!widget || class_name != "WindowWidget") return nullptr;
    for (const Window* window : AllWindows())
        if (window->widget == widget) return OfWindow(*window, widget);
    return nullptr;
}

// The toolkit reports the program's window as focused after this signal, so this report is queued
// behind that.
static void TellFocusOfText() {
    if (!TextHasFocus()) return;
    QAccessibleEvent event(TextWidget(), QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
}

static void OnFocusChanged(QWidget*, QWidget* now) {
    if (QAccessible::isActive() && IsProgramWidget(now))
        QMetaObject::invokeMethod(qApp, TellFocusOfText, Qt::QueuedConnection);
}

static void TellChange(QWidget* widget, const TextChange& change) {
    if (change.removed.isEmpty()) {
        QAccessibleTextInsertEvent event(widget, change.offset, change.inserted);
        QAccessible::updateAccessibility(&event);
    } else if (change.inserted.isEmpty()) {
        QAccessibleTextRemoveEvent event(widget, change.offset, change.removed);
        QAccessible::updateAccessibility(&event);
    } else {
        QAccessibleTextUpdateEvent event(widget, change.offset, change.removed, change.inserted);
        QAccessible::updateAccessibility(&event);
    }
}

static void TellSelection(QWidget* widget, const TextScreen& screen) {
    const std::vector<TextRange> ranges = SelectedRanges(screen);
    const TextRange range = ranges.empty() ? TextRange{0, 0} : ranges.front();
    QAccessibleTextSelectionEvent event(widget, range.start, range.end);
    QAccessible::updateAccessibility(&event);
}

static void TellDifferences(QWidget* widget, const TextScreen& before, const TextScreen& now) {
    for (const TextChange& change : ChangesBetween(before, now)) TellChange(widget, change);
    if (CursorOffset(before) != CursorOffset(now)) {
        QAccessibleTextCursorEvent event(widget, CursorOffset(now));
        QAccessible::updateAccessibility(&event);
    }
    if (before.selected != now.selected) TellSelection(widget, now);
}

static void TellNow() {
    QWidget* widget = TextWidget();
    if (!widget || !g_told) return;
    TextScreen now = ReadScreen();
    const TextScreen before = std::exchange(g_told->screen, now);
    g_told->since.start();
    // A new window has no changes to report.
    if (g_told->widget == widget) TellDifferences(widget, before, now);
    if (g_told) g_told->widget = widget;
}

// A screen reader keeps what it knows of a widget's children until it gets such an event.
static void TellOfWidget(QWidget* widget, QAccessible::Event kind) {
    if (!QAccessible::isActive() || !widget) return;
    QAccessibleEvent event(widget, kind);
    QAccessible::updateAccessibility(&event);
}

static void TellLater(qint64 milliseconds) {
    if (!g_told->later) {
        g_told->later = new QTimer(qApp);
        g_told->later->setSingleShot(true);
        QObject::connect(g_told->later, &QTimer::timeout, g_told->later, TellNow);
    }
    if (!g_told->later->isActive()) g_told->later->start(static_cast<int>(milliseconds));
}

void OfferToScreenReaders() {
    static QMetaObject::Connection focus;
    QAccessible::installFactory(MakeAccessible);
    QObject::disconnect(focus);
    focus = QObject::connect(qApp, &QApplication::focusChanged, OnFocusChanged);
}

void TellWidgetMade(QWidget* widget) { TellOfWidget(widget, QAccessible::ObjectCreated); }

void TellWidgetGone(QWidget* widget) { TellOfWidget(widget, QAccessible::ObjectDestroyed); }

void TellTextChanges() {
    if (!QAccessible::isActive()) return;
    if (!g_told) g_told = std::make_unique<Told>();
    const qint64 since = g_told->since.isValid() ? g_told->since.elapsed() : kListeningMilliseconds;
    if (since >= kListeningMilliseconds) return TellNow();
    TellLater(kListeningMilliseconds - since);
}

void ForgetTextChanges() {
    if (g_told) delete g_told->later;
    g_told.reset();
}
