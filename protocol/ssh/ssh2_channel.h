// The one channel of an SSH-2 session (RFC 4254): a pseudo-terminal of 24 rows and 80 columns with
// a shell, and the bytes between it and the terminal.
#ifndef QUILL_PROTOCOL_SSH_SSH2_CHANNEL_H
#define QUILL_PROTOCOL_SSH_SSH2_CHANNEL_H

#include "windows_ce.h"

// Sends terminal bytes as channel data, at most kSsh2MaxData a packet, whatever the server's window
// says. Dropped while the channel is not open. While keys are being exchanged they wait, since
// nothing but the exchange may be sent then (RFC 4253, 7.1); kSsh2MaxHeld bytes may, and more are
// dropped.
void Ssh2SendChannelData(const BYTE* data, int length);
void SendHeldData();  // what waited
void ForgetHeldData();

// Handlers of the packet in hand.
void OnUserauthSuccess();          // opens the channel
void OnChannelOpenConfirmation();  // asks for the pty
void OnChannelData();
void OnChannelExtendedData();  // shown like data, whatever its type
void OnChannelSuccess();       // of the pty: asks for the shell

#endif
