// SPDX-License-Identifier: MIT
// What the dial-up program's log and exit code say of a dial.
#ifndef QUILL_PLATFORM_QT_SERVICES_REMOTE_ACCESS_H
#define QUILL_PLATFORM_QT_SERVICES_REMOTE_ACCESS_H

#include <cstddef>
#include <string>
#include <vector>

#include "windows_ce.h"

// Reads the log as it comes, cut anywhere. A line counts by how it begins; the rest of a line,
// lines of other kinds and any bytes else are passed over. A state is reached once, in the table's
// order, whatever the log repeats; the failure of the modem's script is remembered.
class DialLog {
  public:
    // The states that the bytes brought.
    std::vector<DWORD> Take(const char* bytes, size_t count);
    bool connected() const { return connected_; }
    // The error of RASCS_Disconnected for that exit code; below 0: ended by a signal.
    DWORD ErrorOf(int exit_code) const;

  private:
    void TakeLine(std::vector<DWORD>* reached);

    std::string line_;     // as much of it as counts
    size_t next_row_ = 0;  // of the states still to be reached
    bool connected_ = false;
    DWORD script_error_ = 0;
};

#endif
