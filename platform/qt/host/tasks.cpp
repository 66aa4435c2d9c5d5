// SPDX-License-Identifier: MIT
// The tasks that open no window; each is a row of a table.
#include "platform/qt/host/tasks.h"

#include <unistd.h>

#include "platform/qt/host/profiles.h"
#include "platform/qt/services/export_settings.h"
#include "platform/qt/services/services.h"

static int Help(const CommandLine&) { return TellHelp(stdout), 0; }

static int Version(const CommandLine&) { return std::puts("quill " QUILL_VERSION), 0; }

static int List(const CommandLine&) {
    for (const std::string& name : ProfileNames()) std::puts(name.c_str());
    return 0;
}

static void TellLeftOut(const std::vector<std::string>& names) {
    if (names.empty()) return;
    std::fputs("quill: left out, as they may be passwords:", stderr);
    for (const std::string& name : names) std::fprintf(stderr, " %s", name.c_str());
    std::fputs(" (--with-passwords prints them)\n", stderr);
}

static int Export(const CommandLine& line) {
    const std::string root = line.options.root.empty() ? UserRoot() : line.options.root;
    SettingsExport settings;
    if (!ExportSettings(root, line.with_passwords, &settings)) {
        std::fprintf(stderr, "quill: %s has no settings that can be read\n", root.c_str());
        return 1;
    }
    if (access((root + "/mconfig.cfg").c_str(), F_OK) == 0)
        std::fprintf(stderr, "quill: %s/mconfig.cfg waits for the next start and is not in it\n",
                     root.c_str());
    std::fwrite(settings.file.data(), 1, settings.file.size(), stdout);
    TellLeftOut(settings.left_out);
    for (const std::string& sentence : settings.unsaid)
        std::fprintf(stderr, "quill: left out: %s\n", sentence.c_str());
    return settings.unsaid.empty() ? 0 : 1;
}

namespace {

struct TaskRow {
    Task task;
    int (*carry_out)(const CommandLine& line);
};

}  // namespace

const TaskRow kTasks[] = {
    {Task::kHelp, Help},
    {Task::kVersion, Version},
    {Task::kProfiles, List},
    {Task::kExport, Export},
};

int DoTask(const CommandLine& line) {
    int result = 0;
    for (const TaskRow& row : kTasks)
        if (row.task == line.task) result = row.carry_out(line);
    if (std::fflush(stdout) == 0 && !std::ferror(stdout)) return result;
    std::fputs("quill: cannot write to standard output\n", stderr);
    return 1;
}
