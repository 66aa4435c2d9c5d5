// The listening socket and the one poll loop that serves every session.
#ifndef QUILL_DEMO_SERVER_H
#define QUILL_DEMO_SERVER_H

// Opens a listening socket on 127.0.0.1; `port` 0 takes a free one. Stores the port in use in
// `port`. Returns the socket, or -1 with errno set.
int ListenOnLoopback(int& port);

// Serves sessions until SIGTERM or SIGINT comes, or, with `once`, until the first session has
// ended. Closes the listening socket.
void Serve(int listener, bool once);

#endif
