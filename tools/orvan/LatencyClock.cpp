#include "LatencyClock.h"

#include <Base/GCException.h>
#include <Orvan/GenApiCustom.h>

#include <chrono>
#include <cstdlib>

namespace Orvan {
namespace Cli {

namespace {

// Far more than a latch takes to answer, far less than any two unrelated clocks agree by chance.
constexpr int64_t kSameClockToleranceNs = 100'000'000;

// The camera's clock read through its latch, in nanoseconds; nothing when it has no latch.
std::optional<uint64_t> LatchCameraClock(IDevice& device) {
    try {
        GenApi::INodeMap* nodeMap = device.GetNodeMap();
        ExecuteNode(nodeMap, "TimestampLatch");
        const auto ticks =
            static_cast<uint64_t>(GetNodeValue<int64_t>(nodeMap, "TimestampLatchValue"));
        const auto frequency = static_cast<uint64_t>(
            GetNodeValue<int64_t>(device.GetTLDeviceNodeMap(), "DeviceTimestampFrequency"));
        if (frequency == 0)
            return std::nullopt;
        return static_cast<uint64_t>(static_cast<long double>(ticks) * 1e9L / frequency);
    } catch (const GenICam::GenericException&) {
        return std::nullopt;
    }
}

} // namespace

LatencyClock::LatencyClock(IDevice& device) {
    const uint64_t before = HostNowNs();
    const std::optional<uint64_t> camera = LatchCameraClock(device);
    const uint64_t after = HostNowNs();
    if (camera) {
        const int64_t middle = static_cast<int64_t>(before + (after - before) / 2);
        m_hostClock = std::llabs(static_cast<int64_t>(*camera) - middle) < kSameClockToleranceNs;
    }
}

uint64_t LatencyClock::HostNowNs() {
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(
                                     std::chrono::steady_clock::now().time_since_epoch())
                                     .count());
}

int64_t LatencyClock::LatencyNs(uint64_t timestampNs, uint64_t deliveredNs) {
    const int64_t difference = static_cast<int64_t>(deliveredNs - timestampNs);
    if (m_hostClock)
        return difference;
    if (!m_offsetNs)
        m_offsetNs = difference;
    return difference - *m_offsetNs;
}

} // namespace Cli
} // namespace Orvan
