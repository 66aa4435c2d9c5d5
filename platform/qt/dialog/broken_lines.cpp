// Draws and measures entries of several lines.
#include "platform/qt/dialog/broken_lines.h"

#include <QApplication>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTextLayout>

namespace {

constexpr int kMargin = 2;  // on either side of the text

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
        item.text.clear();  // the style draws what lies below
        list_->style()->drawControl(QStyle::CE_ItemViewItem, &item, painter, list_);
        const bool selected = item.state & QStyle::State_Selected;
        const bool active = item.state & QStyle::State_Active;
        painter->setPen(item.palette.color(active ? QPalette::Active : QPalette::Inactive,
                                           selected ? QPalette::HighlightedText : QPalette::Text));
        text.draw(painter, item.rect.topLeft());
    }

  private:
    // The room of the bar that moves it up and down is left free, whether it is shown or not.
    int Width() const {
        return list_->contentsRect().width() - list_->verticalScrollBar()->sizeHint().width();
    }

    // Gives each line its place; returns the height of all.
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
    list->setWordWrap(true);  // lays out anew when the width changes
}
