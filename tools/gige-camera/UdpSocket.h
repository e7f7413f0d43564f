// A bound IPv4 UDP socket with the few operations the emulator's channels need.
#ifndef ORVAN_TOOLS_GIGE_CAMERA_UDPSOCKET_H
#define ORVAN_TOOLS_GIGE_CAMERA_UDPSOCKET_H

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

    enum BindOption : unsigned {
        kAllowBroadcast = 1, // may send to broadcast addresses
        kShareAddress = 2,   // several sockets hold the address; each hears its broadcasts
    };
    // Opens and binds (port 0 = ephemeral); false with errno set when the address is taken.
    bool Bind(Endpoint local, unsigned options = 0);
    void Close();
    bool IsOpen() const { return m_fd >= 0; }
    Endpoint Local() const { return m_local; }

    // Best effort, like the network: a failed send is not reported.
    void SendTo(const Endpoint& to, const void* data, size_t size) const;
    // Waits up to timeoutMs; returns the datagram size, or -1 when nothing arrived.
    long ReceiveFrom(void* data, size_t capacity, Endpoint& from, int timeoutMs) const;
    // Waits up to timeoutMs for a datagram on either socket (closed ones never are); the socket
    // that has one, or nullptr.
    static const UdpSocket* WaitReadable(const UdpSocket& first, const UdpSocket& second,
                                         int timeoutMs);

private:
    int m_fd = -1;
    Endpoint m_local;
};

} // namespace Emulator
} // namespace Orvan

#endif
