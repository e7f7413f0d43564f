// Finds the largest stream packet size the path from a camera's stream channel to this host
// carries, before the channel streams: the camera fires test packets of a size with the
// don't-fragment bit set at a socket of ours, and whether they arrive tells. A size the camera
// refuses, or a packet the path drops, fails alike; the search halves the range between the
// largest size known to pass and the smallest known to fail.
#ifndef ORVAN_GENTL_GIGE_PACKETSIZEPROBE_H
#define ORVAN_GENTL_GIGE_PACKETSIZEPROBE_H

#include "DiscoverySocket.h"
#include "GevProtocol.h"
#include "GvcpChannel.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace Orvan {
namespace Producer {

class PacketSizeProbe {
public:
    struct Options {
        uint32_t smallest = Gev::kMinPacketSize;
        uint32_t largest = 9000; // jumbo frames; a camera refuses what it cannot send
        uint32_t step = 4;       // cameras round sizes to multiples of 4
        uint32_t waitMs = 40;    // for each test packet
        uint32_t attempts = 2;   // test packets a size gets before it counts as failed
    };

    // The probe's socket is bound on localIp, the host address the camera streams to; throws
    // GenTLError(GC_ERR_IO) when it cannot be.
    PacketSizeProbe(GvcpChannel& control, uint32_t channel, uint32_t localIp);

    // The largest size that arrived, or nullopt when none did (a camera without test packets).
    // Leaves the channel pointed at the probe's socket and its packet size register at the last
    // size tried: the caller sets both.
    std::optional<uint32_t> Run(const Options& options);

private:
    uint32_t Register(uint32_t base) const {
        return base + m_channel * Gev::Reg::StreamChannelStride;
    }
    bool Carries(uint32_t size, const Options& options);
    // What the route to the camera carries at most, as this host sees it.
    uint32_t RouteLimit() const;

    GvcpChannel& m_control;
    const uint32_t m_channel;
    const uint32_t m_localIp;
    DiscoverySocket m_socket;
    std::vector<uint8_t> m_datagram;
};

} // namespace Producer
} // namespace Orvan

#endif
