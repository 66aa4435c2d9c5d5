// SPDX-License-Identifier: MIT
// The least time from a key to its glyph: a window of the toolkit that sends each key to the host
// and paints one cell, and does nothing else. bench/terminals.py runs it in the place of a
// terminal. It knows only the few sequences that the bench sends.
//
//   bare_echo PORT    connects to PORT of 127.0.0.1
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QSocketNotifier>
#include <QWidget>
#include <string>

static const QRect kCell(312, 176, 8, 16);

namespace {

struct BareEcho : QWidget {
    explicit BareEcho(int host) : host_(host), notifier_(host, QSocketNotifier::Read) {
        setAttribute(Qt::WA_OpaquePaintEvent);
        connect(&notifier_, &QSocketNotifier::activated, this, [this] { Take(); });
    }

    void Take() {
        char bytes[4096];
        const ssize_t count = read(host_, bytes, sizeof(bytes));
        if (count <= 0) return QCoreApplication::quit();
        const std::string text(bytes, static_cast<size_t>(count));
        if (text.find("\033[6n") != std::string::npos) return Send("\033[1;1R");
        reversed_ = text.find("\033[7m") != std::string::npos;
        glyph_ = text == "x";
        repaint(kCell);
    }

    void Send(const std::string& bytes) {
        if (write(host_, bytes.data(), bytes.size()) < 0) QCoreApplication::quit();
    }

    void keyPressEvent(QKeyEvent* event) override { Send(event->text().toStdString()); }

    void paintEvent(QPaintEvent* event) override {
        QPainter painter(this);
        painter.fillRect(event->rect(), Qt::white);
        if (reversed_) painter.fillRect(kCell, Qt::black);
        if (glyph_) painter.drawText(kCell, Qt::AlignCenter, QStringLiteral("x"));
    }

    const int host_;
    QSocketNotifier notifier_;
    bool reversed_ = false;
    bool glyph_ = false;
};

}  // namespace

static int Connect(const char* port) {
    const int host = socket(AF_INET, SOCK_STREAM, 0);
    const int at_once = 1;
    setsockopt(host, IPPROTO_TCP, TCP_NODELAY, &at_once, sizeof(at_once));
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(std::atoi(port)));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const bool connected =
        connect(host, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0;
    return connected ? host : -1;
}

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const int host = argc > 1 ? Connect(argv[1]) : -1;
    if (host < 0) return 1;
    BareEcho window(host);
    window.resize(800, 516);
    window.show();
    return QApplication::exec();
}
