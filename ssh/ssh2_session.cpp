// SSH-2: the way in and out.
#include "ssh/ssh2_session.h"

namespace {

void Start(const char*, const BYTE*, int) { ResetCiphers(); }

void TakeChunk(const BYTE*, int) {}

void SendData(const BYTE*, int) {}

void Forget() {}

}  // namespace

const SshProtocol kSsh2Protocol = {
    .identification = "SSH-2.0-1.0.00\n",
    .start = Start,
    .take_chunk = TakeChunk,
    .send_data = SendData,
    .forget = Forget,
};
