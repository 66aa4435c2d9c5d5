// Marks the default button as the focus moves.
#include "platform/qt/dialog/default_button.h"

#include <QApplication>
#include <QPushButton>

void FollowFocusWithDefault(QWidget* window, const std::function<QPushButton*()>& usual) {
    QObject::connect(qApp, &QApplication::focusChanged, window, [=](QWidget*, QWidget* now) {
        if (!now || !window->isAncestorOf(now)) return;
        auto* focused = qobject_cast<QPushButton*>(now);
        const QPushButton* marked = focused ? focused : usual();
        for (QPushButton* button : window->findChildren<QPushButton*>())
            button->setDefault(button == marked);
    });
}

QPushButton* ShownDefault(const QWidget& window) {
    for (QPushButton* button : window.findChildren<QPushButton*>())
        if (button->isDefault() && button->isVisible()) return button;
    return nullptr;
}
