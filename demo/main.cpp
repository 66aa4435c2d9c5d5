// quill_demo_host: a Telnet server for 127.0.0.1 that shows what the terminal can do.
// Usage: quill_demo_host [--port N] [--once]. The first line it prints says where it listens. It
// ends on SIGTERM or SIGINT, when its parent dies, and with --once after the first session.
#include <sys/prctl.h>
#include <unistd.h>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include "demo/server.h"

namespace {

struct Options {
    int port = 0;
    bool once = false;
};

bool ParsePort(const char* text, int& port) {
    char* end = nullptr;
    const long value = strtol(text, &end, 10);
    if (end == text || *end != '\0' || value < 0 || value > 65535) return false;
    port = static_cast<int>(value);
    return true;
}

bool ParseOptions(int count, char** arguments, Options& options) {
    for (int i = 1; i < count; ++i) {
        if (strcmp(arguments[i], "--once") == 0) {
            options.once = true;
        } else if (strcmp(arguments[i], "--port") == 0 && i + 1 < count) {
            if (!ParsePort(arguments[++i], options.port)) return false;
        } else {
            return false;
        }
    }
    return true;
}

// False when the parent was gone before the request stood.
bool EndWithParent(pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    return getppid() == parent;
}

}  // namespace

int main(int count, char** arguments) {
    const pid_t parent = getppid();
    Options options;
    if (!ParseOptions(count, arguments, options)) {
        fprintf(stderr, "usage: quill_demo_host [--port N] [--once]\n");
        return 2;
    }
    if (!EndWithParent(parent)) return 0;
    const int listener = ListenOnLoopback(options.port);
    if (listener < 0) {
        fprintf(stderr, "quill_demo_host: cannot listen on 127.0.0.1:%d: %s\n", options.port,
                strerror(errno));
        return 1;
    }
    printf("listening on 127.0.0.1:%d\n", options.port);
    fflush(stdout);
    Serve(listener, options.once);
    return 0;
}
