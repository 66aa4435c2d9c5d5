// SPDX-License-Identifier: MIT
// Reads the rows of a table in the program's source as text, because no procedure of the program
// returns them. The reader is strict: a line of the table that it cannot read fails the test.
#ifndef QUILL_TESTS_GUIDE_TABLE_SOURCE_H
#define QUILL_TESTS_GUIDE_TABLE_SOURCE_H

#include <string>
#include <vector>

struct SourceRow {
    std::vector<std::string> fields;  // as written, without blanks around them
    std::string remark;               // the comment after the row, up to a colon
};

// `file` is below terminal/, `table` is the table's name. A missing table fails the test.
std::vector<SourceRow> ReadTable(const std::string& file, const std::string& table);

// The byte of a field such as 'A', '\'', 27 or kEsc. Other fields fail the test and return -1.
int ByteOfField(const std::string& field);

#endif
