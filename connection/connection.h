// The connection manager: the one TCP session that the program holds at a time.
#ifndef QUILL_CONNECTION_CONNECTION_H
#define QUILL_CONNECTION_CONNECTION_H

// Connects to settings.host and settings.port. Every failure is told in a message box with the
// caption "Error"; without a network the user is asked whether to dial. Does nothing while a
// request is under way.
void SessionConnect();

// The user's close: shuts the socket; the receiving thread's notification then runs SessionClosed.
void SessionClose();

// The session has ended, whoever ended it: the offline menus, and the message that is due.
void SessionClosed();

#endif
