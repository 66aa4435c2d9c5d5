// SPDX-License-Identifier: MIT
// The least time and memory that a start can cost: a window of the toolkit that draws one line of
// text and does nothing else.
#include <QApplication>
#include <QPainter>
#include <QWidget>

namespace {

struct Bare : QWidget {
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), Qt::white);
        painter.setPen(Qt::black);
        painter.drawText(10, 20, QStringLiteral("one line of text"));
    }
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    Bare window;
    window.setAttribute(Qt::WA_OpaquePaintEvent);
    window.resize(800, 516);
    window.show();
    return QApplication::exec();
}
