// Dials of the program.
#ifndef QUILL_PLATFORM_QT_SHELL_DIAL_UP_H
#define QUILL_PLATFORM_QT_SHELL_DIAL_UP_H

// Hangs up whatever the program has left.
void EndDialUps();

#endif
