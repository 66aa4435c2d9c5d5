// The one-time configuration file "\mconfig.cfg", with which an administrator pre-sets settings.
#ifndef QUILL_SETTINGS_CONFIG_FILE_H
#define QUILL_SETTINGS_CONFIG_FILE_H

#include "windows_ce.h"

// If the file is there, tells so in a message box over `owner`, writes its entries under the
// settings key and deletes it. To be called before LoadSettings.
//
// The file is text in the ANSI code page, taken in lines of at most 79 characters; a longer line
// counts as several. An entry is NAME = VALUE, with blanks around the equals sign:
//     # a comment
//     port = 0x17            a number: decimal, 0x hexadecimal, or octal after a 0
//     host = "my host"       a string: between the line's first two double quotes, not empty
// Numbers hold 32 bits, signed or not, and stop at these bounds; what is no number is 0. Any name
// is taken. All other lines are passed over without a word.
void ImportConfigFile(HWND owner);

#endif
