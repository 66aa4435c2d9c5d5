// SPDX-License-Identifier: MIT
// A program that changes settings in a dialog and saves them by OK, again and again until it is
// killed. Usage: dialog_saver ROOT. It writes a line just before the first save, and after each
// save its number.
#include <cstdio>

#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/settings.h"
#include "tests/dialogs/dialog_person.h"
#include "tests/dialogs/saved_texts.h"
#include "tests/support/person.h"

namespace {

// The other settings change too, so that a save writes new values in many places of the file.
void Turn(int number_of_turn) {
    const int turn = number_of_turn % 2;
    OnWindowThread([=] {
        for (const SavedNumber& number : saved_numbers)
            session.settings.*number.field = number.values[turn];
        session.settings.table = kFirstTurn + static_cast<DWORD>(number_of_turn);
    });
    const HWND dialog = OpenDialog(IDM_AUTO_LOGIN, "Auto Login");
    for (const SavedText& text : saved_texts) TypeInto(dialog, text.id, text.values[turn]);
    TypeInto(dialog, kTurnField, QString::number(number_of_turn).toStdU16String());
    if (number_of_turn == 0) std::puts("saving"), std::fflush(stdout);
    ClickControl(dialog, IDOK);
    Closed(dialog);
    OnWindowThread([] {});  // the save is over
    std::printf("%d\n", number_of_turn);
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    Stage stage;
    stage.root = argv[1];
    return RunProgram(stage, [] {
        for (int turn = 0; turn < 100000; turn++) Turn(turn);
    });
}
