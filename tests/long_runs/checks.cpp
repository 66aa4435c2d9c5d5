// SPDX-License-Identifier: MIT
// What holds at rest.
#include "tests/long_runs/checks.h"

#include <dirent.h>
#include <gtest/gtest.h>
#include <algorithm>
#include <array>
#include <cstring>
#include <QPixmapCache>

#include "session/session_state.h"
#include "settings/key_map.h"
#include "settings/toolbars.h"
#include "tests/dialogs/stored.h"
#include "tests/hosts/peer_screen.h"
#include "tests/long_runs/counts.h"
#include "tests/settings/settings_rows.h"
#include "tests/support/heap.h"
#include "tests/support/person.h"
#include "tests/terminal/terminal_state.h"

// ---------------------------------------------------------------- what the terminal got

static std::string g_written;    // all that the interpreter got
static std::string g_from_host;  // that came in chunks of the host
static bool g_in_chunk = false;
static bool g_replaying = false;
static bool g_own_words = false;
static TerminalSnapshot g_first;

static void Note(const BYTE* bytes, int count) {
    if (!g_replaying)
        g_written.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count));
}

int RealFeedByte(BYTE byte) __asm__("__real__Z16TerminalFeedByteh");
int WatchedFeedByte(BYTE byte) __asm__("__wrap__Z16TerminalFeedByteh");
int WatchedFeedByte(BYTE byte) {
    Note(&byte, 1);
    return RealFeedByte(byte);
}

int RealFeedText(const BYTE* bytes, int count) __asm__("__real__Z16TerminalFeedTextPKhi");
int WatchedFeedText(const BYTE* bytes, int count) __asm__("__wrap__Z16TerminalFeedTextPKhi");
int WatchedFeedText(const BYTE* bytes, int count) {
    const int fed = RealFeedText(bytes, count);
    Note(bytes, fed);
    return fed;
}

void RealTerminalWrite(const BYTE* bytes, int count) __asm__("__real__Z13TerminalWritePKhi");
void WatchedTerminalWrite(const BYTE* bytes, int count) __asm__("__wrap__Z13TerminalWritePKhi");
void WatchedTerminalWrite(const BYTE* bytes, int count) {
    if (g_in_chunk)
        g_from_host.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count));
    else
        g_own_words = true;
    RealTerminalWrite(bytes, count);
}

void RealTakeChunk(const BYTE* bytes, int count) __asm__("__real__Z16TakeSessionChunkPKhi");
void WatchedTakeChunk(const BYTE* bytes, int count) __asm__("__wrap__Z16TakeSessionChunkPKhi");
void WatchedTakeChunk(const BYTE* bytes, int count) {
    // The trace of Telnet is written meanwhile.
    if (session.settings.nego == 1 && session.settings.ssh == 0) g_own_words = true;
    g_in_chunk = true;
    RealTakeChunk(bytes, count);
    g_in_chunk = false;
}

void StartReplay() {
    g_written = g_from_host = std::string();
    g_own_words = false;
    g_first = TakeSnapshot();
}

std::string BytesOfHost() {
    std::string bytes;
    OnWindowThread([&] { bytes = g_from_host; });
    return bytes;
}

bool TerminalWroteItself() {
    bool wrote = false;
    OnWindowThread([&] { wrote = g_own_words; });
    return wrote;
}

static void SetTerminal(const TerminalSnapshot& terminal) {
    session.screen = terminal.screen;
    session.parser = terminal.parser;
    session.modes = terminal.modes;
    session.split = terminal.split;
}

// What belongs to the window, and what Telnet sets.
static void TakeOthersFields(const TerminalSnapshot& live, TerminalSnapshot* replayed) {
    ScreenBuffer& screen = replayed->screen;
    std::memcpy(screen.row_changed, live.screen.row_changed, sizeof(screen.row_changed));
    std::memcpy(screen.paint_row, live.screen.paint_row, sizeof(screen.paint_row));
    screen.selection_active = live.screen.selection_active;
    screen.selection_start_col = live.screen.selection_start_col;
    screen.selection_start_row = live.screen.selection_start_row;
    screen.selection_end_col = live.screen.selection_end_col;
    screen.selection_end_row = live.screen.selection_end_row;
    replayed->modes.localecho = live.modes.localecho;
}

static std::string ReplayDifference() {
    const TerminalSnapshot live = TakeSnapshot();
    const DWORD bell = session.settings.bell;
    std::string replies;
    session.settings.bell = 0;
    SetTerminal(g_first);
    g_replaying = true;
    FeedByteByByte(g_written, &replies);
    g_replaying = false;
    TerminalSnapshot replayed = TakeSnapshot();
    TakeOthersFields(live, &replayed);
    SetTerminal(live);
    session.settings.bell = bell;
    return FirstDifference(replayed, live);
}

void ExpectReplayAlike() {
    OnWindowThread([] {
        EXPECT_EQ("", FieldOutOfBounds());
        EXPECT_EQ("", ReplayDifference()) << "after " << g_written.size() << " bytes";
    });
}

// Where the two part for the first time, from a new terminal on: the last bytes before it.
static std::string FirstParting(const std::string& shown) {
    const TerminalSnapshot live = TakeSnapshot();
    VTerm* peer = NewPeer();
    std::string replies, parting = "they do not part from a new terminal on";
    NewTerminal();
    g_replaying = true;
    for (size_t from = 0, to; from < shown.size(); from = to) {
        to = std::min(shown.find('H', from), shown.size() - 1) + 1;
        FeedByteByByte(shown.substr(from, to - from), &replies);
        FeedPeer(peer, shown.substr(from, to - from));
        const std::string difference = DifferenceFromPeer(peer);
        if (difference.empty()) continue;
        const size_t before = from < 200 ? 0 : from - 200;
        parting =
            difference + " after " + testing::PrintToString(shown.substr(before, to - before));
        break;
    }
    g_replaying = false;
    FreePeer(peer);
    SetTerminal(live);
    return parting;
}

