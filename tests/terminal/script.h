// SPDX-License-Identifier: MIT
// Terminal scripts: reading a file and carrying out its sections. README.md describes the language.
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

// How PUSH hands its bytes over.
typedef void (*ScriptFeed)(const std::string& bytes, std::string* replies);

// Empty lines and comments are dropped. A line before the first section is put into *error.
std::vector<ScriptSection> ReadScript(const std::string& path, std::string* error);

// Runs a section on a new terminal and returns the messages of its failed checks. *everything gets
// all replies of the section.
std::vector<std::string> RunSection(const ScriptSection& section, ScriptFeed feed,
                                    std::string* everything);

// The script's strings: "..." with \e \r \n \t \b \a \\ \" \xHH, an optional * N after it, and
// several of them in a row. False if the text is not such a string.
bool ReadScriptString(const std::string& text, std::string* value);

// What a check or an operation is called by, and what it gets: numbers, of which a quoted character
// gives its code, and names.
struct ScriptWords {
    std::vector<int> numbers;
    std::string name;
};

// script_queries.cpp: the value that a check compares, as text. False for an unknown query.
bool ReadQuery(const std::string& query, const ScriptWords& words, std::string* value);

// script_operations.cpp: a direct call. False for an unknown one, or too few numbers.
bool RunOperation(const std::string& operation, const ScriptWords& words);

#endif
