// SPDX-License-Identifier: MIT
// Reads pages of docs/.
#include "tests/guide/page.h"

#include <gtest/gtest.h>
#include <fstream>

namespace {

std::string Trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// Splits a row at its bars; a bar inside backticks belongs to its cell.
PageRow CellsOf(const std::string& line) {
    PageRow cells;
    std::string cell;
    bool code = false;
    for (const char c : line.substr(1)) {
        if (c == '`') code = !code;
        if (c == '|' && !code) {
            cells.push_back(Trimmed(cell));
            cell.clear();
        } else {
            cell += c;
        }
    }
    return cells;
}

const std::string kRecipeMark = "<!-- recipe: ";

struct Reader {
    Page page;
    std::string heading;
    std::string recipe;       // the recipe to which the next or current block belongs
    bool fenced = false;      // inside a fenced block
    bool table_body = false;  // below the line of dashes of a table

    void ReadFence(const std::string& line) {
        if (line.rfind("```", 0) == 0) {
            fenced = !fenced;
            if (!fenced) recipe.clear();
        } else if (!recipe.empty()) {
            page.recipes[recipe] += line + '\n';
        }
    }

    void Read(const std::string& line) {
        if (fenced || line.rfind("```", 0) == 0) return ReadFence(line);
        if (line.rfind(kRecipeMark, 0) == 0) {
            const size_t start = kRecipeMark.size();
            recipe = line.substr(start, line.find(" -->") - start);
            EXPECT_EQ(page.recipes.count(recipe), 0u) << recipe << " is there twice";
            page.recipes[recipe];
        } else if (line.rfind('#', 0) == 0) {
            heading = Trimmed(line.substr(line.find_first_not_of('#')));
        }
        const bool row = line.rfind('|', 0) == 0;
        if (row && table_body) page.tables[heading].push_back(CellsOf(line));
        table_body = row && (table_body || line.rfind("|--", 0) == 0);
    }
};

}  // namespace

Page ReadPage(const std::string& path) {
    std::ifstream file(path);
    EXPECT_TRUE(file.is_open()) << path;
    Reader reader;
    for (std::string line; std::getline(file, line);) reader.Read(line);
    EXPECT_FALSE(reader.fenced) << "a block of " << path << " has no end";
    return reader.page;
}

std::vector<std::string> CodeOf(const std::string& cell) {
    std::vector<std::string> texts;
    for (size_t from = cell.find('`'); from != std::string::npos; from = cell.find('`', from)) {
        const size_t to = cell.find('`', from + 1);
        texts.push_back(cell.substr(from + 1, to - from - 1));
        from = to == std::string::npos ? to : to + 1;
    }
    return texts;
}

std::string BytesOf(const std::string& text) {
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool escape = text[i] == '\\' && i + 1 < text.size();
        if (escape && text[i + 1] == 'e') {
            bytes += '\x1b';
            i += 1;
        } else if (escape && text[i + 1] == 'x') {
            bytes += static_cast<char>(std::stoi(text.substr(i + 2, 2), nullptr, 16));
            i += 3;
        } else {
            bytes += text[i];
        }
    }
    return bytes;
}
