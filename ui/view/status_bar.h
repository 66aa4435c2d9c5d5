// The status line below the terminal and the main window's title.
#ifndef QUILL_UI_VIEW_STATUS_BAR_H
#define QUILL_UI_VIEW_STATUS_BAR_H

// Destroys the status window and, unless `hidestatus` is set, makes it anew; session.status_height
// is its height in pixels, 0 while hidden.
void RebuildStatusBar();

// The status window keeps the bottom of the client window after that changed its size.
void PlaceStatusBar();

// Rewrites the status text (state, cursor row and column) and the title (host). Without a status
// window both stay as they are.
void UpdateStatus();

#endif
