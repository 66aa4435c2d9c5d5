// Erasing, and inserting and deleting of characters and lines: the finals @ J K L M P X and the
// VT52 sequences J and K. The cursor stays, but for L and M, which take it to column 1.
#ifndef QUILL_TERMINAL_ERASE_H
#define QUILL_TERMINAL_ERASE_H

#include "session/session_state.h"

// Each parameter in turn. With private_flag (selective erase) protected cells are kept.
void EraseInDisplay();
void EraseInLine();

void EraseCharacters();
void InsertCharacters();
void DeleteCharacters();
void InsertOneLine();  // CSI L: one line, whatever its parameter says
void DeleteSomeLines();

void BlankScreen(int reset_line_attr);  // rows 1..24

// VT52: what they erase becomes spaces in the current attribute.
void Vt52EraseToEndOfScreen();
void Vt52EraseToEndOfLine();

#endif
