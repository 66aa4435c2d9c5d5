// SPDX-License-Identifier: MIT
// The command line: its options, the host to connect to (HOST, PORT, telnet://HOST:PORT,
// ssh://USER@HOST:PORT), and the tasks that open no window.
#include "platform/qt/host/command_line.h"

#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "platform/qt/host/profiles.h"
#include "platform/qt/services/registry.h"
#include "platform/qt/services/services.h"

constexpr size_t kShownOfAnArgument = 60;

constexpr int kLeastWidth = 100, kLeastHeight = 80, kLargestSide = 4000;  // pixels

static bool TakeSize(const char* text, QSize* size) {
    int width = 0, height = 0;
    char end = 0;
    if (std::sscanf(text, "%dx%d%c", &width, &height, &end) != 2) return false;
    *size = QSize(width, height);
    return width >= kLeastWidth && width <= kLargestSide && height >= kLeastHeight &&
           height <= kLargestSide;
}

// Below 1, one device pixel would be less than one desktop pixel, and lines and letters would be
// lost.
static bool TakeScale(const char* text, double* scale) {
    char* end = nullptr;
    *scale = std::strtod(text, &end);
    return *text && !*end && *scale >= 1 && *scale <= 8;
}

namespace {

struct ValueRow {
    const char* name;
    const char* wanted;
    bool (*take)(const char* value, CommandLine* line);
};

}  // namespace

static const ValueRow kValues[] = {
    {"--profile", "a name of at most 40 letters, digits, '.', '-' and '_'",
     [](const char* v, CommandLine* l) { return l->profile = v, IsProfileName(v); }},
    {"--root", "a folder",
     [](const char* v, CommandLine* l) { return l->options.root = v, *v != 0; }},
    {"--screen", "a size from 100x80 to 4000x4000",
     [](const char* v, CommandLine* l) { return TakeSize(v, &l->options.screen); }},
    {"--scale", "a number from 1 to 8",
     [](const char* v, CommandLine* l) { return TakeScale(v, &l->options.scale); }},
    {"--snapshot", "a file",
     [](const char* v, CommandLine* l) { return l->options.snapshot = v, *v != 0; }},
    {"--text", "a file",
     [](const char* v, CommandLine* l) { return l->options.text = v, *v != 0; }},
};

namespace {

struct FlagRow {
    const char* name;
    void (*take)(CommandLine* line);
};

}  // namespace

static void Ask(CommandLine* line, Task task) { line->task = std::max(line->task, task); }

static const FlagRow kFlags[] = {
    {"--help", [](CommandLine* l) { Ask(l, Task::kHelp); }},
    {"--version", [](CommandLine* l) { Ask(l, Task::kVersion); }},
    {"--profiles", [](CommandLine* l) { Ask(l, Task::kProfiles); }},
    {"--export", [](CommandLine* l) { Ask(l, Task::kExport); }},
    {"--with-passwords", [](CommandLine* l) { l->with_passwords = true; }},
};

// The toolkit's own options, written with one dash or two. The options of the first list take the
// next argument as their value.
static const char* const kToolkitValues[] = {
    "display", "fontengine",      "geometry",           "icon",
    "name",    "platform",        "platformpluginpath", "platformtheme",
    "plugin",  "qwindowgeometry", "qwindowicon",        "qwindowtitle",
    "session", "style",           "stylesheet",         "title",
    "visual",
};
static const char* const kToolkitFlags[] = {"dograb", "nograb", "reverse", "sync", "widgetcount"};

template <typename Row, size_t count>
static const Row* FindRow(const Row (&rows)[count], const char* name) {
    for (const Row& row : rows)
        if (std::strcmp(row.name, name) == 0) return &row;
    return nullptr;
}

template <size_t count>
static bool IsToolkit(const char* const (&names)[count], const char* option) {
    const char* name = option + (option[1] == '-' ? 2 : 1);
    for (const char* each : names)
        if (std::strcmp(each, name) == 0) return true;
    return false;
}

// The toolkit takes the value of this one behind an equals sign, too, and of no other.
static bool HasToolkitValue(const std::string& option) {
    return option.starts_with("-style=") || option.starts_with("--style=");
}

