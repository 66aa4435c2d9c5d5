// SPDX-License-Identifier: MIT
// Reads tables of the program's source.
#include "tests/guide/table_source.h"

#include <gtest/gtest.h>
#include <fstream>
#include <map>

#include "terminal/sequences.h"

namespace {

std::string Trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// Commas inside quotes and braces belong to their field.
std::vector<std::string> FieldsOf(const std::string& body) {
    std::vector<std::string> fields(1);
    char quote = 0;
    int depth = 0;
    for (size_t i = 0; i < body.size(); ++i) {
        const char c = body[i];
        if (quote && c == '\\') {
            fields.back() += c;
            fields.back() += body[++i];
            continue;
        }
        if (quote) {
            if (c == quote) quote = 0;
        } else if (c == '\'' || c == '"') {
            quote = c;
        } else if (c == '{' || c == '}') {
            depth += c == '{' ? 1 : -1;
        } else if (c == ',' && depth == 0) {
            fields.emplace_back();
            continue;
        }
        fields.back() += c;
    }
    for (std::string& field : fields) field = Trimmed(field);
    return fields;
}

// A line "    {FIELDS},  // REMARK: MORE".
SourceRow RowOf(const std::string& line) {
    const size_t remark = line.find("},  // ");
    const bool bare = line.size() > 6 && line.compare(line.size() - 2, 2, "},") == 0;
    const size_t end = remark != std::string::npos ? remark : line.size() - 2;
    if (line.rfind("    {", 0) != 0 || (remark == std::string::npos && !bare)) {
        ADD_FAILURE() << "this row cannot be read: " << line;
        return {};
    }
    SourceRow row{FieldsOf(line.substr(5, end - 5)), ""};
    if (remark != std::string::npos) row.remark = line.substr(remark + 7);
    row.remark = row.remark.substr(0, row.remark.find(':'));
    return row;
}

}  // namespace

std::vector<SourceRow> ReadTable(const std::string& file, const std::string& table) {
    std::ifstream source(QUILL_TERMINAL_SOURCE "/" + file);
    std::vector<SourceRow> rows;
    bool inside = false;
    for (std::string line; std::getline(source, line);) {
        if (inside && line == "};") return rows;
        if (inside && line.rfind("    //", 0) != 0) rows.push_back(RowOf(line));
        inside = inside || line.find(' ' + table + "[] = {") != std::string::npos;
    }
    ADD_FAILURE() << file << " has no table " << table;
    return {};
}

int ByteOfField(const std::string& field) {
    static const std::map<std::string, int> kNamed = {
        {"kEsc", kEsc},
        {"kIntroducerInd", kIntroducerInd},
        {"kIntroducerRi", kIntroducerRi},
        {"kIntroducerSs3", kIntroducerSs3},
        {"kIntroducerDcs", kIntroducerDcs},
        {"kIntroducerCsi", kIntroducerCsi},
    };
    const auto named = kNamed.find(field);
    if (named != kNamed.end()) return named->second;
    if (field == "'\\''") return '\'';
    if (field.size() == 3 && field.front() == '\'' && field.back() == '\'') return field[1];
    if (!field.empty() && field.find_first_not_of("0123456789") == std::string::npos)
        return std::stoi(field);
    ADD_FAILURE() << "what byte is " << field << "?";
    return -1;
}
