// SPDX-License-Identifier: MIT
// A session is one client of the demo host: its screen, what the user has typed, and the output
// that is not sent yet. A screen is a record of three procedures; a session shows one screen at a
// time. The screens, and the procedures that they use to write terminal output, are listed at the
// end.
#ifndef QUILL_DEMO_SESSION_H
#define QUILL_DEMO_SESSION_H

#include <cstddef>
#include <string>

// ---------------------------------------------------------------- Telnet

// The Telnet side of a session (RFC 854, 857, 858, 1091): removes options and subnegotiations from
// the received bytes and answers them.

struct Telnet {
    int state = 0;               // row of the parser's table; 0 = data
    unsigned char command = 0;   // WILL, WONT, DO or DONT whose option byte comes next
    bool echo = false;           // the client agreed that this host echoes
    bool type_asked = false;     // the terminal type has been asked for
    std::string subnegotiation;  // option byte and contents, at most kSubnegotiationMax bytes
    std::string terminal_type;   // as the client sent it, at most 40 printable characters
};

constexpr size_t kSubnegotiationMax = 64;

// Writes the opening offers (WILL ECHO, WILL SUPPRESS-GO-AHEAD, DO TERMINAL-TYPE) to `out`.
void TelnetOpen(std::string& out);

// Processes one received byte. If it is data, stores it in `data` and returns true. Appends answers
// to the client's options to `out`. Any sequence of bytes is accepted.
bool TelnetTake(Telnet& telnet, unsigned char byte, std::string& out, char& data);

// ---------------------------------------------------------------- the session

struct Session;

struct Screen {
    void (*enter)(Session& session);                            // draws the screen
    void (*typed)(Session& session, const std::string& bytes);  // the data of one received chunk
    void (*tick)(Session& session);                             // called at `wake`; may be null
};

// The line that the user is typing. Escape sequences, such as those of cursor keys, are ignored.
struct LineInput {
    std::string text;     // at most kLineMax characters
    int escape = 0;       // 0 outside an escape sequence, 1 after ESC, 2 after ESC [ or ESC O
    bool secret = false;  // a password: not echoed
};

constexpr size_t kLineMax = 30;

struct Session {
    int socket = -1;
    Telnet telnet;
    std::string out;  // bytes not yet sent
    const Screen* screen = nullptr;
    long long wake = 0;     // when `tick` is due, in milliseconds of Now(); 0 = never
    bool ending = false;    // the session closes as soon as `out` is sent
    std::string name;       // as typed at the login prompt
    LineInput line;         // the line being typed on this screen
    int step = 0;           // progress of this screen, 0 when it is entered
    int field = 0;          // form: its current field; page "Keys": number of Enters in a row
    std::string answer;     // bytes the terminal sent in answer to a report request
    std::string fields[5];  // contents of the form
};

// While this many bytes or more are unsent, the host reads nothing from the client and runs no
// `tick`.
constexpr size_t kOutLimit = 16384;

// Milliseconds of a clock that never goes back; never 0.
long long Now();

// Starts a session on a connected socket: options, banner, login prompt.
void SessionStart(Session& session, int socket);

// Processes the bytes of one read.
void SessionReceive(Session& session, const char* bytes, size_t count);

// Shows another screen: resets modes, clears the terminal and calls its `enter`.
void ShowScreen(Session& session, const Screen& screen);

// Adds one typed byte to session.line; backspace and delete remove the last one. Echoes it if the
// client agreed and the line is not secret. Returns true if the byte is a CR, which ends the line.
bool TakeLineByte(Session& session, char byte);

// Clears the line for the next input. `secret` is true for a password.
void StartLine(Session& session, bool secret);

// ---------------------------------------------------------------- writing

// Small procedures that append terminal output to `out`: cursor addressing, attributes, boxes,
// title bars. Rows and columns count from 1 on a screen of 24 rows by 80 columns (ECMA-48, DEC
// VT100 private sequences).

// Resets modes, margins, attributes and character sets, blanks the screen and moves the cursor
// home.
void ClearScreen(std::string& out);

void MoveTo(std::string& out, int row, int col);
void WriteAt(std::string& out, int row, int col, const std::string& text);

// Writes text with the given graphic rendition ("1;7"), then turns all attributes off.
void WriteStyled(std::string& out, int row, int col, const char* rendition,
                 const std::string& text);

// Writes text in the special graphics set, for example "lqqk".
void WriteGraphics(std::string& out, int row, int col, const std::string& text);

// Draws a frame of `height` by `width` cells with a title in its upper edge ("" for no title).
void WriteBox(std::string& out, int row, int col, int height, int width, const std::string& title);

// WriteTitle writes row 1 as a reverse bar with the page's title, WriteHint row 24 as a reverse bar
// with a hint.
void WriteTitle(std::string& out, const std::string& title);
void WriteHint(std::string& out, const std::string& hint);

// Returns `text` cut to `width`, or filled with blanks to `width`.
std::string Fit(const std::string& text, int width);

// ---------------------------------------------------------------- the screens

extern const Screen kLoginScreen, kMenuScreen, kGoodbyeScreen;
extern const Screen kLineDrawingPage, kDoubleSizePage, kAttributesPage;
extern const Screen kRegionsPage, kTabsPage;
extern const Screen kSlowStreamPage, kFastStreamPage;
extern const Screen kCharactersPage;
extern const Screen kFormPage, kShipListPage;
extern const Screen kReportsPage, kKeysPage;

// The `typed` procedure of a page that returns to the menu at any key.
void BackToMenu(Session& session, const std::string& bytes);

constexpr const char kAnyKey[] = "Press any key to return to the menu";

#endif