// In UTF-8.
static bool IsInsideCharacter(char byte) { return (byte & 0xC0) == 0x80; }

// Complaints may end up in the logs of the desktop. So they repeat an argument without control
// characters and without the password of an address.
static std::string Shown(std::string argument) {
    const size_t at = argument.rfind('@'), colon = argument.find(':', argument.find("://") + 1);
    if (at != argument.npos && colon < at) argument.replace(colon, at - colon, ":...");
    const std::string shown = Printable(argument);
    size_t end = std::min(shown.size(), kShownOfAnArgument);
    while (end < shown.size() && IsInsideCharacter(shown[end])) --end;
    return end < shown.size() ? shown.substr(0, end) + "..." : shown;
}

static std::string g_complaint;

static bool Complain(const std::string& argument, const std::string& trouble) {
    g_complaint = "quill: '" + Shown(argument) + "' " + trouble + " (quill --help tells more)";
    std::fprintf(stderr, "%s\n", g_complaint.c_str());
    return false;
}

const std::string& LastComplaint() { return g_complaint; }

namespace {

// Reads argv from the left; `next` is the next argument to read, `kept` the end of what stays in
// argv.
struct Reader {
    int argc;
    char** argv;
    int next = 1;
    int kept = 1;
    std::vector<std::string> options;
    std::vector<std::string> operands;
};

}  // namespace

static bool IsGiven(const Reader& reader, const char* option) {
    return std::count(reader.options.begin(), reader.options.end(), option) > 0;
}

static bool TakeValue(Reader* reader, const ValueRow& row, CommandLine* line) {
    if (IsGiven(*reader, row.name)) return Complain(row.name, "is given twice");
    reader->options.push_back(row.name);
    if (reader->next < reader->argc && row.take(reader->argv[reader->next], line))
        return reader->next++, true;
    std::fprintf(stderr, "quill: %s wants %s (quill --help tells more)\n", row.name, row.wanted);
    return false;
}

static bool TakeFlag(Reader* reader, const FlagRow& row, CommandLine* line) {
    reader->options.push_back(row.name);
    return row.take(line), true;
}

static bool TakeToolkitOption(Reader* reader, char* option) {
    const bool value = IsToolkit(kToolkitValues, option);
    if (!value && !IsToolkit(kToolkitFlags, option) && !HasToolkitValue(option))
        return Complain(option, "is no option");
    if (value && reader->next == reader->argc) return Complain(option, "has no value");
    reader->options.push_back(option);
    reader->argv[reader->kept++] = option;
    if (value) reader->argv[reader->kept++] = reader->argv[reader->next++];
    return true;
}

static bool TakeArgument(Reader* reader, CommandLine* line) {
    char* argument = reader->argv[reader->next++];
    if (std::strcmp(argument, "--") == 0) {
        while (reader->next < reader->argc)
            reader->operands.push_back(reader->argv[reader->next++]);
        return true;
    }
    if (const ValueRow* row = FindRow(kValues, argument)) return TakeValue(reader, *row, line);
    if (const FlagRow* row = FindRow(kFlags, argument)) return TakeFlag(reader, *row, line);
    if (argument[0] == '-' && argument[1]) return TakeToolkitOption(reader, argument);
    return reader->operands.push_back(argument), true;
}

static bool TakeOperands(const std::vector<std::string>& operands, CommandLine* line) {
    RunTarget& target = line->target;
    if (operands.size() > 2) return Complain(operands[2], "is one word too many");
    if (operands.empty()) return true;
    if (const char* trouble = TakeTarget(operands[0], &target))
        return Complain(operands[0], trouble);
    if (operands.size() == 1) return true;
    if (target.protocol != RunProtocol::kOfTheStore)
        return Complain(operands[1], "follows an address, which has its port behind a colon");
    if (const char* trouble = TakePort(operands[1], &target.port))
        return Complain(operands[1], trouble);
    return true;
}

namespace {

// A task that opens no window, and the options that it takes.
struct TaskOptionsRow {
    Task task;
    const char* name;
    const char* options[3];
};

}  // namespace

static const TaskOptionsRow kTaskOptions[] = {
    {Task::kProfiles, "--profiles", {}},
    {Task::kExport, "--export", {"--with-passwords", "--profile", "--root"}},
};

