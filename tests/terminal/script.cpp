// SPDX-License-Identifier: MIT
// Reads the files of terminal scripts and runs their sections.
#include "tests/terminal/script.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include "session/session_state.h"
#include "terminal/modes.h"
#include "tests/terminal/beep_double.h"
#include "tests/terminal/terminal_state.h"

static std::string Trim(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::vector<ScriptSection> ReadScript(const std::string& path, std::string* error) {
    std::vector<ScriptSection> sections;
    std::ifstream file(path);
    std::string text;
    if (!file) *error = path + ": cannot be read";
    for (int number = 1; std::getline(file, text); ++number) {
        text = Trim(text);
        if (text.empty() || text[0] == '#') continue;
        std::string title;
        if (text.compare(0, 5, "test ") == 0 && ReadScriptString(Trim(text.substr(5)), &title)) {
            sections.push_back({path, number, title, {}});
        } else if (sections.empty()) {
            *error = path + ":" + std::to_string(number) + ": nothing may stand before a test";
        } else {
            sections.back().lines.push_back({number, text});
        }
    }
    return sections;
}

// ---------------------------------------------------------------- strings

struct EscapeName {
    char name;
    char byte;
};

// clang-format off
static const EscapeName kEscapeNames[] = {
    {'e', 27}, {'r', 13}, {'n', 10}, {'t', 9}, {'b', 8}, {'a', 7}, {'\\', '\\'}, {'"', '"'},
};
// clang-format on

// *at is at a backslash; moves it behind the escape.
static bool ReadEscape(const std::string& text, size_t* at, std::string* value) {
    const char name = *at + 1 < text.size() ? text[*at + 1] : 0;
    if (name == 'x' && *at + 3 < text.size()) {
        value->push_back(static_cast<char>(strtol(text.substr(*at + 2, 2).c_str(), nullptr, 16)));
        *at += 4;
        return true;
    }
    for (const EscapeName& row : kEscapeNames) {
        if (row.name != name) continue;
        value->push_back(row.byte);
        *at += 2;
        return true;
    }
    return false;
}

static bool ReadOneString(const std::string& text, size_t* at, std::string* value) {
    std::string piece;
    ++*at;
    while (*at < text.size() && text[*at] != '"') {
        if (text[*at] == '\\') {
            if (!ReadEscape(text, at, &piece)) return false;
        } else {
            piece.push_back(text[(*at)++]);
        }
    }
    if (*at >= text.size()) return false;
    ++*at;
    int times = 1;
    size_t next = text.find_first_not_of(' ', *at);
    if (next != std::string::npos && text[next] == '*') {
        char* end;
        times = static_cast<int>(strtol(text.c_str() + next + 1, &end, 10));
        *at = static_cast<size_t>(end - text.c_str());
    }
    for (; times > 0; --times) *value += piece;
    return true;
}

bool ReadScriptString(const std::string& text, std::string* value) {
    size_t at = 0;
    value->clear();
    while ((at = text.find_first_not_of(' ', at)) != std::string::npos) {
        if (text[at] != '"' || !ReadOneString(text, &at, value)) return false;
    }
    return !text.empty();
}

static std::string Printable(const std::string& bytes) {
    std::string text;
    char hex[8];
    for (char c : bytes) {
        if (c >= 32 && c < 127) {
            text += c;
        } else {
            snprintf(hex, sizeof hex, "\\x%02x", static_cast<BYTE>(c));
            text += hex;
        }
    }
    return text;
}

// ---------------------------------------------------------------- commands

struct ScriptRun {
    ScriptFeed feed;
    std::string unclaimed;  // replies that no output line has matched yet
    std::string everything;
    std::vector<std::string> failures;
};

static bool Fail(ScriptRun* run, const std::string& message) {
    run->failures.push_back(message);
    return true;
}

// Words are separated by spaces, numbers also by a comma; "x" as one of them is its code.
static ScriptWords SplitWords(const std::string& text) {
    ScriptWords words;
    std::string plain, character;
    for (size_t at = 0; at < text.size();) {
        if (text[at] != '"') {
            plain += text[at++];
        } else if (character.clear(); ReadOneString(text, &at, &character) && !character.empty()) {
            plain += std::to_string(static_cast<BYTE>(character[0])) + ' ';
        } else {
            return words;
        }
    }
    std::istringstream in(plain);
    std::string word;
    while (in >> word) {
        if (word[0] == '-' || isdigit(word[0])) {
            char* rest;
            words.numbers.push_back(static_cast<int>(strtol(word.c_str(), &rest, 0)));
            if (*rest == ',') {
                words.numbers.push_back(static_cast<int>(strtol(rest + 1, nullptr, 0)));
            }
        } else {
            words.name = word;
        }
    }
    return words;
}

static bool RunPush(ScriptRun* run, const std::string& rest) {
    std::string bytes, replies;
    if (!ReadScriptString(rest, &bytes)) return false;
    run->feed(bytes, &replies);
    run->unclaimed += replies;
    run->everything += replies;
    const std::string field = FieldOutOfBounds();
    return field.empty() || Fail(run, field + " is out of bounds");
}

static bool RunOutput(ScriptRun* run, const std::string& rest) {
    std::string expected;
    if (!ReadScriptString(rest, &expected)) return false;
    const std::string actual = run->unclaimed;
    run->unclaimed.clear();
    return actual == expected || Fail(run, "output was \"" + Printable(actual) + "\"");
}

static bool RunReset(ScriptRun*, const std::string&) {
    NewTerminal();
    return true;
}

static bool RunClean(ScriptRun*, const std::string&) {
    memset(session.screen.row_changed, 0, sizeof session.screen.row_changed);
    return true;
}

static bool RunBang(ScriptRun*, const std::string& rest) {
    const size_t space = rest.find(' ');
    const std::string words = space == std::string::npos ? "" : rest.substr(space);
    return RunOperation(rest.substr(0, space), SplitWords(words));
}

static bool RunCheck(ScriptRun* run, const std::string& rest) {
    const size_t equals = rest.find(" = ");
    if (equals == std::string::npos) return false;
    const std::string left = Trim(rest.substr(0, equals));
    std::string expected = Trim(rest.substr(equals + 3)), decoded, actual;
    if (expected[0] == '"') {
        if (!ReadScriptString(expected, &decoded)) return false;
        expected = decoded;
    }
    const size_t space = left.find(' ');
    const std::string words = space == std::string::npos ? "" : left.substr(space);
    if (!ReadQuery(left.substr(0, space), SplitWords(words), &actual)) return false;
    return actual == expected || Fail(run, "was \"" + Printable(actual) + "\"");
}

struct CommandRow {
    const char* word;
    bool (*run)(ScriptRun* run, const std::string& rest);  // false: the line is not valid
};

// clang-format off
static const CommandRow kCommands[] = {
    {"PUSH",   RunPush  },
    {"output", RunOutput},
    {"RESET",  RunReset },
    {"CLEAN",  RunClean },
    {"!",      RunBang  },
    {"?",      RunCheck },
};
// clang-format on

static bool RunLine(ScriptRun* run, const std::string& text) {
    for (const CommandRow& row : kCommands) {
        const size_t length = strlen(row.word);
        if (text.compare(0, length, row.word) == 0) return row.run(run, Trim(text.substr(length)));
    }
    return false;
}

std::vector<std::string> RunSection(const ScriptSection& section, ScriptFeed feed,
                                    std::string* everything) {
    ScriptRun run = {feed, "", "", {}};
    std::vector<std::string> messages;
    NewTerminal();
    beep_count = 0;
    for (const ScriptLine& line : section.lines) {
        if (!RunLine(&run, line.text)) run.failures.push_back("is not understood");
        for (const std::string& failure : run.failures) {
            messages.push_back(section.file + ":" + std::to_string(line.number) + ": " + line.text +
                               "\n    " + failure);
        }
        run.failures.clear();
    }
    if (!run.unclaimed.empty()) {
        messages.push_back(section.file + ":" + std::to_string(section.line) +
                           ": no output line expects \"" + Printable(run.unclaimed) + "\"");
    }
    *everything = run.everything;
    return messages;
}
