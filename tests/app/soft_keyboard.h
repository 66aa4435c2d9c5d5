// SPDX-License-Identifier: MIT
// A person's hands on the soft keyboard of a small device.
#ifndef QUILL_TESTS_APP_SOFT_KEYBOARD_H
#define QUILL_TESTS_APP_SOFT_KEYBOARD_H

#include <QtTest/QTest>

#include "platform/qt/shell/shell.h"
#include "tests/support/person.h"

inline Stage SmallDevice(int width = 240, int height = 320) {
    Stage stage;
    stage.width = width, stage.height = height;
    return stage;
}

inline void TapPanelButton() {
    OnWindowThread([] { QTest::mouseClick(ShellMenuStrip()->panel_button(), Qt::LeftButton); });
}

// Null if there is no key with this label.
inline PanelKey* KeyLabelled(const QString& label) {
    for (PanelKey* key : ShellInputPanel()->findChildren<PanelKey*>())
        if (key->accessibleName() == label) return key;
    return nullptr;
}

#endif