static bool Takes(const TaskOptionsRow& row, const std::string& option) {
    return option == row.name || std::any_of(std::begin(row.options), std::end(row.options),
                                             [&](const char* o) { return o && option == o; });
}

static bool HasEffect(const Reader& reader, const TaskOptionsRow& row) {
    const std::string name = row.name;
    for (const std::string& option : reader.options)
        if (!Takes(row, option)) return Complain(option, "has no effect with " + name);
    if (reader.operands.empty()) return true;
    return Complain(reader.operands[0], "is one word too many: " + name + " takes no host");
}

// Only --help and --version ignore the rest of the command line.
static bool GoTogether(const Reader& reader, const CommandLine& line) {
    if (line.task == Task::kHelp || line.task == Task::kVersion) return true;
    if (line.with_passwords && line.task != Task::kExport)
        return Complain("--with-passwords", "goes with --export only");
    for (const TaskOptionsRow& row : kTaskOptions)
        if (row.task == line.task && !HasEffect(reader, row)) return false;
    if (!line.profile.empty() && !line.options.root.empty())
        return Complain("--profile", "and --root both name the settings");
    if (WantsFile(line.options) && line.options.snapshot == line.options.text)
        return Complain("--snapshot", "and --text both name the same file");
    return true;
}

bool TakeCommandLine(int* argc, char** argv, CommandLine* line) {
    Reader reader{*argc, argv, 1, 1, {}, {}};
    while (reader.next < reader.argc)
        if (!TakeArgument(&reader, line)) return false;
    *argc = reader.kept;
    argv[reader.kept] = nullptr;
    if (!TakeOperands(reader.operands, line) || !GoTogether(reader, *line)) return false;
    if (!line->profile.empty()) line->options.root = ProfileFolder(line->profile);
    return true;
}

void TellHelp(std::FILE* stream) {
    std::fputs(
        "usage: quill [OPTIONS] [HOST [PORT]]\n"
        "       quill [OPTIONS] telnet://HOST[:PORT]\n"
        "       quill [OPTIONS] ssh://[USER@]HOST[:PORT]\n"
        "\n"
        "Opens a window; with a host or an address, connects at once. Host, port,\n"
        "protocol and login then apply to this run only: the host in the settings does\n"
        "not change, and its passwords are not sent to another one. HOST uses the\n"
        "protocol from the settings (Telnet at first); the port is 23, or 22 with SSH,\n"
        "unless you name it.\n"
        "\n"
        "  --profile NAME     the settings and window of that name, made if missing\n"
        "  --profiles         list the profiles; nothing else goes with it\n"
        "  --export           print the settings as an mconfig.cfg, without passwords;\n"
        "                     of --profile NAME or --root FOLDER, if one is named\n"
        "  --with-passwords   with --export only: the passwords, too\n"
        "  --help, --version  whatever other options are on the line\n"
        "\n"
        "  --root FOLDER      settings in another folder\n"
        "  --screen WxH       size of the device's screen, such as 240x320\n"
        "  --scale FACTOR     desktop pixels for one device pixel, 1 to 8\n"
        "  --snapshot FILE    save a picture when the session's output stops, and exit\n"
        "  --text FILE        the same for its text\n"
        "\n"
        "Options of the Qt toolkit, such as -platform, work too.\n",
        stream);
}

// ---------------------------------------------------------------- the host to connect to

constexpr size_t kLongestName = 39;  // the settings hold no more
constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";

static bool IsMadeOf(const std::string& text, const char* others) {
    return text.find_first_not_of(std::string(kLetters) + others) == text.npos;
}

static const char* TakeHost(const std::string& text, std::string* host) {
    if (text.empty()) return "has no host";
    if (text[0] == '[' || std::count(text.begin(), text.end(), ':') > 1)
        return "is an IPv6 address; Quill connects to names and IPv4 addresses";
    if (text.size() > kLongestName) return "is too long; a host has at most 39 characters";
    if (text[0] != ':' && text.find(':') != text.npos)
        return "is no host; the port is a second word, or in telnet://HOST:PORT";
    if (text[0] == '-' || !IsMadeOf(text, ".-_"))
        return "is no host; it has letters, digits, '.', '-' and '_' and begins with no '-'";
    return *host = text, nullptr;
}

