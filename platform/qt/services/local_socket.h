// Stream sockets between programs of one user on this machine, by names of the kernel that leave
// nothing on the disk. A descriptor below 0 is none; none of these ends the program by a signal.
#ifndef QUILL_PLATFORM_QT_SERVICES_LOCAL_SOCKET_H
#define QUILL_PLATFORM_QT_SERVICES_LOCAL_SOCKET_H

#include <cstddef>
#include <string>

// A name has 100 bytes at most.
int ListenLocally(const std::string& name);  // does not block; below 0: the name is taken
int AcceptLocally(int listener);           // does not block; callers of other users are turned away
int CallLocally(const std::string& name);  // below 0: nobody listens
bool SayLocally(int socket, const std::string& bytes);
// The bytes that are there: 0 at the end, below 0 when none has come yet.
long HearLocally(int socket, char* bytes, size_t size);
bool AwaitLocally(int socket, int milliseconds);  // whether there is something to hear by then
void CloseLocally(int socket);

#endif
