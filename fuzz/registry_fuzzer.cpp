// SPDX-License-Identifier: MIT
// The files that the program reads at its start: the registry's file and the compiled resources.
// The first byte of the input selects how the rest becomes such a file:
//   0  the registry's file itself
//   1  a good registry file with patches. A patch: its place (2 bytes), its length (1 byte), bytes
//   2  the same in the log of a file that was not closed
//   3  a good registry file with rows of the input. A row: the name (1 byte: a setting, a key of
//   the
//      key table, a button of the toolbars, or a text of the input), the type (4 bytes), the data's
//      length (1 byte), the data
//   4  the image of the resources itself
//   5  the program's own image with patches
//   6  a dialog template, a bitmap or an icon
// and further on in turns of seven, but for
//   254  the values of one run (host, port, protocol and user of the command line), then rows
//   255  a configuration file, which is imported
// Bit 7 resets the settings at the end of 0, 1, 2 and 3.
//
// What must hold for a registry file: every field is within its bounds; rows of the input are read
// as the settings' header says; a file that is set aside has the bytes of the input; what is loaded
// is saved, and loaded again it is the same, value by value and at once; the file is then sound,
// and an export changes nothing in it. What the export can say comes back by its import. A reset
// leaves the defaults, and the values of one run never reach the file. For resources: everything
// that is found lies inside the image, pictures and menus are within their bounds, and the same
// comes of a second reading.
#include <dirent.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/qt/services/registry.h"
#include "platform/qt/services/resources.h"
#include "platform/qt/services/services.h"
#include "session/session_state.h"
#include "settings/key_map.h"
#include "settings/settings.h"
#include "settings/toolbars.h"
#include "tests/settings/settings_rows.h"

static std::string root, file_path, log_path;
static std::string good_file, open_file, open_log, good_image;

static void Require(bool holds, const char* what) {
    if (holds) return;
    fprintf(stderr, "broken: %s\n", what);
    abort();
}

SHORT GetKeyState(int) { return 0; }
int MessageBoxW(HWND, LPCWSTR, LPCWSTR, UINT) { return IDOK; }

// ---------------------------------------------------------------- files

