// SPDX-License-Identifier: MIT
// Terminal scripts: reads a file and runs its sections. README.md describes the language.
#ifndef QUILL_TESTS_TERMINAL_SCRIPT_H
#define QUILL_TESTS_TERMINAL_SCRIPT_H

#include <string>
#include <vector>

struct ScriptLine {
    int number;
    std::string text;
};

struct ScriptSection {
    std::string file;
    int line;
    std::string title;
    std::vector<ScriptLine> lines;
};

// How PUSH passes its bytes to the terminal.
typedef void (*ScriptFeed)(const std::string& bytes, std::string* replies);

// Drops empty lines and comments. *error gets a line that is before the first section.
std::vector<ScriptSection> ReadScript(const std::string& path, std::string* error);

// Runs a section on a new terminal and returns the messages of its failed checks. *everything gets
// all replies of the terminal.
std::vector<std::string> RunSection(const ScriptSection& section, ScriptFeed feed,
                                    std::string* everything);

// The script's strings: "..." with \e \r \n \t \b \a \\ \" \xHH, an optional * N after it, and
// several of them in a row. False if the text is not such a string.
bool ReadScriptString(const std::string& text, std::string* value);

// The arguments of a check or an operation: numbers (a quoted character is its code) and a name.
struct ScriptWords {
    std::vector<int> numbers;
    std::string name;
};

// In script_queries.cpp: the value that a check compares, as text. False for an unknown query.
bool ReadQuery(const std::string& query, const ScriptWords& words, std::string* value);

// In script_operations.cpp: a direct call. False for an unknown operation or too few numbers.
bool RunOperation(const std::string& operation, const ScriptWords& words);

#endif
