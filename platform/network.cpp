#include "platform/network.h"

#ifdef _WIN32
#include <winsock2.h>

int startNetwork() {
    WSADATA data;
    return WSAStartup(MAKEWORD(2, 2), &data);
}

void stopNetwork() { WSACleanup(); }

#else

int startNetwork() { return 0; }
void stopNetwork() {}

#endif
