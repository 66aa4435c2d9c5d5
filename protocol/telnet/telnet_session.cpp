// Received chunks through the engine to the terminal.
#include "protocol/telnet/telnet.h"

#include "session/session_state.h"
#include "terminal/terminal_write.h"

namespace {

// Gathers the displayable bytes of the chunk in display_buffer; their number.
int FilterChunk(const BYTE* bytes, int count) {
    BYTE* data = session.telnet.display_buffer;
    int kept = 0;
    for (int i = 0; i < count; i++) {
        const int run = TelnetDataRun(bytes + i, count - i);
        std::memcpy(data + kept, bytes + i, static_cast<size_t>(run));
        kept += run;
        i += run;
        if (i < count && !TelnetReceiveByte(bytes[i])) data[kept++] = bytes[i];
    }
    return kept;
}

void TakeChunk(const BYTE* bytes, int count) {
    const int kept = FilterChunk(bytes, count);
    if (kept == 0) return;
    TerminalWrite(session.telnet.display_buffer, kept);
    CheckAutoLogin(session.telnet.display_buffer, kept);
}

}  // namespace

// The engine's state outlives the session, see TelnetReset.
const Protocol kTelnetProtocol = {
    .identification = nullptr,
    .start = nullptr,
    .take_chunk = TakeChunk,
    .send_data = TelnetSendData,
    .forget = [] {},
};
