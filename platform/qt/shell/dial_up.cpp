// SPDX-License-Identifier: MIT
// Dials an entry: runs the system's pppd in the foreground as a child process. Each dial has a
// thread that starts pppd, reads its log, posts the states to the window, and ends it. A hang-up
// waits for that end for the usual time. If pppd takes longer, the thread of the next dial waits
// for it before it starts another one on the same modem.

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>

#include <atomic>
#include <cerrno>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "platform/qt/services/remote_access.h"
#include "platform/qt/services/services.h"
#include "platform/qt/shell/shell.h"
#include "platform/qt/window/messages.h"

constexpr DWORD kErrorUnknown = 635;
constexpr DWORD kNotifyWindow = 0xFFFFFFFF;
constexpr int kPollMilliseconds = 50;
constexpr DWORD kKilledMilliseconds = 2000;  // until a killed program is given up

namespace {

struct DialUp {
    ~DialUp() {
        hang_up = true;
        if (thread.joinable()) thread.join();
    }

    HWND notifier = nullptr;
    std::string program;
    std::string entry;
    DWORD patience = 0;  // milliseconds

    std::atomic<bool> hang_up{false};
    bool told_end = false;             // guarded by g_telling: the last state has been posted
    std::atomic<bool> calling{false};  // its program runs, or is about to
    std::atomic<bool> ended{false};    // its thread has finished its work
    pid_t process = 0;                 // used only by the thread, like `log`
    int log = -1;
    std::thread thread;
};

}  // namespace

static std::map<HRASCONN, std::unique_ptr<DialUp>> g_dials;
static std::vector<std::unique_ptr<DialUp>> g_leaving;  // dials that were hung up
static UINT_PTR g_next_dial = 0x10;
static std::mutex g_line;     // held by the dial that uses the modem
static std::mutex g_telling;  // held to post a state, or to mark that no more follow

static bool IsEnd(DWORD state) { return state == RASCS_Connected || state == RASCS_Disconnected; }

// A dial that was hung up posts no more states.
static void Notify(DialUp& dial, DWORD state, DWORD error) {
    const std::lock_guard<std::mutex> lock(g_telling);
    if (dial.hang_up) return;
    PostMessageW(dial.notifier, WM_RASDIALEVENT, state, static_cast<LPARAM>(error));
    dial.told_end = IsEnd(state);
}

// Posts the end of the dial, without an error, unless the window has already got a last state. A
// last state that is still in the queue is dropped, because it is not the end that the user asked
// for.
static void TellHangUp(DialUp& dial) {
    const std::lock_guard<std::mutex> lock(g_telling);
    dial.hang_up = true;
    const bool taken_back = DropPosted(dial.notifier, WM_RASDIALEVENT, RASCS_Connected) ||
                            DropPosted(dial.notifier, WM_RASDIALEVENT, RASCS_Disconnected);
    if (!dial.told_end || taken_back)
        PostMessageW(dial.notifier, WM_RASDIALEVENT, RASCS_Disconnected, 0);
}

// ---------------------------------------------------------------- the thread

// Returns false at the end of the log. That may not be the end of the program's processes: what it
// started may hold the log open.
static bool ReadLog(DialUp& dial, DialLog* log) {
    char bytes[1024];
    const ssize_t count = read(dial.log, bytes, sizeof(bytes));
    if (count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR)) return false;
    if (count < 0) return true;
    for (const DWORD state : log->Take(bytes, static_cast<size_t>(count))) Notify(dial, state, 0);
    return true;
}

static void WaitForLog(DialUp& dial, DialLog* log) {
    pollfd wait = {dial.log, POLLIN, 0};
    const int ready = poll(&wait, 1, kPollMilliseconds);
    if (ready <= 0 || ReadLog(dial, log)) return;
    close(dial.log);
    dial.log = -1;
}

// Reads what the program wrote before it ended, at most the content of a pipe.
static void ReadRest(DialUp& dial, DialLog* log) {
    pollfd wait = {dial.log, POLLIN, 0};
    for (int i = 0; i < 64 && poll(&wait, 1, 0) > 0; ++i)
        if (!ReadLog(dial, log)) return;
}

namespace {

// Asks the program to end, once, and kills it when its time is over. False: it is given up.
class Ending {
  public:
    bool Press(const DialUp& dial) {
        if (!dial.hang_up) return true;
        const DWORD now = GetTickCount();
        if (!asked_) {
            asked_ = true;
            since_ = now;
            kill(dial.process, SIGTERM);
        } else if (!forced_ && now - since_ >= dial.patience) {
            forced_ = true;
            since_ = now;
            kill(-dial.process, SIGKILL);
        }
        return !forced_ || now - since_ < kKilledMilliseconds;
    }

  private:
    bool asked_ = false;
    bool forced_ = false;
    DWORD since_ = 0;
};

}  // namespace

