// What the socket calls share: whether WinSock was started, and each thread's last error.
#ifndef QUILL_PLATFORM_QT_SERVICES_WINSOCK_H
#define QUILL_PLATFORM_QT_SERVICES_WINSOCK_H

// False, with the thread's error 10093, before WSAStartup.
bool WinsockStarted();
// Sets the thread's last error and gives SOCKET_ERROR.
int FailWith(int winsock_error);

#endif
