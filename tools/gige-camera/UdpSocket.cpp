#include "UdpSocket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Orvan {
namespace Emulator {

namespace {

sockaddr_in ToSockaddr(const Endpoint& endpoint) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(endpoint.ip);
    address.sin_port = htons(endpoint.port);
    return address;
}

} // namespace

UdpSocket::~UdpSocket() {
    Close();
}

bool UdpSocket::Bind(Endpoint local, unsigned options) {
    Close();
    m_fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (m_fd < 0)
        return false;
    const int on = 1;
    if (options & kAllowBroadcast)
        setsockopt(m_fd, SOL_SOCKET, SO_BROADCAST, &on, sizeof on);
    if (options & kShareAddress)
        setsockopt(m_fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    // Frames of several megabytes leave in one burst; a small buffer would drop them here.
    const int sendBuffer = 4 << 20;
    setsockopt(m_fd, SOL_SOCKET, SO_SNDBUF, &sendBuffer, sizeof sendBuffer);
    sockaddr_in address = ToSockaddr(local);
    if (bind(m_fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        Close();
        return false;
    }
    socklen_t length = sizeof address;
    getsockname(m_fd, reinterpret_cast<sockaddr*>(&address), &length);
    m_local = {ntohl(address.sin_addr.s_addr), ntohs(address.sin_port)};
    return true;
}

void UdpSocket::Close() {
    if (m_fd >= 0)
        close(m_fd);
    m_fd = -1;
}

void UdpSocket::SendTo(const Endpoint& to, const void* data, size_t size) const {
    const sockaddr_in address = ToSockaddr(to);
    sendto(m_fd, data, size, 0, reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

long UdpSocket::ReceiveFrom(void* data, size_t capacity, Endpoint& from, int timeoutMs) const {
    pollfd waiting{m_fd, POLLIN, 0};
    if (poll(&waiting, 1, timeoutMs) <= 0)
        return -1;
    sockaddr_in address{};
    socklen_t length = sizeof address;
    const ssize_t size =
        recvfrom(m_fd, data, capacity, 0, reinterpret_cast<sockaddr*>(&address), &length);
    if (size < 0)
        return -1;
    from = {ntohl(address.sin_addr.s_addr), ntohs(address.sin_port)};
    return long(size);
}

const UdpSocket* UdpSocket::WaitReadable(const UdpSocket& first, const UdpSocket& second,
                                         int timeoutMs) {
    pollfd waiting[2] = {{first.m_fd, POLLIN, 0}, {second.m_fd, POLLIN, 0}};
    if (poll(waiting, 2, timeoutMs) <= 0)
        return nullptr;
    return (waiting[0].revents & POLLIN)   ? &first
           : (waiting[1].revents & POLLIN) ? &second
                                           : nullptr;
}

} // namespace Emulator
} // namespace Orvan
