// What the shell's input panel leaves of the terminal.
#ifndef QUILL_APP_INPUT_PANEL_H
#define QUILL_APP_INPUT_PANEL_H

// The panel came, went or changed: counts the rows that it covers and lays the terminal out anew.
void FollowInputPanel();

#endif
