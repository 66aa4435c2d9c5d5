// SPDX-License-Identifier: MIT
// The entry of this terminal is held to more than the manual asks of any entry: what it lacks, and
// what its strings for setting up leave.
#ifndef QUILL_TESTS_HOSTS_OWN_ENTRY_H
#define QUILL_TESTS_HOSTS_OWN_ENTRY_H

#include "tests/hosts/proof.h"

// Broken promises, flags and numbers that the terminal would keep and the entry lacks, capabilities
// that are left out for a reason and are there, strings that promise nothing, keys that the key
// table lacks or that send what another key sends. One message each; empty for a true entry.
std::vector<std::string> FaultsOfOwnEntry(const TerminfoEntry& entry);

// Where `seven` is not `eight` with the keys in their 7-bit forms: flags, numbers and strings, one
// message each.
std::vector<std::string> FaultsOfSevenBitEntry(const TerminfoEntry& seven,
                                               const TerminfoEntry& eight);

// A string with an expression that terminfo(5) does not define; empty for a true one. The terminal
// may take what such an expression leaves behind.
std::string FaultOfExpression(const std::string& text);

// own_changes.cpp: a change that a string makes besides the one it is for, or does not make.
std::string FaultOfChanges(const TerminfoEntry& entry, const std::string& capability);

// What is wrong with one string beyond its promise: its expression, padding, further changes.
std::vector<std::string> FaultsOfString(const TerminfoEntry& entry, const std::string& capability);

// A pair of a glyph and a character that the entry lacks, though the terminal draws the glyph.
std::string FaultOfGlyphs(const TerminfoEntry& entry);

// Of those, what is2, rs1 and rs2 do, each sent alone.
std::vector<std::string> FaultsOfSettingUp(const TerminfoEntry& entry);

// What the terminal does and the entry leaves out for a reason.
bool IsLeftOut(const std::string& capability);

#endif
