// SPDX-License-Identifier: MIT
// Pasting the desktop's clipboard to the host.
#include <sys/socket.h>
#include <QImage>
#include <QMimeData>
#include <QUrl>

#include "tests/app/clipboard_stage.h"
#include "ui/main_window.h"

namespace {

QString ManyLines(int bytes) {
    QString text;
    for (int line = 0; text.size() < bytes; line++) text += QString("line %1 of many\n").arg(line);
    text.truncate(bytes);
    return text;
}

std::string AsSent(const QString& text) { return QString(text).replace('\n', '\r').toStdString(); }

// Makes the host's receive buffer small.
void KeepLittle(const FakeHost& host) {
    const int bytes = 8192;
    ::setsockopt(host.listener, SOL_SOCKET, SO_RCVBUF, &bytes, sizeof(bytes));
}

TEST(Paste, SendsTextWithoutLineFeeds) {
    WithText("", [](FakeHost& host) {
        SetClipboard("a\r\nb");
        PressPaste();
        EXPECT_EQ(host.Read(3), "a\rb");
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(Paste, LinesOfTheDesktopEndWithACarriageReturn) {
    WithText("", [](FakeHost& host) {
        SetClipboard("one\ntwo\r\nthree\rfour\n\nfive");
        PressPaste();
        EXPECT_EQ(host.Read(24), "one\rtwo\rthree\rfour\r\rfive");
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(Paste, CharactersAbove255AreCutToTheirLowByte) {
    WithText("", [](FakeHost& host) {
        SetClipboard(QString::fromUtf8("é€中"));
        PressPaste();
        EXPECT_EQ(host.Read(3), "\xe9\xac\x2d");
    });
}

TEST(Paste, EndsAtAZero) {
    WithText("", [](FakeHost& host) {
        SetClipboard(QString::fromUtf16(u"ab\0cd", 5));
        PressPaste();
        TypeText("x");
        EXPECT_EQ(host.Read(3), "abx");
    });
}

TEST(Paste, AHostThatDropsTheLineMeanwhileIsReportedOnce) {
    FakeHost host;
    KeepLittle(host);
    WithSession(host, [&] {
        SetClipboard(ManyLines(1 << 20));
        PressPaste();
        host.Reset();
        DismissBox("Error: Connection to the UNIX Host has been closed...");
        PressPaste();
        EXPECT_TRUE(Offline());
        EXPECT_EQ(AwaitBox(100), "");
    });
}

TEST(Paste, APictureFilesAndNothingSendNothing) {
    WithText("", [](FakeHost& host) {
        OnWindowThread(
            [] { QApplication::clipboard()->setImage(QImage(9, 9, QImage::Format_RGB32)); });
        PressPaste();
        OnWindowThread([] {
            auto* files = new QMimeData;
            files->setUrls({QUrl("file:///tmp/report.txt")});
            QApplication::clipboard()->setMimeData(files);
        });
        PressPaste();
        OnWindowThread([] { QApplication::clipboard()->clear(); });
        PressPaste();
        TypeText("x");
        EXPECT_EQ(host.Read(1), "x");
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(Paste, OfflineSendsNothing) {
    RunProgram({}, [] {
        SetClipboard("text");
        OnWindowThread([] { RunCommand(40019); });
        OnWindowThread([] {
            EXPECT_TRUE(OpenClipboard(nullptr)) << "it was closed again";
            CloseClipboard();
        });
    });
}

TEST(Paste, AClipboardInUseSendsNothing) {
    WithText("", [](FakeHost& host) {
        SetClipboard("text");
        OnWindowThread([] {
            EXPECT_TRUE(OpenClipboard(nullptr));
            RunCommand(40019);
            CloseClipboard();
        });
        EXPECT_EQ(host.ReadSome(50), "");
    });
}

TEST(Paste, AMegabyteArrivesWholeAtAHostThatReadsSlowly) {
    FakeHost host;
    KeepLittle(host);
    WithSession(host, [&] {
        const QString text = ManyLines(1 << 20);
        SetClipboard(text);
        PressPaste();
        std::string received;
        while (received.size() < static_cast<size_t>(text.size())) {
            const size_t left = static_cast<size_t>(text.size()) - received.size();
            const std::string piece = host.Read(std::min<size_t>(16384, left), 20000);
            if (piece.empty()) break;
            received += piece;
            Sleep(2);
        }
        EXPECT_TRUE(received == AsSent(text)) << received.size() << " bytes";
        EXPECT_EQ(host.ReadSome(50), "");
        TypeText("x");
        EXPECT_EQ(host.Read(1), "x");
    });
}

TEST(Paste, TenMegabytesToAHostThatDoesNotReadLeaveTheProgramAlive) {
    FakeHost host;
    KeepLittle(host);
    WithSession(host, [&] {
        SetClipboard(ManyLines(10 << 20));
        PressPaste();
        host.Send("\r\nthe host still talks");
        EXPECT_TRUE(Eventually(
            [] { return TerminalText().find("still talks") != std::string::npos; }, 60000));
        OnWindowThread([] { session.settings.confirm_exit = 0; });
        PostToMain(WM_COMMAND, 40011);
        EXPECT_TRUE(Offline());
    });
}

}  // namespace
