// SPDX-License-Identifier: MIT
// The proof of a terminfo entry: each capability is expanded, fed to the terminal, and compared
// with what terminfo(5) says of it, from every start that the manual defines.
#ifndef QUILL_TESTS_HOSTS_PROOF_H
#define QUILL_TESTS_HOSTS_PROOF_H

#include <string>
#include <vector>

#include "tests/hosts/terminfo_entry.h"

// What goes wrong where a promise is not kept.
enum class Loss {
    kScreen,  // text or cursor is in the wrong place
    kLook,    // something is not shown: a colour, a glyph, a status line
    kReset,   // a state that the entry's reset leaves
    kKey,     // a key sends something else
    kEdge,    // right wherever the manual says what happens, but a step leaves the screen or
              // scrolls it at an edge
};

struct Finding {
    std::string capability;
    Loss loss;
    std::string message;
};

// Every promise that the terminal does not keep; empty for a true entry. At most one of a
// capability.
std::vector<Finding> ProveEntry(const TerminfoEntry& entry);

// One capability of the entry: a flag, a number, a string or a key.
std::vector<Finding> ProveCapability(const TerminfoEntry& entry, const std::string& capability);

// All that an entry promises, also by a flag's absence ("no am").
std::vector<std::string> PromisesOf(const TerminfoEntry& entry);

const char* LossName(Loss loss);

// ---------------------------------------------------------------- the parts of the proof

// The message of a broken promise, empty if it is kept.
typedef std::string (*Check)(const TerminfoEntry& entry);

struct CheckRow {
    const char* capability;
    Loss loss;
    Check check;
};

// effects.cpp: strings that change cells or move the cursor. False for a string that is not theirs.
bool CheckEffect(const TerminfoEntry& entry, const std::string& capability, std::string* message);

// The same, with a row of double width among the others: one that has another size afterwards.
// Empty for strings of other kinds.
std::string LeavesAnotherWidth(const TerminfoEntry& entry, const std::string& capability);

// A step of the cursor that leaves the screen or changes it at an edge, where the manual leaves
// open what happens; empty for one that stops there, and for all other strings.
std::string LeavesTheScreen(const TerminfoEntry& entry, const std::string& capability);

// looks.cpp: attributes, character sets, modes and resets. Null for a string that is not theirs.
const CheckRow* FindLookCheck(const std::string& capability);
// One that no program that paints reads: a file's name, a label, a character for padding.
bool IsNeutral(const std::string& capability);
// A mode that the entry's initialising (tput init) leaves on; empty if it leaves nothing, prints
// nothing and does not move the cursor.
std::string LeftByInitialising(const TerminfoEntry& entry);

// flags.cpp: flags, absent flags ("no am") and numbers. Every name that curses has is there.
const CheckRow* FindFlagCheck(const std::string& capability);

// changes.cpp: what a string changes beyond what its capability may change, anywhere in the
// terminal's state. Empty if it is nothing, and for a capability that may change anything.
std::string ChangesMore(const TerminfoEntry& entry, const std::string& capability);

// keys.cpp: what a key sends. Null for a key that the terminal has not.
struct KeyRow {
    const char* capability;
    int row;  // of the key table
};
const KeyRow* FindKey(const std::string& capability);
std::vector<std::string> KeyCapabilities();
std::string KeyName(const KeyRow& key);
std::string SentByDefault(const KeyRow& key);
// The first row that sends the same by default, and so is the key that a host takes it for; empty
// if it is this one.
std::string OtherKeyOf(const KeyRow& key);

#endif
