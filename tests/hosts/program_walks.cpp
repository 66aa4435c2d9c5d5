// SPDX-License-Identifier: MIT
// Programs of a host, walked through step by step on a pseudo-terminal.
#include "tests/hosts/program_walks.h"

#include <stdlib.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "terminal/screen_buffer.h"
#include "tests/hosts/peer_screen.h"
#include "tests/hosts/picture.h"
#include "tests/hosts/proof.h"
#include "tests/hosts/pty_program.h"
#include "tests/hosts/terminfo_entry.h"

// ---------------------------------------------------------------- keys

struct NamedKey {
    const char* name;
    const char* capability;
};

// clang-format off
static const NamedKey kNamedKeys[] = {
    {"up",   "kcuu1"}, {"down", "kcud1"}, {"left", "kcub1"}, {"right", "kcuf1"}, {"home", "khome"},
    {"end",  "kend" }, {"pgup", "kpp"  }, {"pgdn", "knp"  }, {"del",   "kdch1"},
};
// clang-format on

static std::string CapabilityOf(const std::string& key) {
    for (const NamedKey& row : kNamedKeys) {
        if (key == row.name) return row.capability;
    }
    return "k" + key;  // kf1
}

// The key table's own for `quill`; for other names it is set up as the entry wants it.
static std::string SentFor(const TerminfoEntry& entry, const std::string& capability) {
    const KeyRow* key = entry.name == "quill" ? FindKey(capability) : nullptr;
    return key ? SentByDefault(*key) : Expand(entry, capability);
}

std::string KeysOf(const std::string& step, const std::string& name) {
    TerminfoEntry entry;
    ReadEntry(name, &entry);
    std::string keys;
    for (size_t i = 0; i < step.size(); ++i) {
        const size_t end = step[i] == '<' ? step.find('>', i) : std::string::npos;
        if (end == std::string::npos || end == i + 1) {
            keys += step[i];
            continue;
        }
        keys += SentFor(entry, CapabilityOf(step.substr(i + 1, end - i - 1)));
        i = end;
    }
    return keys;
}

// ---------------------------------------------------------------- the folder

static void WriteLines(const std::filesystem::path& path, int count) {
    std::ofstream file(path);
    for (int i = 1; i <= count; ++i) {
        file << "line " << i << " of the file, "
             << std::string(static_cast<size_t>(i * 7 % 60), '.')
             << (i % 9 == 0 ? std::string(60, 'w') : "") << (i % 7 == 0 ? "\tafter a tab" : "")
             << "\n";
    }
}

static void WritePage(const std::filesystem::path& path) {
    std::ofstream file(path);
    file << "<html><head><title>A page</title></head><body><h1>A page</h1><table border=1>";
    for (int i = 1; i <= 12; ++i) {
        file << "<tr><td>row " << i << "</td><td><a href=\"#p" << i << "\">to " << i
             << "</a></td></tr>";
    }
    file << "</table>";
    for (int i = 1; i <= 60; ++i) {
        file << "<p><a name=p" << i << "></a><b>Paragraph " << i << "</b> with <u>words</u> in it. "
             << std::string(static_cast<size_t>(i * 5 % 90), 'x') << "</p>";
    }
    file << "<form><input type=text name=a><input type=submit></form></body></html>";
}

static std::filesystem::path MakeFolder() {
    std::string folder = (std::filesystem::temp_directory_path() / "quill-hosts.XXXXXX").string();
    if (!mkdtemp(folder.data())) return {};
    WriteLines(std::filesystem::path(folder) / "lines.txt", 200);
    WritePage(std::filesystem::path(folder) / "page.html");
    for (int i = 1; i <= 30; ++i) {
        WriteLines(std::filesystem::path(folder) / ("file" + std::to_string(i)), i);
    }
    return folder;
}

// ---------------------------------------------------------------- the walk

static void Note(const std::string& step, const std::string& difference, WalkResult* result) {
    if (difference.empty()) return;
    ++result->wrong;
    if (result->first_difference.empty())
        result->first_difference = "after " + AsEscapeText(step) + ": " + difference;
}

// The last line holds messages, which go away, and so may the cursor.
static std::string DifferenceFromRedraw(const ProgramWalk& walk, PtyProgram* program) {
    Picture before = TakePicture();
    SendKeys(program, walk.redraw);
    FeedUntilRest(program);
    Picture anew = TakePicture();
    memcpy(before.cells[kScreenRows], anew.cells[kScreenRows], sizeof anew.cells[kScreenRows]);
    const std::string difference = Difference(anew, before, false);
    return difference.empty() ? "" : "drawn anew, it is not the same: " + difference;
}

static std::string ScreenText() {
    std::string text;
    for (int row = 1; row <= kScreenRows; ++row) {
        for (int col = 1; col <= kScreenColumns; ++col)
            text += static_cast<char>(GetCell(row, col));
        text.erase(text.find_last_not_of(' ') + 1);
        text += "\n";
    }
    return text;
}

static void TakeSteps(const ProgramWalk& walk, const std::string& keys, PtyProgram* program,
                      VTerm* peer, WalkResult* result) {
    FeedUntilRest(program);
    for (const std::string& step : walk.steps) {
        SendKeys(program, KeysOf(step, keys));
        if (!FeedUntilRest(program)) return;
        ++result->steps;
        std::string difference = DifferenceFromPeer(peer);
        if (difference.empty() && walk.redraw) difference = DifferenceFromRedraw(walk, program);
        Note(step, difference, result);
    }
    result->finished = true;
}

WalkResult WalkThrough(const ProgramWalk& walk, const std::string& term, const std::string& keys,
                       int patience) {
    WalkResult result;
    const std::filesystem::path folder = MakeFolder();
    PtyOptions options = {{walk.program}, {}, folder.string(), term, true, -1};
    options.arguments.insert(options.arguments.end(), walk.arguments.begin(), walk.arguments.end());
    options.environment = {"SHELL=/bin/sh", "PS1=$ ", "ENV=", "TMUX_TMPDIR=" + folder.string()};
    VTerm* peer = NewPeer();
    PtyProgram program;
    program.patience = patience;
    program.watch = [peer](const std::string& bytes) { FeedPeer(peer, bytes); };
    if (StartOnPty(options, &program)) TakeSteps(walk, keys, &program, peer, &result);
    result.screen = ScreenText();
    EndOnPty(&program);
    FreePeer(peer);
    std::filesystem::remove_all(folder);
    return result;
}

WalkResult WalkUntilRight(const ProgramWalk& walk, const std::string& term,
                          const std::string& keys) {
    static const int kPatience[] = {1, 4, 16};
    WalkResult result;
    for (const int patience : kPatience) {
        result = WalkThrough(walk, term, keys, patience);
        const bool whole =
            result.finished && static_cast<size_t>(result.steps) == walk.steps.size();
        if (whole && result.wrong == 0) break;
    }
    return result;
}
