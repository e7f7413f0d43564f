// What a stream delivered: counts, rates and the spread of latencies, and their one-line forms
// for the progress line and the summary.
#ifndef ORVAN_TOOLS_ORVAN_STREAMSTATISTICS_H
#define ORVAN_TOOLS_ORVAN_STREAMSTATISTICS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Orvan {
namespace Cli {

class StreamStatistics {
public:
    void AddImage(uint64_t bytes, bool incomplete, std::optional<int64_t> latencyNs);
    void SetLost(uint64_t lost) { m_lost = lost; }

    uint64_t Images() const { return m_images; }
    // "images 120, lost 0, incomplete 0, 29.9 fps, 9.2 MB/s" over the given time.
    std::string CountsLine(double seconds) const;
    // "p50 ..., p90 ..., p99 ..., max ..." in milliseconds; empty without latencies.
    std::string LatencyLine() const;

private:
    // Nearest-rank percentile of the sorted latencies.
    static int64_t Percentile(const std::vector<int64_t>& sorted, double fraction);

    uint64_t m_images = 0;
    uint64_t m_bytes = 0;
    uint64_t m_incomplete = 0;
    uint64_t m_lost = 0;
    std::vector<int64_t> m_latenciesNs;
};

} // namespace Cli
} // namespace Orvan

#endif
