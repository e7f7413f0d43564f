#include "DiscoverySocket.h"

#include "../GenTLError.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Orvan {
namespace Producer {

namespace {

sockaddr_in SocketAddress(uint32_t ip, uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(ip);
    address.sin_port = htons(port);
    return address;
}

} // namespace

DiscoverySocket::DiscoverySocket(uint32_t localIp) {
    m_socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (m_socket < 0)
        throw GenTLError(GenTL::GC_ERR_IO,
                         std::string("No UDP socket for discovery: ") + std::strerror(errno));
    int on = 1;
    ::setsockopt(m_socket, SOL_SOCKET, SO_BROADCAST, &on, sizeof(on));
    sockaddr_in local = SocketAddress(localIp, 0);
    if (::bind(m_socket, reinterpret_cast<sockaddr*>(&local), sizeof(local)) != 0) {
        int error = errno;
        ::close(m_socket);
        throw GenTLError(GenTL::GC_ERR_IO, "Cannot bind discovery to the interface address: " +
                                               std::string(std::strerror(error)));
    }
}

DiscoverySocket::~DiscoverySocket() {
    ::close(m_socket);
}

bool DiscoverySocket::Send(const std::vector<uint8_t>& datagram, uint32_t ip, uint16_t port) {
    sockaddr_in target = SocketAddress(ip, port);
    return ::sendto(m_socket, datagram.data(), datagram.size(), 0,
                    reinterpret_cast<sockaddr*>(&target),
                    sizeof(target)) == static_cast<ssize_t>(datagram.size());
}

uint16_t DiscoverySocket::Port() const {
    sockaddr_in local{};
    socklen_t length = sizeof(local);
    ::getsockname(m_socket, reinterpret_cast<sockaddr*>(&local), &length);
    return ntohs(local.sin_port);
}

size_t DiscoverySocket::Receive(uint8_t* buffer, size_t size,
                                std::chrono::steady_clock::time_point deadline) {
    for (;;) {
        auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return 0;
        pollfd ready{m_socket, POLLIN, 0};
        int result = ::poll(&ready, 1, static_cast<int>(left.count()));
        if (result < 0 && errno != EINTR)
            return 0;
        if (result <= 0)
            continue;
        ssize_t got = ::recv(m_socket, buffer, size, 0);
        // An ICMP "port unreachable" from an earlier unicast target surfaces as an error here;
        // it says nothing about the others.
        if (got > 0)
            return static_cast<size_t>(got);
    }
}

} // namespace Producer
} // namespace Orvan
