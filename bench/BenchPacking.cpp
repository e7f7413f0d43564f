// Packing and unpacking of 10/12-bit samples for a 12-megapixel frame, in bytes written per
// second, beside memcpy writing the same number of bytes.
#include "imageproc/Packing.h"
#include "imageproc/Unpacking.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

namespace {

constexpr size_t kWidth = 4000;
constexpr size_t kHeight = 3000;
constexpr size_t kSamples = kWidth * kHeight;

using Converter = void (*)(const uint8_t*, uint8_t*, size_t, size_t, size_t);

// Sizes are whole groups of every layout: kSamples is a multiple of 4.
void Convert(benchmark::State& state, Converter converter, size_t inBytes, size_t outBytes) {
    std::vector<uint8_t> source(inBytes);
    for (size_t i = 0; i < source.size(); ++i)
        source[i] = uint8_t(i * 131 + 7);
    std::vector<uint8_t> destination(outBytes);
    for (auto _ : state) {
        converter(source.data(), destination.data(), kWidth, kHeight, 1);
        benchmark::DoNotOptimize(destination.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(outBytes));
}

void Memcpy(benchmark::State& state, size_t outBytes) {
    std::vector<uint8_t> source(outBytes, 1), destination(outBytes);
    for (auto _ : state) {
        std::memcpy(destination.data(), source.data(), outBytes);
        benchmark::DoNotOptimize(destination.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(outBytes));
}

constexpr size_t kWords = kSamples * 2;
constexpr size_t k10p = kSamples * 5 / 4;
constexpr size_t k3in2 = kSamples * 3 / 2;

} // namespace

BENCHMARK_CAPTURE(Memcpy, out_10p, k10p)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Convert, To10p, Orvan::Packing::To10p, kWords, k10p)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Memcpy, out_3_bytes_per_2_samples, k3in2)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Convert, To10Packed, Orvan::Packing::To10Packed, kWords, k3in2)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Convert, To12p, Orvan::Packing::To12p, kWords, k3in2)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Convert, To12Packed, Orvan::Packing::To12Packed, kWords, k3in2)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Memcpy, out_words, kWords)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Convert, From10p, Orvan::Unpacking::From10p, k10p, kWords)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Convert, From10Packed, Orvan::Unpacking::From10Packed, k3in2, kWords)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Convert, From12p, Orvan::Unpacking::From12p, k3in2, kWords)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Convert, From12Packed, Orvan::Unpacking::From12Packed, k3in2, kWords)
    ->Unit(benchmark::kMillisecond);
