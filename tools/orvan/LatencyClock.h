// Turns a camera timestamp and the host time of delivery into a latency. When the camera's clock
// is the host's monotonic clock (the virtual cameras stamp frames with it), the latency is the
// plain difference. Otherwise the two clocks differ by an unknown offset, which is taken from
// the first image: latencies are then relative to the first image's, which counts as zero.
#ifndef ORVAN_TOOLS_ORVAN_LATENCYCLOCK_H
#define ORVAN_TOOLS_ORVAN_LATENCYCLOCK_H

#include <Orvan/IDevice.h>

#include <cstdint>
#include <optional>

namespace Orvan {
namespace Cli {

class LatencyClock {
public:
    // Latches the camera's clock, when the camera can, and compares it with the host's.
    explicit LatencyClock(IDevice& device);

    bool OnHostClock() const { return m_hostClock; }
    // The host's monotonic clock, in nanoseconds.
    static uint64_t HostNowNs();
    int64_t LatencyNs(uint64_t timestampNs, uint64_t deliveredNs);

private:
    bool m_hostClock = false;
    std::optional<int64_t> m_offsetNs;
};

} // namespace Cli
} // namespace Orvan

#endif
