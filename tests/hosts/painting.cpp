// SPDX-License-Identifier: MIT
// The random painter on a pseudo-terminal, judged by curses' own idea of the screen.
#include "tests/hosts/painting.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cstdlib>

#include "terminal/screen_buffer.h"
#include "tests/hosts/painter_screen.h"
#include "tests/hosts/picture.h"
#include "tests/hosts/pty_program.h"

// Reads a whole screen if its first byte is there: the painter writes it at one go before it asks
// for the terminal's report.
static bool ReadScreen(int pipe, PainterScreen* screen) {
    pollfd poll_fd = {pipe, POLLIN, 0};
    if (poll(&poll_fd, 1, 0) <= 0) return false;
    char* bytes = reinterpret_cast<char*>(screen);
    size_t got = 0;
    while (got < sizeof *screen) {
        const ssize_t count = read(pipe, bytes + got, sizeof *screen - got);
        if (count <= 0) return false;
        got += static_cast<size_t>(count);
    }
    return true;
}

static std::string DifferenceFrom(const PainterScreen& screen) {
    Picture wanted = TakePicture();
    for (int row = 1; row <= kScreenRows; ++row) {
        for (int col = 1; col <= kScreenColumns; ++col) {
            wanted.cells[row][col] = screen.cells[row - 1][col - 1];
        }
    }
    wanted.row = screen.row + 1;
    wanted.col = screen.column + 1;
    return Difference(wanted, TakePicture(), true);
}

static const char kReport[] = "\033[5n";

static bool Ends(const std::string& text, const std::string& end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

static void Judge(int pipe, Painting* painting) {
    PainterScreen screen;
    if (!ReadScreen(pipe, &screen)) return;
    ++painting->steps;
    const std::string difference = DifferenceFrom(screen);
    if (difference.empty()) return;
    ++painting->wrong;
    if (painting->first_difference.empty())
        painting->first_difference = "step " + std::to_string(painting->steps) + ": " + difference;
}

Painting Paint(const std::string& term, unsigned long seed, int steps) {
    Painting painting;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return painting;
    fcntl(ends[1], F_SETPIPE_SZ, 2 * static_cast<int>(sizeof(PainterScreen)));
    PtyOptions options = {{QUILL_PAINTER, std::to_string(seed), std::to_string(steps)},
                          {"NCURSES_NO_PADDING=1"},
                          "/",
                          term,
                          false,
                          ends[1]};
    PtyProgram program;
    std::string tail;
    bool at_rest = false;
    program.watch = [&](const std::string& bytes) {
        painting.bytes += static_cast<long>(bytes.size());
        tail = (tail + bytes)
                   .substr(tail.size() + bytes.size() < 8 ? 0 : tail.size() + bytes.size() - 8);
        at_rest = Ends(tail, kReport);
    };
    if (StartOnPty(options, &program)) {
        close(ends[1]);
        FeedUntil(&program, [&] {
            if (at_rest) Judge(ends[0], &painting);
            at_rest = false;
            return painting.steps == steps;
        });
    }
    EndOnPty(&program);
    close(ends[0]);
    return painting;
}