// Returns the exit code; -1: a signal ended it. Sets `running` while it runs.
static int LookAtProcess(const DialUp& dial, bool* running) {
    int status = 0;
    *running = waitpid(dial.process, &status, WNOHANG) == 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// The name is a separate argument, so no shell interprets it.
static int Spawn(const DialUp& dial, int log, pid_t* process) {
    std::string words[] = {dial.program, "call", dial.entry, "nodetach"};
    char* arguments[] = {words[0].data(), words[1].data(), words[2].data(), words[3].data(),
                         nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, log, 1);
    posix_spawn_file_actions_adddup2(&actions, log, 2);
    posix_spawn_file_actions_addclosefrom_np(&actions, 3);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    const int error =
        posix_spawn(process, dial.program.c_str(), &actions, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

static DWORD RasError(int posix_error) {
    if (posix_error == ENOENT) return ERROR_FILE_NOT_FOUND;
    return posix_error == EACCES ? ERROR_ACCESS_DENIED : kErrorUnknown;
}

static DWORD StartProgram(DialUp* dial) {
    int pipe_ends[2];
    if (pipe2(pipe_ends, O_CLOEXEC) != 0) return RasError(errno);
    fcntl(pipe_ends[0], F_SETFL, O_NONBLOCK);
    const int error = Spawn(*dial, pipe_ends[1], &dial->process);
    close(pipe_ends[1]);
    if (error == 0) {
        dial->log = pipe_ends[0];
        return ERROR_SUCCESS;
    }
    close(pipe_ends[0]);
    return RasError(error);
}

static void ReadUntilTheEnd(DialUp& dial) {
    DialLog log;
    Ending ending;
    bool running = true;
    int exit_code = 0;
    while (running && ending.Press(dial)) {
        WaitForLog(dial, &log);
        exit_code = LookAtProcess(dial, &running);
    }
    ReadRest(dial, &log);
    if (dial.log >= 0) close(dial.log);
    if (!log.connected()) Notify(dial, RASCS_Disconnected, log.ErrorOf(exit_code));
}

static void Call(DialUp& dial) {
    if (dial.hang_up) return;  // hung up while it waited for the line
    dial.calling = true;
    const DWORD error = StartProgram(&dial);
    if (error == ERROR_SUCCESS) {
        ReadUntilTheEnd(dial);
    } else {
        Notify(dial, RASCS_Disconnected, error);
    }
    dial.calling = false;
}

static void ServeDial(DialUp& dial) {
    {
        const std::lock_guard<std::mutex> line(g_line);
        Call(dial);
    }
    dial.ended = true;
}

// ---------------------------------------------------------------- start and end

// Returns the error with which the program's start would fail, as far as that is known beforehand.
static DWORD LookAtProgram(const DialUp& dial) {
    return access(dial.program.c_str(), X_OK) == 0 ? DWORD{ERROR_SUCCESS} : RasError(errno);
}

static DWORD StartThread(DialUp* dial) {
    try {
        dial->thread = std::thread([dial] { ServeDial(*dial); });
    } catch (const std::system_error&) {
        return kErrorUnknown;
    }
    return ERROR_SUCCESS;
}

// A modem usually hangs up within this time; the window must not block for longer.
static void AwaitUsualEnd(const DialUp& dial) {
    const DWORD since = GetTickCount();
    while (dial.calling && GetTickCount() - since < dial.patience / 4) Sleep(10);
}

static void ForgetEnded() {
    std::erase_if(g_leaving,
                  [](const std::unique_ptr<DialUp>& dial) { return dial->ended.load(); });
}

DWORD RasDial(LPVOID, LPCWSTR, RASDIALPARAMSW* parameters, DWORD notifier_type, LPVOID notifier,
              HRASCONN* connection) {
    BOOL has_password = FALSE;
    if (!connection || notifier_type != kNotifyWindow) return ERROR_INVALID_PARAMETER;
    *connection = nullptr;
    ForgetEnded();
    if (const DWORD error = RasGetEntryDialParams(nullptr, parameters, &has_password)) return error;
    auto dial = std::make_unique<DialUp>();
    dial->notifier = static_cast<HWND>(notifier);
    const DialUpHost host = TheDialUpHost();
    dial->program = host.program;
    dial->entry = Utf8FromWide(parameters->szEntryName);
    dial->patience = static_cast<DWORD>(host.patience);
    if (const DWORD error = LookAtProgram(*dial)) return error;
    Notify(*dial, RASCS_OpenPort, 0);
    if (const DWORD error = StartThread(dial.get())) return error;
    *connection = reinterpret_cast<HRASCONN>(g_next_dial += 4);
    g_dials[*connection] = std::move(dial);
    return ERROR_SUCCESS;
}

DWORD RasHangUp(HRASCONN connection) {
    ForgetEnded();
    const auto found = g_dials.find(connection);
    if (found == g_dials.end()) return ERROR_INVALID_HANDLE;
    TellHangUp(*found->second);
    AwaitUsualEnd(*found->second);
    g_leaving.push_back(std::move(found->second));
    g_dials.erase(found);
    return ERROR_SUCCESS;
}

void EndDialUps() {
    while (!g_dials.empty()) RasHangUp(g_dials.begin()->first);
    g_leaving.clear();
}
