// SPDX-License-Identifier: MIT
// Helpers for tests with text on the screen of a session and on the desktop's clipboard.
#ifndef QUILL_TESTS_APP_CLIPBOARD_STAGE_H
#define QUILL_TESTS_APP_CLIPBOARD_STAGE_H

#include <gtest/gtest.h>
#include <QApplication>
#include <QClipboard>

#include "session/session_state.h"
#include "tests/support/fake_host.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

inline void SetClipboard(const QString& text) {
    OnWindowThread([&] { QApplication::clipboard()->setText(text); });
}

inline const auto kCtrlShift = static_cast<int>((Qt::ControlModifier | Qt::ShiftModifier).toInt());

inline void PressCopy() { PressKey(Qt::Key_C, kCtrlShift); }
inline void PressPaste() { PressKey(Qt::Key_V, kCtrlShift); }

// Runs the program with a session, the view laid out and this text on the screen.
inline void WithText(const std::string& text, const std::function<void(FakeHost&)>& person) {
    FakeHost host;
    WithSession(host, [&] {
        OnWindowThread([] { session.settings.hotspot = 1; });
        host.Send(text + "\033[24;1Hready");
        ASSERT_TRUE(TerminalShows("ready"));
        ASSERT_TRUE(Eventually([] { return session.view.cell_width > 0; }));
        person(host);
    });
}

#endif
