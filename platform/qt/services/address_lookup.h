// Looking up IPv4 addresses by name, free of windows_ce.h and its macros.
#ifndef QUILL_PLATFORM_QT_SERVICES_ADDRESS_LOOKUP_H
#define QUILL_PLATFORM_QT_SERVICES_ADDRESS_LOOKUP_H

#include <cstdint>
#include <string>
#include <vector>

// At least one address, in network byte order, or a result of getaddrinfo other than 0.
int LookUpAddresses(const char* name, std::vector<uint32_t>* addresses, std::string* official);

#endif
