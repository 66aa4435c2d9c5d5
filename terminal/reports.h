// The texts that the terminal sends to the host when asked. Each of these places one reply in
// session.parser.reply_text and sets reply_pending; the reply begins with the 8-bit introducer when
// c1_replies is on.
#ifndef QUILL_TERMINAL_REPORTS_H
#define QUILL_TERMINAL_REPORTS_H

#include "session/session_state.h"

void ReplyAnswerback();          // ENQ
void ReplyNotImplemented();      // = in a control sequence
void ReplyVt52Identity();        // ESC Z in VT52 mode
void ReplyPrimaryAttributes();   // ESC Z in ANSI mode
void ReplyDeviceAttributes();    // CSI c; the secondary reply when secondary_flag is set
void ReplyDeviceStatus();        // CSI n; nothing for a status that is not known
void ReplyTerminalParameters();  // CSI x

#endif
