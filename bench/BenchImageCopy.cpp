// ImageFactory::Copy of a 12-megapixel Mono8 image beside memcpy of its pixels.
#include <Orvan/ImageFactory.h>
#include <Orvan/OrvanApi.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

namespace {

constexpr size_t kWidth = 4000;
constexpr size_t kHeight = 3000;
constexpr size_t kBytes = kWidth * kHeight;

void BM_ImageFactoryCopy(benchmark::State& state) {
    Orvan::ISystem* system = Orvan::OpenSystem();
    const std::vector<uint8_t> pixels(kBytes, 0x5A);
    Orvan::IImage* source =
        Orvan::ImageFactory::Create(pixels.data(), kBytes, kWidth, kHeight, Orvan::Mono8);
    for (auto _ : state) {
        Orvan::IImage* copy = Orvan::ImageFactory::Copy(source);
        benchmark::DoNotOptimize(copy->GetData());
        Orvan::ImageFactory::Destroy(copy);
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kBytes));
    Orvan::ImageFactory::Destroy(source);
    Orvan::CloseSystem(system);
}

// The same work without the factory: a fresh zeroed block and a copy into it.
void BM_AllocateAndMemcpy(benchmark::State& state) {
    const std::vector<uint8_t> pixels(kBytes, 0x5A);
    for (auto _ : state) {
        auto* block = new uint8_t[kBytes]();
        std::memcpy(block, pixels.data(), kBytes);
        benchmark::DoNotOptimize(block);
        delete[] block;
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kBytes));
}

void BM_Memcpy(benchmark::State& state) {
    const std::vector<uint8_t> pixels(kBytes, 0x5A);
    std::vector<uint8_t> destination(kBytes);
    for (auto _ : state) {
        std::memcpy(destination.data(), pixels.data(), kBytes);
        benchmark::DoNotOptimize(destination.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kBytes));
}

} // namespace

BENCHMARK(BM_Memcpy)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AllocateAndMemcpy)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ImageFactoryCopy)->Unit(benchmark::kMillisecond);
