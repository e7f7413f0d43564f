#include "UdpSocket.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

namespace MorluLog {

sockaddr_in MakeAddress(const char* address, uint16_t port) {
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_port = htons(port);
    inet_pton(AF_INET, address, &result.sin_addr);
    return result;
}

int OpenSharedSocket(const char* address, uint16_t port) {
    const int fd = socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        return -1;
    }
    const int on = 1;
    const sockaddr_in local = MakeAddress(address, port);
    if (setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on)) != 0 ||
        bind(fd, reinterpret_cast<const sockaddr*>(&local), sizeof(local)) != 0) {
        close(fd);
        return -1;
    }
    return fd;
}

} // namespace MorluLog
