// getaddrinfo.
#include "platform/qt/services/address_lookup.h"

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>

int LookUpAddresses(const char* name, std::vector<uint32_t>* addresses, std::string* official) {
    addrinfo wanted = {};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_flags = AI_CANONNAME;
    addrinfo* list = nullptr;
    const int result = getaddrinfo(name, nullptr, &wanted, &list);
    if (result != 0) return result;
    *official = list->ai_canonname ? list->ai_canonname : name;
    for (const addrinfo* row = list; row; row = row->ai_next) {
        const uint32_t address = reinterpret_cast<sockaddr_in*>(row->ai_addr)->sin_addr.s_addr;
        if (std::find(addresses->begin(), addresses->end(), address) == addresses->end())
            addresses->push_back(address);
    }
    freeaddrinfo(list);
    return 0;
}
