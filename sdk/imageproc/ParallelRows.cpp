#include "ParallelRows.h"

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace Orvan {

namespace {

std::atomic<unsigned> g_threads{0};

// Below this many samples a second thread does not pay for its start.
constexpr size_t kWorkPerThread = 1 << 18;

} // namespace

void SetProcessingThreads(unsigned threads) {
    g_threads = threads;
}

unsigned GetProcessingThreads() {
    const unsigned set = g_threads;
    return set != 0 ? set : std::max(1u, std::thread::hardware_concurrency());
}

void ParallelRows(size_t height, size_t work, size_t alignment,
                  const std::function<void(size_t, size_t)>& rows) {
    const size_t byWork = std::max<size_t>(1, work / kWorkPerThread);
    const size_t threads = std::min({size_t(GetProcessingThreads()), byWork, height / alignment});
    if (threads <= 1) {
        rows(0, height);
        return;
    }
    const size_t share = (height + threads - 1) / threads;
    const size_t band = (share + alignment - 1) / alignment * alignment;
    std::vector<std::thread> helpers;
    for (size_t t = 1; t < threads && t * band < height; ++t)
        helpers.emplace_back(rows, t * band, std::min(height, (t + 1) * band));
    rows(0, std::min(height, band));
    for (std::thread& helper : helpers)
        helper.join();
}

} // namespace Orvan
