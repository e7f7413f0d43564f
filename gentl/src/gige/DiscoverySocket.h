// The UDP socket a host interface sends DISCOVERY and FORCEIP from: bound to the interface's
// address, allowed to broadcast, and read with a deadline. The packet-size probe waits for a
// camera's test packets on one.
#ifndef ORVAN_GENTL_GIGE_DISCOVERYSOCKET_H
#define ORVAN_GENTL_GIGE_DISCOVERYSOCKET_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Orvan {
namespace Producer {

class DiscoverySocket {
public:
    // Throws GenTLError(GC_ERR_IO) when the address cannot be bound.
    explicit DiscoverySocket(uint32_t localIp);
    ~DiscoverySocket();
    DiscoverySocket(const DiscoverySocket&) = delete;
    DiscoverySocket& operator=(const DiscoverySocket&) = delete;

    // False when the datagram did not leave (no route, interface down): discovery goes on
    // with the other targets.
    bool Send(const std::vector<uint8_t>& datagram, uint32_t ip, uint16_t port);
    // The port the socket was given.
    uint16_t Port() const;
    // One datagram received before the deadline, or 0 bytes once it has passed.
    size_t Receive(uint8_t* buffer, size_t size, std::chrono::steady_clock::time_point deadline);

private:
    int m_socket = -1;
};

} // namespace Producer
} // namespace Orvan

#endif
