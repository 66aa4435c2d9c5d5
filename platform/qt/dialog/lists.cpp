// SPDX-License-Identifier: MIT
// List boxes of dialogs. A list can wrap entries that are too wide for it.
#include <QApplication>
#include <QKeyEvent>
#include <QListWidget>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTextLayout>

#include "platform/qt/dialog/dialogs.h"

constexpr int kMargin = 2;  // on either side of the text

namespace {

class BrokenLines : public QStyledItemDelegate {
  public:
    explicit BrokenLines(QListView* list) : QStyledItemDelegate(list), list_(list) {}

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QTextLayout text(index.data().toString(), option.font);
        return QSize(Width(), static_cast<int>(std::ceil(Arrange(&text))));
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyleOptionViewItem item = option;
        initStyleOption(&item, index);
        QTextLayout text(item.text, item.font);
        Arrange(&text);
        item.text.clear();  // the style draws only the background
        list_->style()->drawControl(QStyle::CE_ItemViewItem, &item, painter, list_);
        const bool selected = item.state & QStyle::State_Selected;
        const bool active = item.state & QStyle::State_Active;
        painter->setPen(item.palette.color(active ? QPalette::Active : QPalette::Inactive,
                                           selected ? QPalette::HighlightedText : QPalette::Text));
        text.draw(painter, item.rect.topLeft());
    }

  private:
    // Always leaves room for the vertical scroll bar, whether it is shown or not.
    int Width() const {
        return list_->contentsRect().width() - list_->verticalScrollBar()->sizeHint().width();
    }

    // Places each line; returns the height of all lines.
    double Arrange(QTextLayout* text) const {
        const double inset = list_->fontMetrics().horizontalAdvance("v ");
        double height = 0, left = kMargin;
        text->beginLayout();
        for (QTextLine line = text->createLine(); line.isValid(); line = text->createLine()) {
            line.setLineWidth(Width() - left - kMargin);
            line.setPosition(QPointF(left, height));
            height += line.height();
            left = kMargin + inset;
        }
        text->endLayout();
        return height;
    }

    QListView* list_;
};

}  // namespace

void BreakLines(QListView* list) {
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setItemDelegate(new BrokenLines(list));
    list->setWordWrap(true);  // repeats the layout when the width changes
}

namespace {

// The space bar acts as a double tap on the current entry. The user can move the selection but
// cannot clear it, neither by a click below the last entry nor by one with Ctrl.
class ListBox : public QListWidget {
  public:
    using QListWidget::QListWidget;

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        const bool tap = event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier;
        if (!tap || !currentItem()) return QListWidget::keyPressEvent(event);
        currentItem()->setSelected(true);  // Tab moves to an entry without selecting it
        emit itemDoubleClicked(currentItem());
    }
    // Does not paint an entry that is only partly visible at the bottom.
    void paintEvent(QPaintEvent* event) override {
        const QRect seen = viewport()->rect();
        const QRect last = visualRect(indexAt(seen.bottomLeft() + QPoint(1, 0)));
        const bool cut = last.bottom() > seen.bottom() && last.top() > 0;
        const QRect whole = cut ? QRect(seen.topLeft(), last.topRight() - QPoint(0, 1)) : seen;
        QPaintEvent shown(event->region() & whole);
        QListWidget::paintEvent(&shown);
    }
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override {
        if (!index.isValid()) return QItemSelectionModel::NoUpdate;
        const auto command = QListWidget::selectionCommand(index, event);
        const bool takes = command & (QItemSelectionModel::Deselect | QItemSelectionModel::Toggle);
        return takes ? QItemSelectionModel::ClearAndSelect : command;
    }
};

}  // namespace

static Qt::ScrollBarPolicy BarFor(bool wanted) {
    return wanted ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff;
}

static QListWidget* ListOf(const Window& window) {
    return qobject_cast<QListWidget*>(window.widget.data());
}

static QListWidgetItem* ItemAt(const Window& window, WPARAM row) {
    const auto* list = ListOf(window);
    return row < static_cast<WPARAM>(list->count()) ? list->item(static_cast<int>(row)) : nullptr;
}

static QStringList Entries(const QListWidget* list) {
    QStringList entries;
    for (int i = 0; i < list->count(); ++i) entries << list->item(i)->text();
    return entries;
}

static QWidget* MakeListBox(HWND control, const DialogItem& item, QWidget* parent) {
    auto* list = new ListBox(parent);
    list->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    list->setVerticalScrollBarPolicy(BarFor(item.style & WS_VSCROLL));
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setTabKeyNavigation(false);
    if (!(item.style & LBS_NOTIFY)) return list;
    QObject::connect(list, &QListWidget::itemSelectionChanged, list,
                     [control] { QueueNotice(control, LBN_SELCHANGE); });
    QObject::connect(list, &QListWidget::itemDoubleClicked, list,
                     [control] { QueueNotice(control, LBN_DBLCLK); });
    return list;
}

// The selection stays on its entry when another one is inserted.
static int Insert(QListWidget* list, int row, const QString& text) {
    const QSignalBlocker quiet(list);
    list->insertItem(row, text);
    return row;
}

static LRESULT AddEntry(Window& window, WPARAM, LPARAM text) {
    QListWidget* list = ListOf(window);
    const QString entry = FromWide(reinterpret_cast<LPCWSTR>(text));
    const bool sorted = window.control->style & LBS_SORT;
    return Insert(list, sorted ? SortedPlace(Entries(list), entry) : list->count(), entry);
}

