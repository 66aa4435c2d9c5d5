// SSH-1.5: the way in and out.
#include "ssh/ssh1_session.h"

namespace {

void Start(const char*, const BYTE*, int) { ResetCiphers(); }

void TakeChunk(const BYTE*, int) {}

void SendData(const BYTE*, int) {}

void Forget() {}

}  // namespace

const SshProtocol kSsh1Protocol = {
    .identification = "SSH-1.5-1.0.00\n",
    .start = Start,
    .take_chunk = TakeChunk,
    .send_data = SendData,
    .forget = Forget,
};
