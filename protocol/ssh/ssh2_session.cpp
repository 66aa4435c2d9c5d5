// The beginning and the end of an SSH-2 session.
#include "protocol/ssh/ssh2.h"

#include "protocol/ssh/ssh_session.h"
#include "session/session_state.h"
#include "text/bytes.h"

void Ssh2Start(const char* clientVersion, const BYTE* serverVersion, int serverLength) {
    Ssh2Forget();
    Ssh2State& ssh = session.ssh2;
    HashIdentifications(clientVersion, serverVersion, serverLength);
    ssh.outMac = ssh.inMac = &kHmacSha1;
    ssh.firstKex = 1;
    ResetCiphers();
}

void Ssh2Forget() {
    Ssh2State& ssh = session.ssh2;
    ForgetHeldData();
    BignumFree(ssh.K);
    DhForget(&ssh.dh);
    DssFreeKey(ssh.hostKey);
    Wipe(&ssh, sizeof(ssh));
}

const Protocol kSsh2Protocol = {
    .identification = "SSH-2.0-1.0.00\n",
    .start = Ssh2Start,
    .take_chunk = Ssh2TakeChunk,
    .send_data = [](const BYTE* data, int length, int) { Ssh2SendChannelData(data, length); },
    .forget = Ssh2Forget,
};
