#include "PacketSizeProbe.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>

namespace Orvan {
namespace Producer {

PacketSizeProbe::PacketSizeProbe(GvcpChannel& control, uint32_t channel, uint32_t localIp)
    : m_control(control), m_channel(channel), m_localIp(localIp), m_socket(localIp),
      m_datagram(1 << 16) {}

std::optional<uint32_t> PacketSizeProbe::Run(const Options& options) {
    if (options.step == 0 ||
        m_control.WriteRegister(Register(Gev::Reg::StreamChannelDestination), m_localIp) !=
            GenTL::GC_ERR_SUCCESS ||
        m_control.WriteRegister(Register(Gev::Reg::StreamChannelPort), m_socket.Port()) !=
            GenTL::GC_ERR_SUCCESS)
        return std::nullopt;
    const uint32_t top = std::min(options.largest, RouteLimit());
    if (top < options.smallest)
        return std::nullopt;
    auto size = [&](uint32_t step) { return options.smallest + step * options.step; };
    uint32_t fails = (top - options.smallest) / options.step;
    // Most paths carry what the host's own link does: one test packet settles it.
    if (Carries(size(fails), options))
        return size(fails);
    if (!Carries(size(0), options))
        return std::nullopt;
    uint32_t passes = 0;
    while (fails - passes > 1) {
        const uint32_t middle = passes + (fails - passes) / 2;
        (Carries(size(middle), options) ? passes : fails) = middle;
    }
    return size(passes);
}

// Only a datagram of the size asked for answers: a late test packet of another size does not.
bool PacketSizeProbe::Carries(uint32_t size, const Options& options) {
    for (uint32_t attempt = 0; attempt < options.attempts; ++attempt) {
        // A camera refuses a size it cannot send, and then fires nothing.
        if (m_control.WriteRegister(Register(Gev::Reg::StreamChannelPacketSize),
                                    Gev::kPacketSizeFireTestPacket | Gev::kPacketSizeDoNotFragment |
                                        size) != GenTL::GC_ERR_SUCCESS)
            return false;
        const auto deadline =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(options.waitMs);
        for (size_t got = 1; got != 0;) {
            got = m_socket.Receive(m_datagram.data(), m_datagram.size(), deadline);
            if (got == size - Gev::kIpUdpOverhead)
                return true;
        }
    }
    return false;
}

uint32_t PacketSizeProbe::RouteLimit() const {
    uint32_t limit = UINT32_MAX;
    const int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in camera{};
    camera.sin_family = AF_INET;
    camera.sin_addr.s_addr = htonl(m_control.CameraIp());
    camera.sin_port = htons(m_control.Port());
    int mtu = 0;
    socklen_t length = sizeof mtu;
    if (fd >= 0 && connect(fd, reinterpret_cast<sockaddr*>(&camera), sizeof camera) == 0 &&
        getsockopt(fd, IPPROTO_IP, IP_MTU, &mtu, &length) == 0 && mtu > 0)
        limit = uint32_t(mtu);
    if (fd >= 0)
        close(fd);
    return limit;
}

} // namespace Producer
} // namespace Orvan