void ExpectPeerAlike(const std::string& shown) {
    VTerm* peer = NewPeer();
    FeedPeer(peer, shown);
    OnWindowThread([&] {
        const std::string difference = DifferenceFromPeer(peer);
        if (!difference.empty()) ADD_FAILURE() << difference << "; first " << FirstParting(shown);
    });
    FreePeer(peer);
}

// ---------------------------------------------------------------- the settings

// What a save writes.
struct Saved {
    Settings settings;
    std::array<std::string, kKeyRows> keys;
    std::array<DWORD, kToolbarRows> bars;
};

static Saved g_saved;
static bool g_any_saved = false;

static DWORD BarsOf(const ToolbarButton& button) {
    return (button.onBar1 ? 4u : 0u) | (button.onBar2 ? 2u : 0u) | (button.onBar3 ? 1u : 0u);
}

static Saved InMemory() {
    Saved memory = {session.settings, {}, {}};
    for (size_t i = 0; i < kKeyRows; ++i) memory.keys[i] = key_map[i].text ? key_map[i].text : "";
    for (size_t i = 0; i < kToolbarRows; ++i) memory.bars[i] = BarsOf(toolbar_buttons[i]);
    return memory;
}

void RealSaveSettings() __asm__("__real__Z12SaveSettingsv");
void WatchedSaveSettings() __asm__("__wrap__Z12SaveSettingsv");
void WatchedSaveSettings() {
    RealSaveSettings();
    g_saved = InMemory();
    g_any_saved = true;
}

// The same field of another record.
template <typename Field>
static const Field* FieldOf(const Settings& settings, const Field* field) {
    const auto* first = reinterpret_cast<const char*>(&session.settings);
    const auto offset = reinterpret_cast<const char*>(field) - first;
    return reinterpret_cast<const Field*>(reinterpret_cast<const char*>(&settings) + offset);
}

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

static std::string AsciiBytes(const std::string& text) {
    return TextBytes(std::u16string(text.begin(), text.end()).c_str());
}

static void ExpectFile(std::map<std::string, StoredSetting> stored, const Saved& wanted) {
    const Settings& settings = wanted.settings;
    for (const NumberSetting& row : number_settings)
        EXPECT_TRUE(stored[row.name].data == NumberBytes(*FieldOf(settings, row.field)))
            << row.name;
    for (const TextSetting& row : text_settings)
        EXPECT_TRUE(stored[row.name].data == TextBytes(FieldOf(settings, row.field))) << row.name;
    for (size_t i = 0; i < kKeyRows; ++i)
        EXPECT_TRUE(stored["key" + std::to_string(i)].data == AsciiBytes(wanted.keys[i]))
            << key_map[i].name;
    for (size_t i = 0; i < kToolbarRows; ++i)
        EXPECT_TRUE(stored["tbar" + std::to_string(i)].data == NumberBytes(wanted.bars[i]))
            << toolbar_buttons[i].name;
}

// SQLite may leave the closing of a file to the program's own connection, so both have one thread.
void ExpectStored(const std::string& root) {
    OnWindowThread([&] {
        if (g_any_saved) ExpectFile(StoredSettings(root), g_saved);
    });
}

void ExpectMemoryStored(const std::string& root) { ExpectFile(StoredSettings(root), InMemory()); }

// ---------------------------------------------------------------- the system

static long EntriesOf(const char* folder) {
    long count = 0;
    DIR* open = opendir(folder);
    while (readdir(open)) ++count;
    closedir(open);
    return count;
}

Held WhatIsHeld() {
    Held held = {};
    OnWindowThread([&] {
        QPixmapCache::clear();  // the toolkit keeps up to 10 MB of pictures that were drawn
        held = {EntriesOf("/proc/self/task"),
                EntriesOf("/proc/self/fd"),
                counts.handles,
                counts.objects,
                counts.contexts,
                counts.sockets,
                counts.keys,
                static_cast<long>(HeapInUse())};
    });
    return held;
}

struct HeldRow {
    const char* name;
    long Held::*count;
    long room;  // what it may grow by
};

static const HeldRow kHeldRows[] = {
    {"threads", &Held::threads, 2},          {"open files", &Held::files, 3},
    {"handles", &Held::handles, 0},          {"drawing objects", &Held::objects, 0},
    {"device contexts", &Held::contexts, 0}, {"sockets", &Held::sockets, 0},
    {"registry keys", &Held::keys, 0},       {"bytes", &Held::bytes, 0},
};

std::string Describe(const Held& held) {
    std::string text;
    for (const HeldRow& row : kHeldRows)
        text += (text.empty() ? "" : ", ") + std::to_string(held.*row.count) + " " + row.name;
    return text;
}

std::string Growth(const Held& before, const Held& now, long room) {
    std::string text;
    for (const HeldRow& row : kHeldRows) {
        const long allowed = row.count == &Held::bytes ? room : row.room;
        if (now.*row.count <= before.*row.count + allowed) continue;
        text += std::string(row.name) + " from " + std::to_string(before.*row.count) + " to " +
                std::to_string(now.*row.count) + " ";
    }
    return text;
}
