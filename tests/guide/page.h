// SPDX-License-Identifier: MIT
// Pages of docs/ as tests read them: sections with their tables, and fenced blocks with a name.
#ifndef QUILL_TESTS_GUIDE_PAGE_H
#define QUILL_TESTS_GUIDE_PAGE_H

#include <map>
#include <string>
#include <vector>

typedef std::vector<std::string> PageRow;  // cells, without the blanks around them

struct Page {
    // The rows of a section's tables without their headings. The key is the section's heading
    // without number signs.
    std::map<std::string, std::vector<PageRow>> tables;

    // The text of the fenced block after a line <!-- recipe: NAME -->, by name.
    std::map<std::string, std::string> recipes;
};

Page ReadPage(const std::string& path);  // fails the test if the file cannot be read

// The texts in backticks of a cell: "`0` to `9`" yields 0 and 9.
std::vector<std::string> CodeOf(const std::string& cell);

// Replaces \e and \xHH by their bytes.
std::string BytesOf(const std::string& text);

#endif
