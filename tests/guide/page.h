// SPDX-License-Identifier: MIT
// Pages of docs/ as tests read them: sections with their tables, and fenced blocks with a name.
#ifndef QUILL_TESTS_GUIDE_PAGE_H
#define QUILL_TESTS_GUIDE_PAGE_H

#include <map>
#include <string>
#include <vector>

typedef std::vector<std::string> PageRow;  // cells, without the blanks around them

struct Page {
    // By heading, without its number signs: the rows of the section's tables, headings of the
    // tables left out.
    std::map<std::string, std::vector<PageRow>> tables;

    // By name: the text of the fenced block that follows a line <!-- recipe: NAME -->.
    std::map<std::string, std::string> recipes;
};

Page ReadPage(const std::string& path);  // empty, and a failure of the test, if it cannot be read

// The texts in backticks of a cell: "`0` to `9`" yields 0 and 9.
std::vector<std::string> CodeOf(const std::string& cell);

// \e and \xHH as the bytes that they stand for.
std::string BytesOf(const std::string& text);

#endif