static LRESULT InsertEntry(Window& window, WPARAM row, LPARAM text) {
    QListWidget* list = ListOf(window);
    const int place = PlaceOf(row, list->count());
    if (place < 0) return LB_ERR;
    return Insert(list, place, FromWide(reinterpret_cast<LPCWSTR>(text)));
}

static LRESULT DeleteEntry(Window& window, WPARAM row, LPARAM) {
    QListWidget* list = ListOf(window);
    QListWidgetItem* item = ItemAt(window, row);
    if (!item) return LB_ERR;
    const QSignalBlocker quiet(list);
    const bool selected = item->isSelected();
    delete list->takeItem(static_cast<int>(row));
    if (selected) list->clearSelection();
    return list->count();
}

static LRESULT Reset(Window& window, WPARAM, LPARAM) {
    const QSignalBlocker quiet(ListOf(window));
    ListOf(window)->clear();
    return 0;
}

static LRESULT Select(Window& window, WPARAM row, LPARAM) {
    QListWidget* list = ListOf(window);
    const QSignalBlocker quiet(list);
    if (!ItemAt(window, row)) return list->setCurrentRow(-1), list->clearSelection(), LB_ERR;
    list->setCurrentRow(static_cast<int>(row));
    return static_cast<LRESULT>(row);
}

static LRESULT Selected(Window& window, WPARAM, LPARAM) {
    const QListWidget* list = ListOf(window);
    const auto selected = list->selectedItems();
    return selected.isEmpty() ? LB_ERR : list->row(selected.front());
}

static LRESULT GetEntry(Window& window, WPARAM row, LPARAM buffer) {
    const QListWidgetItem* item = ItemAt(window, row);
    return item ? CopyText(item->text(), SIZE_MAX, buffer) : LB_ERR;
}

static LRESULT GetEntryLength(Window& window, WPARAM row, LPARAM) {
    const QListWidgetItem* item = ItemAt(window, row);
    return item ? item->text().size() : LB_ERR;
}

static LRESULT Count(Window& window, WPARAM, LPARAM) { return ListOf(window)->count(); }

static LRESULT SelectByText(Window& window, WPARAM after, LPARAM text) {
    const QString wanted = FromWide(reinterpret_cast<LPCWSTR>(text));
    const int row = FindEntry(Entries(ListOf(window)), static_cast<int>(after), wanted, false);
    return row < 0 ? LB_ERR : Select(window, static_cast<WPARAM>(row), 0);
}

static LRESULT FindExact(Window& window, WPARAM after, LPARAM text) {
    const QString wanted = FromWide(reinterpret_cast<LPCWSTR>(text));
    return FindEntry(Entries(ListOf(window)), static_cast<int>(after), wanted, true);
}

// The toolkit lays out the lines late, and the bar counts lines only after that.
static LRESULT GetTop(Window& window, WPARAM, LPARAM) {
    QListWidget* list = ListOf(window);
    list->scrollTo(QModelIndex());
    list->doItemsLayout();
    return list->verticalScrollBar()->value();
}

static LRESULT SetTop(Window& window, WPARAM row, LPARAM) {
    QListWidget* list = ListOf(window);
    if (!ItemAt(window, row)) return LB_ERR;
    list->doItemsLayout();
    list->verticalScrollBar()->setValue(static_cast<int>(row));
    return 0;
}

// Entries that do not fit are wrapped, because a list that scrolls sideways would hide how they
// begin. The toolkit measures the entries itself, so the width is not used.
static LRESULT SetWidth(Window& window, WPARAM pixels, LPARAM) {
    if (pixels > 0 && window.control->style & WS_HSCROLL) BreakLines(ListOf(window));
    ListOf(window)->doItemsLayout();
    return 0;
}

static LRESULT GetData(Window& window, WPARAM row, LPARAM) {
    const QListWidgetItem* item = ItemAt(window, row);
    return item ? static_cast<LRESULT>(item->data(Qt::UserRole).toLongLong()) : LB_ERR;
}

static LRESULT SetData(Window& window, WPARAM row, LPARAM data) {
    QListWidgetItem* item = ItemAt(window, row);
    if (!item) return LB_ERR;
    item->setData(Qt::UserRole, static_cast<qlonglong>(data));
    return 0;
}

static const MessageRow kListMessages[] = {
    {LB_ADDSTRING, AddEntry},
    {LB_INSERTSTRING, InsertEntry},
    {LB_DELETESTRING, DeleteEntry},
    {LB_RESETCONTENT, Reset},
    {LB_SETCURSEL, Select},
    {LB_GETCURSEL, Selected},
    {LB_GETTEXT, GetEntry},
    {LB_GETTEXTLEN, GetEntryLength},
    {LB_GETCOUNT, Count},
    {LB_SELECTSTRING, SelectByText},
    {LB_GETTOPINDEX, GetTop},
    {LB_SETTOPINDEX, SetTop},
    {LB_SETHORIZONTALEXTENT, SetWidth},
    {LB_GETITEMDATA, GetData},
    {LB_SETITEMDATA, SetData},
    {LB_FINDSTRINGEXACT, FindExact},
    {0, nullptr},
};

const ControlClass kListBoxClass = {0x83, u"ListBox", MakeListBox, kListMessages};

int WholeLines(QWidget* widget, int height) {
    auto* list = qobject_cast<QListWidget*>(widget);
    list->addItem("X");
    const int line = list->sizeHintForRow(0), frame = 2 * list->frameWidth();
    list->clear();
    return std::max((height - frame) / line, 1) * line + frame;
}
