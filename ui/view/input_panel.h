// What the shell's input panel leaves of the terminal.
#ifndef QUILL_UI_VIEW_INPUT_PANEL_H
#define QUILL_UI_VIEW_INPUT_PANEL_H

// The panel came, went or changed: counts the rows that it covers and lays the terminal out anew.
void FollowInputPanel();

// Something else than the panel changed the count: the window's size, the font, the status bar. Or
// a session began under a panel that was there before. Does nothing while the panel is down.
void RecountCoveredRows();

#endif