static const char* TakeUser(const std::string& text, RunTarget* target) {
    if (target->protocol != RunProtocol::kSsh) return "names a user, which only ssh:// can";
    if (text.find(':') != text.npos) return "has a password, which no command line should";
    if (text.empty() || text.size() > kLongestName || text[0] == '-' || !IsMadeOf(text, ".-_"))
        return "names no user of at most 39 letters, digits, '.', '-' and '_'";
    return target->user = text, nullptr;
}

// Parses USER@HOST:PORT, with or without a slash at its end.
static const char* TakeAddress(std::string text, RunTarget* target) {
    if (!text.empty() && text.back() == '/') text.pop_back();
    const size_t at = text.rfind('@');
    if (at != text.npos) {
        if (const char* trouble = TakeUser(text.substr(0, at), target)) return trouble;
        text.erase(0, at + 1);
    }
    const size_t colon = text.find(':');
    if (colon != text.npos && colon == text.rfind(':')) {
        if (const char* trouble = TakePort(text.substr(colon + 1), &target->port)) return trouble;
        text.erase(colon);
    }
    return TakeHost(text, &target->host);
}

namespace {

struct SchemeRow {
    const char* name;
    RunProtocol protocol;
};

}  // namespace

static const SchemeRow kSchemes[] = {{"telnet://", RunProtocol::kTelnet},
                                     {"ssh://", RunProtocol::kSsh}};

const char* TakePort(const std::string& text, int* port) {
    const bool digits = text.find_first_not_of("0123456789") == text.npos;
    *port = digits && text.size() <= 5 ? std::atoi(text.c_str()) : 0;
    return *port >= 1 && *port <= 65535 ? nullptr : "has a port that is no number from 1 to 65535";
}

const char* TakeTarget(const std::string& text, RunTarget* target) {
    for (const SchemeRow& row : kSchemes) {
        if (strncasecmp(text.c_str(), row.name, std::strlen(row.name)) != 0) continue;
        target->protocol = row.protocol;
        return TakeAddress(text.substr(std::strlen(row.name)), target);
    }
    if (text.find("://") != text.npos) return "is no address; it begins with telnet:// or ssh://";
    return TakeHost(text, &target->host);
}

// ---------------------------------------------------------------- tasks that open no window

static int Help(const CommandLine&) { return TellHelp(stdout), 0; }

static int Version(const CommandLine&) { return std::puts("quill " QUILL_VERSION), 0; }

static int List(const CommandLine&) {
    for (const std::string& name : ProfileNames()) std::puts(name.c_str());
    return 0;
}

static void TellLeftOut(const std::vector<std::string>& names) {
    if (names.empty()) return;
    std::fputs("quill: left out, as they may be passwords:", stderr);
    for (const std::string& name : names) std::fprintf(stderr, " %s", Printable(name).c_str());
    std::fputs(" (--with-passwords prints them)\n", stderr);
}

static int Export(const CommandLine& line) {
    const std::string root = line.options.root.empty() ? UserRoot() : line.options.root;
    const std::string shown = Printable(root);
    SettingsExport settings;
    if (!ExportSettings(root, line.with_passwords, &settings)) {
        std::fprintf(stderr, "quill: %s has no settings that can be read\n", shown.c_str());
        return 1;
    }
    if (access((root + "/mconfig.cfg").c_str(), F_OK) == 0)
        std::fprintf(stderr, "quill: %s/mconfig.cfg waits for the next start and is not in it\n",
                     shown.c_str());
    std::fwrite(settings.file.data(), 1, settings.file.size(), stdout);
    TellLeftOut(settings.left_out);
    for (const std::string& sentence : settings.unsaid)
        std::fprintf(stderr, "quill: left out: %s\n", Printable(sentence).c_str());
    return settings.unsaid.empty() ? 0 : 1;
}

namespace {

struct TaskRow {
    Task task;
    int (*carry_out)(const CommandLine& line);
};

}  // namespace

static const TaskRow kTasks[] = {
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
