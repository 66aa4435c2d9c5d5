// SPDX-License-Identifier: MIT
// A program on a pseudo-terminal, with this terminal on the other side.
#include "tests/hosts/pty_program.h"

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "tests/hosts/feed.h"

static const int kLongMilliseconds = 30000;
static const int kPollMilliseconds = 10;
static const int kQuietPolls = 5;  // one after the other
static const int kMostTurns = 20;

// ---------------------------------------------------------------- start and end

static std::string NewMark() {
    static int count = 0;
    return "QUILL_HOSTS_TEST=" + std::to_string(getpid()) + "." + std::to_string(++count);
}

static std::vector<char*> Pointers(std::vector<std::string>* texts) {
    std::vector<char*> pointers;
    for (std::string& text : *texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

// In place of a variable of that name: of two, programs differ in which one they take.
static void Set(const std::string& variable, std::vector<std::string>* all) {
    const std::string name = variable.substr(0, variable.find('=') + 1);
    std::erase_if(*all, [&](const std::string& other) { return other.rfind(name, 0) == 0; });
    all->push_back(variable);
}

static std::vector<std::string> EnvironmentOf(const PtyOptions& options, const std::string& mark) {
    const char* path = getenv("PATH");
    const char* terminfo = getenv("TERMINFO");
    std::vector<std::string> all = {"TERM=" + options.term,
                                    "TERMINFO=" + std::string(terminfo ? terminfo : ""),
                                    "LC_ALL=C",
                                    "PATH=" + std::string(path ? path : "/usr/bin:/bin"),
                                    "HOME=" + options.home,
                                    mark};
    for (const std::string& variable : options.environment) Set(variable, &all);
    return all;
}

[[noreturn]] static void Become(const PtyOptions& options, const PtyProgram& program) {
    setsid();
    ioctl(program.slave, TIOCSCTTY, 0);
    for (int fd = 0; fd < 3; ++fd) dup2(program.slave, fd);
    if (options.passed >= 0) dup2(options.passed, 3);
    const int first_closed = options.passed >= 0 ? 4 : 3;
    for (int fd = first_closed; fd < 256; ++fd) close(fd);
    if (chdir(options.home.c_str()) != 0) _exit(126);
    std::vector<std::string> arguments = options.arguments;
    std::vector<std::string> environment = EnvironmentOf(options, program.mark);
    execvpe(arguments[0].c_str(), Pointers(&arguments).data(), Pointers(&environment).data());
    _exit(127);
}

// The terminal's Backspace key sends BS: what a user tells the host by `stty erase`.
static void SetErase(int slave) {
    termios settings;
    if (tcgetattr(slave, &settings) != 0) return;
    settings.c_cc[VERASE] = '\b';
    tcsetattr(slave, TCSANOW, &settings);
}

static bool OpenPty(PtyProgram* program) {
    program->master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (program->master < 0 || grantpt(program->master) || unlockpt(program->master)) return false;
    program->slave = open(ptsname(program->master), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (program->slave < 0) return false;
    SetErase(program->slave);
    return true;
}

bool StartOnPty(const PtyOptions& options, PtyProgram* program) {
    if (!OpenPty(program)) return false;
    NewSession();
    program->mark = NewMark();
    winsize size = {};
    if (options.tells_size) size = {24, 80, 0, 0};
    ioctl(program->master, TIOCSWINSZ, &size);
    program->pid = fork();
    if (program->pid == 0) Become(options, *program);
    return program->pid > 0;
}

// What of it can be read: a process may end meanwhile, and its files in /proc with it.
static std::string ReadFile(const std::string& path) {
    std::string text;
    FILE* file = fopen(path.c_str(), "rb");
    if (!file) return text;
    char buffer[4096];
    for (size_t count; (count = fread(buffer, 1, sizeof buffer, file)) > 0;)
        text.append(buffer, count);
    fclose(file);
    return text;
}

// Processes with the mark. A name that ends in NUL keeps mark 1 from being part of mark 11.
static std::vector<pid_t> Marked(const PtyProgram& program) {
    std::vector<pid_t> found;
    DIR* folder = opendir("/proc");
    if (!folder) return found;
    while (const dirent* entry = readdir(folder)) {
        const pid_t pid = atoi(entry->d_name);
        if (pid < program.pid) continue;
        const std::string environment = ReadFile("/proc/" + std::to_string(pid) + "/environ");
        if (environment.find(program.mark + '\0') != std::string::npos) found.push_back(pid);
    }
    closedir(folder);
    return found;
}

void EndOnPty(PtyProgram* program) {
    if (program->pid <= 0) return;
    for (const pid_t pid : Marked(*program)) kill(pid, SIGKILL);
    kill(program->pid, SIGKILL);
    waitpid(program->pid, nullptr, 0);
    close(program->master);
    close(program->slave);
    program->pid = -1;
}

// ---------------------------------------------------------------- bytes to and fro

void SendKeys(PtyProgram* program, const std::string& bytes) {
    size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t count = write(program->master, bytes.data() + sent, bytes.size() - sent);
        if (count <= 0) return;
        sent += static_cast<size_t>(count);
    }
}

// Feeds what is there within the time; false if nothing is.
static bool FeedSome(PtyProgram* program, int milliseconds) {
    pollfd poll_fd = {program->master, POLLIN, 0};
    if (poll(&poll_fd, 1, milliseconds) <= 0) return false;
    char buffer[3000];
    const ssize_t count = read(program->master, buffer, sizeof buffer);
    if (count <= 0) return false;
    const std::string bytes(buffer, static_cast<size_t>(count));
    if (program->watch) program->watch(bytes);
    SendKeys(program, Feed(bytes));
    return true;
}

static bool HasEnded(const PtyProgram& program) {
    siginfo_t info = {};
    const int flags = WEXITED | WNOHANG | WNOWAIT;
    return waitid(P_PID, static_cast<id_t>(program.pid), &info, flags) != 0 || info.si_pid != 0;
}

bool FeedUntil(PtyProgram* program, const std::function<bool()>& done) {
    for (int waited = 0; waited < kLongMilliseconds;) {
        if (done()) return true;
        if (FeedSome(program, kPollMilliseconds)) {
            waited = 0;
        } else {
            if (HasEnded(*program)) return done();
            waited += kPollMilliseconds;
        }
    }
    return false;
}

// ---------------------------------------------------------------- rest

static bool KeysAreRead(const PtyProgram& program) {
    int waiting = 0;
    return ioctl(program.slave, FIONREAD, &waiting) != 0 || waiting == 0;
}

// State and times of /proc/PID/stat, which follow the name in brackets: "S 1 ...".
static bool Sleeps(pid_t pid, unsigned long* times) {
    const std::string stat = ReadFile("/proc/" + std::to_string(pid) + "/stat");
    const size_t bracket = stat.rfind(')');
    if (bracket == std::string::npos) return true;
    char state = 0;
    unsigned long user = 0, kernel = 0;
    sscanf(stat.c_str() + bracket + 1, " %c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %lu %lu",
           &state, &user, &kernel);
    *times += user + kernel;
    return state != 'R' && state != 'D';
}

// The fourth field of /proc/loadavg: "3/250". On a busy machine, the kernel hands a byte over to
// the other side of the pseudo-terminal only when its own thread gets a turn; until then both sides
// rest.
static int PollsUntilQuiet() {
    int running = 1;
    sscanf(ReadFile("/proc/loadavg").c_str(), "%*s %*s %*s %d/", &running);
    return kQuietPolls * std::clamp(running, 1, kMostTurns);
}

bool FeedUntilRest(PtyProgram* program) {
    unsigned long times_before = 0;
    int quiet = 0;
    std::vector<pid_t> processes;
    for (int waited = 0; waited < kLongMilliseconds; waited += kPollMilliseconds) {
        bool rests = !FeedSome(program, kPollMilliseconds) && KeysAreRead(*program);
        if (rests && quiet == 0) processes = Marked(*program);
        unsigned long times = 0;
        for (const pid_t pid : processes) rests = Sleeps(pid, &times) && rests;
        quiet = rests && times == times_before ? quiet + 1 : 0;
        times_before = times;
        if (quiet >= kQuietPolls && quiet >= PollsUntilQuiet()) return true;
        if (HasEnded(*program) && rests) return false;
    }
    return false;
}

bool IsInstalled(const std::string& program) {
    return system(("command -v " + program + " >/dev/null 2>&1").c_str()) == 0;
}
