// SPDX-License-Identifier: MIT
// Reads the states and errors of a dial from the dial-up program's log and exit code.
#ifndef QUILL_PLATFORM_QT_SERVICES_REMOTE_ACCESS_H
#define QUILL_PLATFORM_QT_SERVICES_REMOTE_ACCESS_H

#include <cstddef>
#include <string>
#include <vector>

#include "windows_ce.h"

// Takes the log in pieces that are cut anywhere. A line is recognised by its beginning; the rest of
// it, other lines and all other bytes are skipped. Each state is reported once, in the table's
// order, even if the log repeats it. A failure of the modem's script is remembered.
class DialLog {
  public:
    // Returns the states that these bytes reach.
    std::vector<DWORD> Take(const char* bytes, size_t count);
    bool connected() const { return connected_; }
    // Returns the error of RASCS_Disconnected for that exit code; below 0: a signal ended the
    // program.
    DWORD ErrorOf(int exit_code) const;

  private:
    void TakeLine(std::vector<DWORD>* reached);

    std::string line_;     // the beginning of the present line
    size_t next_row_ = 0;  // of the states that can still be reached
    bool connected_ = false;
    DWORD script_error_ = 0;
};

#endif
