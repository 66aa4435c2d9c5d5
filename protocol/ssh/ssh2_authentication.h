// Password authentication of SSH-2 (RFC 4252, 8).
#ifndef QUILL_PROTOCOL_SSH_SSH2_AUTHENTICATION_H
#define QUILL_PROTOCOL_SSH_SSH2_AUTHENTICATION_H

// Sends the password request, with the stored user and password where they are remembered and this
// is the first attempt, else with those of the Sign on dialog, a cancelled one included. Without a
// user name, or without a dialog, the session is closed.
void Ssh2Authenticate(bool retry);

// Handlers of the packet in hand.
void OnServiceAccept();
void OnUserauthFailure();  // asks again, as often as the server lets us

#endif
