// A protocol that a session can speak, as a record of operations. The three are rows of one table
// in protocol/protocols.cpp.
#ifndef QUILL_SESSION_PROTOCOL_H
#define QUILL_SESSION_PROTOCOL_H

#include "windows_ce.h"

struct Protocol {
    // Our identification line, with its end. Null for a protocol that exchanges none; `start` is
    // not called then.
    const char* identification;
    // The server's line has come: the first chunk, whole and unchecked. Our line follows.
    void (*start)(const char* clientVersion, const BYTE* serverVersion, int serverLength);
    // A chunk, 1..kReceiveSize bytes; a later one where lines are exchanged.
    void (*take_chunk)(const BYTE* bytes, int count);
    // What was typed, pasted or answered. `escape` is Telnet's, see SessionSend.
    void (*send_data)(const BYTE* bytes, int length, int escape);
    void (*forget)();  // wipes and releases the protocol's section; also where there is nothing
};

#endif
