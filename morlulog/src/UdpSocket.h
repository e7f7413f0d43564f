// The socket calls that the sender and the listeners share.
#ifndef MORLULOG_UDPSOCKET_H
#define MORLULOG_UDPSOCKET_H

#include <netinet/in.h>

#include <cstdint>

namespace MorluLog {

sockaddr_in MakeAddress(const char* address, uint16_t port);

// A non-blocking UDP socket bound to address:port with SO_REUSEADDR, so that other processes
// can bind the same port too; -1 on failure.
int OpenSharedSocket(const char* address, uint16_t port);

} // namespace MorluLog

#endif
