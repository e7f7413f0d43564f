// A virtual camera renders every frame from its precomputed test pattern: compare that with a
// plain memcpy of the same bytes, the floor for producing a frame. Bytes per second are reported
// as GB/s; BM_Render's "vs_memcpy" counter is its speed as a fraction of a memcpy loop timed
// right after it in the same conditions (1.0 = as fast as copying).
#include "virtual/TestPattern.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <ctime>
#include <vector>

namespace {

using Orvan::Producer::FindVirtualPixelFormat;
using Orvan::Producer::PatternKind;
using Orvan::Producer::TestPattern;

// CPU time of this thread: the machine is shared, and wall time would count other processes.
double ThreadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

// Copies frames out of a source as large as a pattern's tape, moving along it as the pattern's
// window does, so both loops read memory that stops fitting in cache at the same frame size.
class CopyLoop {
public:
    CopyLoop(size_t width, size_t height)
        : m_bytes(width * height), m_step(4 * width), m_source(m_bytes + 63 * m_step, 0x5A),
          m_frame(m_bytes) {}

    void CopyFrame() {
        std::memcpy(m_frame.data(), m_source.data() + m_offset, m_bytes);
        benchmark::DoNotOptimize(m_frame.data());
        benchmark::ClobberMemory();
        m_offset = (m_offset + m_step) % (m_source.size() - m_bytes + 1);
    }

    double Seconds(int64_t frames) {
        const double start = ThreadSeconds();
        for (int64_t i = 0; i < frames; ++i)
            CopyFrame();
        return ThreadSeconds() - start;
    }

    size_t Bytes() const { return m_bytes; }

private:
    size_t m_bytes;
    size_t m_step;
    std::vector<uint8_t> m_source;
    std::vector<uint8_t> m_frame;
    size_t m_offset = 0;
};

void BM_Memcpy(benchmark::State& state) {
    CopyLoop copy(size_t(state.range(0)), size_t(state.range(1)));
    for (auto _ : state)
        copy.CopyFrame();
    state.SetBytesProcessed(state.iterations() * int64_t(copy.Bytes()));
}

void BM_Render(benchmark::State& state) {
    const TestPattern pattern(FindVirtualPixelFormat("Mono8")->code, uint32_t(state.range(0)),
                              uint32_t(state.range(1)), PatternKind::MovingDiagonal);
    std::vector<uint8_t> frame(pattern.ImageBytes());
    uint64_t frameNumber = 0;
    const double start = ThreadSeconds();
    for (auto _ : state) {
        pattern.Render(frameNumber++, frame.data());
        benchmark::DoNotOptimize(frame.data());
        benchmark::ClobberMemory();
    }
    const double renderSeconds = ThreadSeconds() - start;
    state.SetBytesProcessed(state.iterations() * int64_t(frame.size()));
    CopyLoop copy(size_t(state.range(0)), size_t(state.range(1)));
    state.counters["vs_memcpy"] = copy.Seconds(state.iterations()) / renderSeconds;
}

BENCHMARK(BM_Memcpy)->Args({64, 64})->Args({4096, 3000});
BENCHMARK(BM_Render)->Args({64, 64})->Args({4096, 3000});

} // namespace
