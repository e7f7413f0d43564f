// CRC-32 of a 12 MB payload (a 12-megapixel Mono8 frame) through the SDK beside Boost.CRC.
#include <Orvan/Crc32.h>

#include <benchmark/benchmark.h>
#include <boost/crc.hpp>

#include <vector>

namespace {

constexpr size_t kBytes = 12'000'000;

std::vector<uint8_t> Payload() {
    std::vector<uint8_t> data(kBytes);
    for (size_t i = 0; i < data.size(); ++i)
        data[i] = uint8_t(i * 2654435761u >> 24);
    return data;
}

void BM_CalculateCRC32(benchmark::State& state) {
    const std::vector<uint8_t> data = Payload();
    for (auto _ : state)
        benchmark::DoNotOptimize(Orvan::CalculateCRC32(data.data(), data.size()));
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kBytes));
}

void BM_BoostCrc32(benchmark::State& state) {
    const std::vector<uint8_t> data = Payload();
    for (auto _ : state) {
        boost::crc_32_type crc;
        crc.process_bytes(data.data(), data.size());
        benchmark::DoNotOptimize(crc.checksum());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kBytes));
}

} // namespace

BENCHMARK(BM_CalculateCRC32)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BoostCrc32)->Unit(benchmark::kMillisecond);
