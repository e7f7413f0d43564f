#include "StreamStatistics.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace Orvan {
namespace Cli {

namespace {

std::string Milliseconds(int64_t ns) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f ms", static_cast<double>(ns) / 1e6);
    return text;
}

} // namespace

void StreamStatistics::AddImage(uint64_t bytes, bool incomplete, std::optional<int64_t> latencyNs) {
    ++m_images;
    m_bytes += bytes;
    if (incomplete)
        ++m_incomplete;
    if (latencyNs)
        m_latenciesNs.push_back(*latencyNs);
}

std::string StreamStatistics::CountsLine(double seconds) const {
    const double rate = seconds > 0 ? static_cast<double>(m_images) / seconds : 0.0;
    const double megabytes = seconds > 0 ? static_cast<double>(m_bytes) / 1e6 / seconds : 0.0;
    char text[160];
    std::snprintf(
        text, sizeof text, "images %llu, lost %llu, incomplete %llu, %.2f s, %.1f fps, %.2f MB/s",
        static_cast<unsigned long long>(m_images), static_cast<unsigned long long>(m_lost),
        static_cast<unsigned long long>(m_incomplete), seconds, rate, megabytes);
    return text;
}

std::string StreamStatistics::LatencyLine() const {
    if (m_latenciesNs.empty())
        return {};
    std::vector<int64_t> sorted = m_latenciesNs;
    std::sort(sorted.begin(), sorted.end());
    return "p50 " + Milliseconds(Percentile(sorted, 0.50)) + ", p90 " +
           Milliseconds(Percentile(sorted, 0.90)) + ", p99 " +
           Milliseconds(Percentile(sorted, 0.99)) + ", max " + Milliseconds(sorted.back());
}

int64_t StreamStatistics::Percentile(const std::vector<int64_t>& sorted, double fraction) {
    const auto rank = static_cast<size_t>(std::ceil(fraction * static_cast<double>(sorted.size())));
    return sorted[std::max<size_t>(rank, 1) - 1];
}

} // namespace Cli
} // namespace Orvan
