// Copying marked text to the clipboard and sending the clipboard's text to the host.
#ifndef QUILL_UI_VIEW_CLIPBOARD_H
#define QUILL_UI_VIEW_CLIPBOARD_H

// The selection goes to the clipboard as Unicode text and is dropped. Each cell gives the character
// of its byte, without regard to the code page or to line drawing; each row ends with CR LF.
// Without a selection, or without memory for the text, nothing happens.
void CopySelection();

// The clipboard's text goes to the host, the low byte of each character, without its LFs. Other
// contents than text are left alone.
void PasteClipboard();

#endif
