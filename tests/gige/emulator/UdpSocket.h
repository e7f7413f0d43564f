// A bound IPv4 UDP socket with the few operations the emulator's channels need.
#ifndef ORVAN_TESTS_GIGE_EMULATOR_UDPSOCKET_H
#define ORVAN_TESTS_GIGE_EMULATOR_UDPSOCKET_H

#include <cstddef>
#include <cstdint>

namespace Orvan {
namespace Emulator {

// An IPv4 address and port in host byte order.
struct Endpoint {
    uint32_t ip = 0;
    uint16_t port = 0;
    bool operator==(const Endpoint& other) const { return ip == other.ip && port == other.port; }
    bool operator!=(const Endpoint& other) const { return !(*this == other); }
};

class UdpSocket {
public:
    UdpSocket() = default;
    ~UdpSocket();
    UdpSocket(const UdpSocket&) = delete;
    UdpSocket& operator=(const UdpSocket&) = delete;

    // Opens and binds (port 0 = ephemeral); false with errno set when the address is taken.
    bool Bind(Endpoint local, bool allowBroadcast = false);
    void Close();
    bool IsOpen() const { return m_fd >= 0; }
    Endpoint Local() const { return m_local; }

    // Best effort, like the network: a failed send is not reported.
    void SendTo(const Endpoint& to, const void* data, size_t size) const;
    // Waits up to timeoutMs; returns the datagram size, or -1 when nothing arrived.
    long ReceiveFrom(void* data, size_t capacity, Endpoint& from, int timeoutMs) const;

private:
    int m_fd = -1;
    Endpoint m_local;
};

} // namespace Emulator
} // namespace Orvan

#endif
