// The key exchange of SSH-2 (RFC 4253, 7 and 8): "diffie-hellman-group1-sha1" with an "ssh-dss"
// host key. It is begun by the server alone, at the start and whenever it likes. The server's lists
// of algorithms are not looked at: each of ours names one, and that one is used. No host key is
// remembered, and none is asked for.
#ifndef QUILL_PROTOCOL_SSH_SSH2_KEY_EXCHANGE_H
#define QUILL_PROTOCOL_SSH_SSH2_KEY_EXCHANGE_H

#include "windows_ce.h"

// Handlers of the packet in hand.
void OnKexInit();     // answered by our KEXINIT and KEXDH_INIT
void OnKexDhReply();  // a good signature is answered by NEWKEYS; anything else by nothing
void OnNewKeys();     // new keys are used from here on; before our own NEWKEYS: CloseSession

// Hashes the two identification lines, each without its end, for the exchanges to come.
void HashIdentifications(const char* clientVersion, const BYTE* serverVersion, int serverLength);

#endif
