// SPDX-License-Identifier: MIT
// The rows of a table in the program's source, read as text: what no procedure of the program
// tells. The reader is strict. A line between the table's first and last that it cannot read fails
// the test.
#ifndef QUILL_TESTS_GUIDE_TABLE_SOURCE_H
#define QUILL_TESTS_GUIDE_TABLE_SOURCE_H

#include <string>
#include <vector>

struct SourceRow {
    std::vector<std::string> fields;  // as they are written, blanks cut
    std::string remark;               // behind the row, up to a colon
};

// file: below terminal/; table: its name. Empty, and a failure of the test, if it is not there.
std::vector<SourceRow> ReadTable(const std::string& file, const std::string& table);

// The byte that a field names: 'A', '\'', 27 or kEsc and the like. -1, and a failure, for others.
int ByteOfField(const std::string& field);

#endif