static std::string ReadAll(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

static void WriteAll(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

static void EmptyRoot() {
    CloseRegistry();
    for (const auto& entry : std::filesystem::directory_iterator(root))
        std::filesystem::remove_all(entry.path());
}

static void RemoveRoot() { std::filesystem::remove_all(root); }

static void MakeRoot() {
    const bool memory = access("/dev/shm", W_OK) == 0;
    std::string path = memory ? "/dev/shm" : std::filesystem::temp_directory_path().string();
    path += "/quill-fuzz-XXXXXX";
    Require(mkdtemp(path.data()) != nullptr, "a folder");
    root = path;
    file_path = root + "/registry.db";
    log_path = file_path + "-wal";
    std::atexit(RemoveRoot);
    SetDeviceRoot(root);
}

// ---------------------------------------------------------------- the input

struct Input {
    const uint8_t* at;
    size_t left;
};

static uint32_t TakeNumber(Input* input, int bytes) {
    uint32_t number = 0;
    for (; bytes > 0; --bytes) {
        number = number << 8 | (input->left > 0 ? *input->at : 0u);
        if (input->left > 0) input->at++, input->left--;
    }
    return number;
}

static std::string TakeText(Input* input, size_t count) {
    count = std::min(count, input->left);
    const std::string text(reinterpret_cast<const char*>(input->at), count);
    input->at += count;
    input->left -= count;
    return text;
}

static std::string TakeRest(Input* input) { return TakeText(input, input->left); }

static std::string Patched(std::string bytes, Input* input) {
    while (input->left > 0 && !bytes.empty()) {
        const size_t place = TakeNumber(input, 2) % bytes.size();
        const std::string patch = TakeText(input, TakeNumber(input, 1));
        bytes.replace(place, std::min(patch.size(), bytes.size() - place), patch);
    }
    return bytes;
}

// ---------------------------------------------------------------- what is loaded

struct Loaded {
    std::vector<DWORD> numbers;
    std::vector<std::u16string> texts;
    std::vector<DWORD> buttons;
    std::vector<std::string> keys;
    bool operator==(const Loaded&) const = default;
};

static std::u16string Bounded(LPCWSTR text) {
    for (int i = 0; i < kSettingUnits; ++i)
        if (!text[i]) return std::u16string(text, text + i);
    Require(false, "a text ends within its field");
    return {};
}

static Loaded TakeLoaded() {
    Loaded loaded;
    for (const NumberSetting& row : number_settings) loaded.numbers.push_back(*row.field);
    for (const TextSetting& row : text_settings) loaded.texts.push_back(Bounded(row.field));
    for (const ToolbarButton* button = toolbar_buttons; button->name; ++button) {
        Require(button->onBar1 <= 4 && button->onBar2 <= 2 && button->onBar3 <= 1, "a bar's bit");
        loaded.buttons.push_back(button->onBar1 | button->onBar2 | button->onBar3);
    }
    for (const KeyMapEntry* key = key_map; key->name; ++key) {
        loaded.keys.push_back(key->text ? key->text : "");
        Require(loaded.keys.back().size() < kSettingUnits, "a key's text");
    }
    return loaded;
}

static Loaded defaults;
static bool resets;

static Loaded Load() {
    std::memset(static_cast<void*>(&session.settings), 0xA5, sizeof(session.settings));
    LoadSettings();
    return TakeLoaded();
}

// As the program's start does it: all values in one go.
static Loaded LoadAnew() {
    CloseRegistry();
    HoldRegistry();
    const Loaded loaded = Load();
    ReleaseRegistry();
    return loaded;
}

// ---------------------------------------------------------------- the registry's file

static std::string Ask(sqlite3* database, const char* query) {
    sqlite3_stmt* statement = nullptr;
    std::string answer = "?";
    if (sqlite3_prepare_v2(database, query, -1, &statement, nullptr) == SQLITE_OK &&
        sqlite3_step(statement) == SQLITE_ROW)
        answer = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
    sqlite3_finalize(statement);
    return answer;
}

static void CheckFile() {
    struct stat status;
    Require(stat(file_path.c_str(), &status) == 0 && (status.st_mode & 0777) == 0600, "the mode");
    sqlite3* database = nullptr;
    Require(
        sqlite3_open_v2(file_path.c_str(), &database, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK,
        "the file opens");
    Require(Ask(database, "PRAGMA integrity_check(1)") == "ok", "the file is sound");
    Require(Ask(database, "SELECT count(*) FROM sqlite_master") == "2", "its one table");
    sqlite3_close(database);
}

static SettingsExport CheckExport() {
    CloseRegistry();
    const std::string before = ReadAll(file_path);
    SettingsExport text;
    Require(ExportSettings(root, true, &text), "a sound file can be exported");
    Require(text.file.size() < 100000 && ReadAll(file_path) == before, "an export only reads");
    return text;
}

static void Import(const std::string& file) {
    const std::string path = root + "/mconfig.cfg";
    EmptyRoot();
    WriteAll(path, file);
    ImportConfigFile(nullptr);
    Require(!std::filesystem::exists(path), "an imported file is deleted");
}

static void CheckReset() {
    ResetSettings();
    Require(LoadAnew() == defaults, "a reset leaves the defaults");
}

// A file that is not used is kept as it came. The second name keeps the file's number from another.
static void CheckSetAside(const std::string& given, bool with_log) {
    const std::string second_name = file_path + ".given";
    std::filesystem::create_hard_link(file_path, second_name);
    HKEY key;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kSettingsKeyName, 0, KEY_QUERY_VALUE, &key) ==
        ERROR_SUCCESS)
        RegCloseKey(key);
    std::error_code none;
    const bool used = std::filesystem::equivalent(file_path, second_name, none);
    std::filesystem::remove(second_name);
    if (!with_log && !used)
        Require(ReadAll(file_path + ".damaged") == given, "a damaged file is kept");
}

// The program uses what it has loaded. Not in 256 calls: the fuzzer counts them in a byte.
static void CheckUse() {
    for (int key = 1; key < 256; ++key) {
        const char* bytes = TranslateVirtualKey(key);
        Require(!bytes || strlen(bytes) <= kLongestKeyText, "the bytes of a key");
        Require(bytes || !TableTakesKey(key), "only a key with a row is the table's");
    }
    for (int bar = 1; bar <= kToolbars; ++bar) {
        int buttons = 0, shown = 0;
        for (int row = 0; row < kToolbarRows; ++row)
            buttons += OnBar(toolbar_buttons[row], bar) != 0;
        while (ToolbarAction(shown, bar) != 0) ++shown;
        Require(shown == buttons, "a bar's buttons have actions");
    }
}

static Loaded CheckRegistry(const std::string& file, const std::string& log) {
    EmptyRoot();
    WriteAll(file_path, file);
    if (!log.empty()) WriteAll(log_path, log);
    CheckSetAside(file, !log.empty());
    const Loaded loaded = Load();
    CheckUse();
    SaveSettings();
    Require(Load() == loaded, "what is saved is loaded");
    Require(LoadAnew() == loaded, "what is saved stays");
    const SettingsExport text = CheckExport();
    CheckFile();
    Require(LoadAnew() == loaded, "an export changes nothing");
    EmptyRoot();
    SaveSettings();
    Require(LoadAnew() == loaded, "everything is saved where nothing was");
    if (resets) CheckReset();
    if (!text.unsaid.empty()) return loaded;
    Import(text.file);
    Require(LoadAnew() == loaded, "what an export says is imported");
    return loaded;
}

// ---------------------------------------------------------------- rows

struct Row {
    std::string name;
    uint32_t type = 0;
    std::string data;
};

static std::string TakeName(Input* input) {
    const size_t choice = TakeNumber(input, 1);
    const size_t numbers = std::size(number_settings), texts = std::size(text_settings);
    if (choice < numbers) return number_settings[choice].name;
    if (choice < numbers + texts) return text_settings[choice - numbers].name;
    if (choice < 128) return "key" + std::to_string(choice % kKeyRows);
    if (choice < 192) return "tbar" + std::to_string(choice % kToolbarRows);
    return TakeText(input, choice - 192);
}

static Row TakeRow(Input* input) {
    Row row;
    row.name = TakeName(input);
    row.type = TakeNumber(input, 4);
    row.data = TakeText(input, TakeNumber(input, 1));
    return row;
}

static void Insert(sqlite3* database, const Row& row) {
    static const char kInsert[] = "INSERT OR REPLACE INTO registry VALUES (?1, ?2, ?3, ?4)";
    sqlite3_stmt* statement = nullptr;
    Require(sqlite3_prepare_v2(database, kInsert, -1, &statement, nullptr) == SQLITE_OK, "SQL");
    sqlite3_bind_text(statement, 1, kSettingsKeyPath, -1, SQLITE_STATIC);
    sqlite3_bind_text(statement, 2, row.name.data(), static_cast<int>(row.name.size()),
                      SQLITE_STATIC);
    sqlite3_bind_int64(statement, 3, row.type);
    sqlite3_bind_blob64(statement, 4, row.data.data(), row.data.size(), SQLITE_STATIC);
    Require(sqlite3_step(statement) == SQLITE_DONE, "the row is inserted");
    sqlite3_finalize(statement);
}

// As the settings' header says.
static DWORD NumberOf(const std::string& data, DWORD fallback) {
    if (data.size() > 4) return fallback;
    DWORD number = 0;
    for (size_t i = 0; i < data.size(); ++i)
        number |= static_cast<DWORD>(static_cast<uint8_t>(data[i])) << 8 * i;
    return number;
}

static std::u16string TextOf(const std::string& data, const std::u16string& fallback) {
    if (data.size() > 80) return fallback;
    std::string bytes = data + std::string(82 - data.size(), '\0');
    std::u16string text;
    for (size_t i = 0; text.size() < kSettingUnits - 1; i += 2) {
        const int unit = static_cast<uint8_t>(bytes[i]) | static_cast<uint8_t>(bytes[i + 1]) << 8;
        if (unit == 0) break;
        text += static_cast<char16_t>(unit);
    }
    return text;
}

static std::string WithoutCase(std::string name) {
    for (char& c : name)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return name;
}

static std::u16string Wide(const char* text) { return std::u16string(text, text + strlen(text)); }

// Afterwards the file has these rows and no others.
static std::map<std::string, Row> WriteRows(Input* input) {
    EmptyRoot();
    WriteAll(file_path, good_file);
    std::map<std::string, Row> rows;
    sqlite3* database = nullptr;
    Require(sqlite3_open(file_path.c_str(), &database) == SQLITE_OK, "the good file opens");
    sqlite3_exec(database, "BEGIN; DELETE FROM registry WHERE name IS NOT NULL", nullptr, nullptr,
                 nullptr);
    while (input->left > 0) {
        const Row row = TakeRow(input);
        Insert(database, row);
        rows[WithoutCase(row.name)] = row;
    }
    sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(database);
    return rows;
}

static void CheckRows(Input* input) {
    const std::map<std::string, Row> rows = WriteRows(input);
    const Loaded loaded = Load();
    for (size_t i = 0; i < std::size(number_settings); ++i) {
        const NumberSetting& row = number_settings[i];
        const auto found = rows.find(row.name);
        const DWORD wanted =
            found == rows.end() ? row.fallback : NumberOf(found->second.data, row.fallback);
        Require(loaded.numbers[i] == wanted, "a number is read as it is stored");
    }
    for (size_t i = 0; i < std::size(text_settings); ++i) {
        const TextSetting& row = text_settings[i];
        const auto found = rows.find(row.name);
        const std::u16string fallback = Wide(row.fallback);
        Require(loaded.texts[i] ==
                    (found == rows.end() ? fallback : TextOf(found->second.data, fallback)),
                "a text is read as it is stored");
    }
    CloseRegistry();
    Require(CheckRegistry(ReadAll(file_path), "") == loaded, "the same again");
}

// ---------------------------------------------------------------- the import and one run

static void CheckImport(Input* input) {
    Import(TakeRest(input));
    const Loaded loaded = LoadAnew();
    SaveSettings();
    Require(LoadAnew() == loaded, "what was imported is saved");
    CheckExport();
    CheckFile();
}

static std::string TakePlain(Input* input) {
    std::string text = TakeText(input, TakeNumber(input, 1) % kSettingUnits);
    for (char& c : text) c = static_cast<char>('!' + (c & 63));
    return text;
}

// What is read for this run is this run's; what is stored stays.
static void CheckRun(Input* input) {
    RunTarget target;
    target.host = TakePlain(input);
    target.user = TakePlain(input);
    target.port = static_cast<int>(TakeNumber(input, 2));
    target.protocol = static_cast<RunProtocol>(TakeNumber(input, 1) % 3);
    WriteRows(input);
    const Loaded stored = LoadAnew();
    SaveSettings();
    ConnectThisRun(target);
    LoadAnew();
    const Settings& s = session.settings;
    const std::u16string host = s.host, user = s.ssh_u;
    Require(host == Wide(target.host.c_str()), "the run's host");
    Require(s.port == static_cast<DWORD>(target.port ? target.port : s.ssh ? 22 : 23), "its port");
    Require(target.protocol != RunProtocol::kSsh || s.ssh == 1, "its protocol");
    Require(target.user.empty() || user == Wide(target.user.c_str()), "its user");
    SaveSettings();
    ForgetRun();
    Require(LoadAnew() == stored, "a run leaves the stored values");
}

// ---------------------------------------------------------------- resources

static void CheckBitmap(const uint8_t* bytes, size_t size) {
    Bitmap bitmap, again;
    if (ReadBitmap({bytes, size}, &bitmap)) {
        Require(bitmap.width >= 1 && bitmap.width <= kLargestBitmap, "a picture's width");
        Require(bitmap.height >= 1 && bitmap.height <= kLargestBitmap, "a picture's height");
        Require(bitmap.pixels.size() ==
                    static_cast<size_t>(bitmap.width) * static_cast<size_t>(bitmap.height),
                "a picture's pixels");
        Require(ReadBitmap({bytes, size}, &again) && again.pixels == bitmap.pixels, "a picture");
    }
    if (ReadIcon({bytes, size}, &bitmap))
        Require(bitmap.pixels.size() ==
                    static_cast<size_t>(bitmap.width) * static_cast<size_t>(bitmap.height),
                "an icon's pixels");
}

static void CheckTemplate(const uint8_t* bytes, size_t size) {
    DialogTemplate dialog, again;
    if (!ReadDialogTemplate(bytes, size, &dialog)) return;
    Require(dialog.items.size() <= 0xFFFF && dialog.width >= 0 && dialog.height >= 0, "a dialog");
    Require(ReadDialogTemplate(bytes, size, &again) && again.caption == dialog.caption &&
                again.items.size() == dialog.items.size(),
            "a dialog is read alike");
}

static int DepthOf(const std::vector<MenuItem>& items) {
    int deepest = 0;
    for (const MenuItem& item : items) deepest = std::max(deepest, DepthOf(item.items));
    return items.empty() ? 0 : deepest + 1;
}

static void CheckFound(WORD type, WORD name, const std::vector<uint8_t>& image) {
    const uint8_t* bytes = nullptr;
    size_t size = 0;
    if (!FindResourceBytes(MAKEINTRESOURCE(type), MAKEINTRESOURCE(name), &bytes, &size)) return;
    Require(bytes >= image.data() && bytes <= image.data() + image.size() &&
                size <= static_cast<size_t>(image.data() + image.size() - bytes),
            "a resource lies in the image");
    if (type == kResourceBitmap || type == kResourceIcon) CheckBitmap(bytes, size);
    if (type == kResourceDialog) CheckTemplate(bytes, size);
    if (type == kResourceMenu) Require(DepthOf(ReadMenu(name)) <= 4, "a menu's levels");
    if (type != kResourceAccelerator) return;
    const HACCEL table = LoadAcceleratorsW(nullptr, MAKEINTRESOURCE(name));
    Require(!table || !table->rows.empty(), "a table of accelerators has rows");
    Require(LoadAcceleratorsW(nullptr, MAKEINTRESOURCE(name)) == table, "it is loaded once");
}

// All types and names that the program's own image has, and damage may make others of them.
static void CheckImage(const std::string& given) {
    static const WORD kTypes[] = {kResourceBitmap, kResourceIcon,        kResourceMenu,
                                  kResourceDialog, kResourceAccelerator, kResourceData};
    static const WORD kNames[] = {1,   2,   3,   101, 102, 103,  104,  108,  113,  118,  127,
                                  129, 105, 106, 107, 109, 1051, 1054, 1055, 1539, 1544, 1545};
    const std::vector<uint8_t> image(given.begin(), given.end());
    SetResourceImage(image.data(), image.size());
    for (const WORD type : kTypes)
        for (const WORD name : kNames) CheckFound(type, name, image);
    SetResourceImage(nullptr, 0);
}

// ---------------------------------------------------------------- the runs

static void RunFile(Input* input) { CheckRegistry(TakeRest(input), ""); }
static void RunPatchedFile(Input* input) { CheckRegistry(Patched(good_file, input), ""); }
static void RunPatchedLog(Input* input) { CheckRegistry(open_file, Patched(open_log, input)); }
static void RunImage(Input* input) { CheckImage(TakeRest(input)); }
static void RunPatchedImage(Input* input) { CheckImage(Patched(good_image, input)); }

static void RunParts(Input* input) {
    const std::vector<uint8_t> bytes(input->at, input->at + input->left);
    CheckTemplate(bytes.data(), bytes.size());
    CheckBitmap(bytes.data(), bytes.size());
}

static void (*const kRuns[])(Input*) = {RunFile,  RunPatchedFile,  RunPatchedLog, CheckRows,
                                        RunImage, RunPatchedImage, RunParts};

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    MakeRoot();
    LoadSettings();
    defaults = TakeLoaded();
    SaveSettings();
    CloseRegistry();
    good_file = ReadAll(file_path);
    session.settings.port = 2323;  // now the log has rows
    SaveSettings();
    open_file = ReadAll(file_path);
    open_log = ReadAll(log_path);
    good_image = ReadAll(QUILL_RESOURCE_FILE);
    Require(!good_file.empty() && !open_log.empty() && !good_image.empty(), "the good files");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1 || size > 16384) return 0;
    Input input = {data + 1, size - 1};
    resets = data[0] & 128;
    if (data[0] == 255)
        CheckImport(&input);
    else if (data[0] == 254)
        CheckRun(&input);
    else
        kRuns[data[0] % std::size(kRuns)](&input);
    return 0;
}
