// SPDX-License-Identifier: MIT
// The table of the pieces, the run of one, and what must hold after it.
#include "tests/faults/segments.h"

#include <filesystem>

#include "connection/connection.h"
#include "session/session_state.h"
#include "tests/dialogs/stored.h"
#include "tests/faults/faults.h"
#include "tests/faults/pieces.h"
#include "tests/faults/user.h"
#include "tests/settings/settings_rows.h"
#include "tests/support/sessions.h"

static const char kThreads[] = "_Z12CreateThreadPvjPFjS_ES_jPj";

// clang-format off
const std::vector<Segment> segments = {
    {"Start",      StageNothing, DoNothing,      nullptr},
    {"Import",     StageImport,  ImportFile,     nullptr},
    {"Window",     StageNothing, UseWindow,      nullptr},
    {"Small",      StageSmall,   UseSmallWindow, nullptr},
    {"Telnet",     StageNothing, HoldTelnet,     nullptr},
    {"Ssh1",       StageNothing, HoldSsh1,       nullptr},
    {"Ssh2",       StageNothing, HoldSsh2,       nullptr},
    {"Blowfish",   StageNothing, HoldBlowfish,   nullptr},
    {"NoSignOn1",  StageNothing, FailSsh1,       nullptr},
    {"NoSignOn2",  StageNothing, FailSsh2,       nullptr},
    {"HostName",   StageNothing, LookUpHost,     nullptr},
    {"Refused",    StageNothing, BeRefused,      nullptr},
    {"Threadless", StageNothing, BeRefused,      kThreads},
    {"FullQueue",  StageNothing, FillQueue,      kPosting},
    {"Questions",  StageNothing, Ask,            nullptr},
    {"Clipboard",  StageNothing, UseClipboard,   nullptr},
    {"Font",       StageNothing, UseFont,        nullptr},
    {"Connect",    StageNothing, UseConnect,     nullptr},
    {"AutoLogin",  StageNothing, UseAutoLogin,   nullptr},
    {"Properties", StageNothing, UseSheet,       nullptr},
    {"SignOn",     StageNothing, UseSignOn,      nullptr},
    {"Chooser",    StageNothing, UseChooser,     nullptr},
    {"Dial",       StageDial,    DialUp,         nullptr},
    {"Reset",      StageNothing, ResetAll,       nullptr},
    {"Exit",       StageNothing, Exit,           nullptr},
};
// clang-format on

// ---------------------------------------------------------------- afterwards

// A session as before: what the host shows is there, and what is typed arrives. No fault may have
// left anything in its way.
static std::string Unwell() {
    LongHost host;
    OnWindowThread([] {
        SessionClose();
        HangUpDial();
        session.settings.nego = 0;
        session.settings.sear1[0] = 0;
        session.settings.exit_dis = 0;
    });
    CloseAll();
    if (!Open(host, telnet_kind, 0, kLong) || !host.ready) return "no connection";
    Show(host, "\x1b[2J\x1b[Hall is well");
    if (!Soon([] { return TerminalText().find("all is well") != std::string::npos; }, kLong))
        return "the host's text does not come";
    if (!Soon([] { return DrawnText().find("all is well") != std::string::npos; }, kLong))
        return "the host's text is not drawn";
    TypeText("typed");
    for (int i = 0; i < 200 && host.received.find("typed") == std::string::npos; ++i)
        Serve(host, 10);
    if (host.received.find("typed") == std::string::npos) return "typing does not arrive";
    Close();
    if (!Soon([] { return !session.connected && !session.connect_pending; }, kLong))
        return "the session does not end";
    CloseAll();
    return "";
}

// ---------------------------------------------------------------- the settings on disk

static std::string TextBytes(const WCHAR* text) {
    std::string bytes;
    do {
        bytes += static_cast<char>(*text & 0xff);
        bytes += static_cast<char>(*text >> 8);
    } while (*text++);
    return bytes;
}

static std::string NumberBytes(DWORD value) {
    std::string bytes;
    for (int i = 0; i < 4; ++i, value >>= 8) bytes += static_cast<char>(value & 0xff);
    return bytes;
}

// How many settings the file does not have as the program had them at its end.
static int CountUnsaved(const std::string& root) {
    if (!std::filesystem::exists(root + "/registry.db")) return 0;
    std::map<std::string, StoredSetting> stored = StoredSettings(root);
    int unsaved = 0;
    for (const NumberSetting& row : number_settings)
        unsaved += stored[row.name].data != NumberBytes(*row.field);
    for (const TextSetting& row : text_settings)
        unsaved += stored[row.name].data != TextBytes(row.field);
    return unsaved;
}

// ---------------------------------------------------------------- one run

static void Act(const Segment& segment, RunResult& result) {
    Settle();
    segment.act();
    CloseAll();
    FailEvery(nullptr);
    result.in_segment = HasFailed();
    result.ended_early = !ProgramRuns();
    if (!result.ended_early) result.first_try = piece_wrong + Unwell();
    CloseAll();
    if (!result.first_try.empty() && ProgramRuns()) result.second_try = Unwell();
    result.ended_early = !ProgramRuns();
}

RunResult RunSegment(const Segment& segment) {
    RunResult result;
    Stage stage;
    boxes_shown.clear();
    piece_wrong.clear();
    segment.stage(stage);
    FailEvery(segment.broken);
    result.code = RunProgram(stage, [&] { Act(segment, result); });
    FailEvery(nullptr);
    result.boxes = boxes_shown;
    if (session.save_settings == 1) result.unsaved = CountUnsaved(stage.root);
    if (std::filesystem::exists(stage.root + "/registry.db"))
        result.integrity = Integrity(stage.root);
    return result;
}
