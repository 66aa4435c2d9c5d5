// SPDX-License-Identifier: MIT
// Takes a picture of every dialog of the running program. Usage: dialog_pictures FOLDER
#include <cstdio>
#include <QApplication>
#include <QDir>
#include <QThread>
#include <QWidget>

#include "session/session_state.h"
#include "settings/settings.h"
#include "tests/dialogs/dialog_cases.h"
#include "tests/support/person.h"

namespace {

// Settings that a user might have stored.
void StoreExamples() {
    WriteString(u"host", u"unix.example.org");
    WriteString(u"hist0a", u"unix.example.org");
    WriteString(u"resp1", u"anna\\015");
    WriteString(u"sear2", u"assword");
    WriteString(u"ssh_u", u"anna");
}

void TakePicture(const QString& file) {
    QThread::msleep(300);  // until everything is drawn
    OnWindowThread([&] {
        const QImage picture = QApplication::activeModalWidget()->grab().toImage();
        std::printf("%s%s\n", qPrintable(file), picture.save(file) ? "" : ": failed");
    });
}

void TakePictureOf(const QString& folder, const std::string& name,
                   const std::function<void()>& open) {
    Stage stage;
    stage.before = StoreExamples;
    RunProgram(stage, [&] {
        open();
        TakePicture(folder + "/" + QString::fromStdString(name).toLower() + ".png");
    });
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QDir().mkpath(argv[1]);
    for (const DialogCase& dialog : dialog_cases)
        TakePictureOf(argv[1], dialog.name, [&] { dialog.open(); });
    TakePictureOf(argv[1], "color", [] {
        PostToMain(WM_COMMAND, 40101);
        Eventually([] { return QApplication::activeModalWidget() != nullptr; });
    });
}
