// Image-factory conversions of a 4096 x 3000 image beside OpenCV's cvtColor on the same data in
// the same run, single-threaded and on every core (the argument of each benchmark is its thread
// count). Each of ours also reports its speed as a fraction of memcpy of its output
// (memcpy_fraction: 1 is as fast as copying the bytes it writes).
#include "imageproc/ParallelRows.h"

#include <Orvan/OrvanApi.h>

#include <benchmark/benchmark.h>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <random>
#include <thread>
#include <vector>

namespace {

using namespace Orvan;

constexpr size_t kWidth = 4096;
constexpr size_t kHeight = 3000;

// A picture with smooth areas, edges and noise, so that data-dependent methods do real work.
std::vector<uint8_t> Scene(size_t bytes) {
    std::mt19937 random(1);
    std::vector<uint8_t> pixels(bytes);
    for (size_t i = 0; i < bytes; ++i)
        pixels[i] = uint8_t((i % 4096) / 16 + ((i / 4096) % 512 < 256 ? 0 : 90) + random() % 8);
    return pixels;
}

struct Fixture {
    Fixture() : system(OpenSystem()) {}
    ~Fixture() { CloseSystem(system); }
    ISystem* system;
};

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// The best of a few copies of `bytes` bytes, in seconds.
double MemcpySeconds(size_t bytes) {
    const std::vector<uint8_t> in = Scene(bytes);
    std::vector<uint8_t> out(bytes);
    double best = 1e9;
    for (int i = 0; i < 5; ++i) {
        const Clock::time_point start = Clock::now();
        std::memcpy(out.data(), in.data(), bytes);
        benchmark::DoNotOptimize(out.data());
        best = std::min(best, SecondsSince(start));
    }
    return best;
}

void Ours(benchmark::State& state, uint64_t source, uint64_t target, DemosaicMethod method) {
    Fixture fixture;
    SetProcessingThreads(unsigned(state.range(0)));
    const size_t sourceBytes = kWidth * kHeight * GetBitsPerPixel(source) / 8;
    const size_t targetBytes = kWidth * kHeight * GetBitsPerPixel(target) / 8;
    const std::vector<uint8_t> pixels = Scene(sourceBytes);
    IImage* in = ImageFactory::Create(pixels.data(), sourceBytes, kWidth, kHeight, source);
    IImage* out = ImageFactory::CreateEmpty(targetBytes, kWidth, kHeight, target);
    const double memcpySeconds = MemcpySeconds(targetBytes);
    const Clock::time_point start = Clock::now();
    for (auto _ : state)
        ImageFactory::ConvertInto(in, out, method);
    state.counters["memcpy_fraction"] =
        memcpySeconds * double(state.iterations()) / SecondsSince(start);
    state.SetBytesProcessed(int64_t(state.iterations() * targetBytes));
    ImageFactory::Destroy(in);
    ImageFactory::Destroy(out);
    SetProcessingThreads(0);
}

void OpenCv(benchmark::State& state, int sourceType, int targetType, int code) {
    cv::setNumThreads(int(state.range(0)));
    const cv::Mat probe(1, 1, sourceType);
    const std::vector<uint8_t> pixels = Scene(kWidth * kHeight * probe.elemSize());
    const cv::Mat in(int(kHeight), int(kWidth), sourceType, const_cast<uint8_t*>(pixels.data()));
    cv::Mat out(int(kHeight), int(kWidth), targetType);
    for (auto _ : state)
        cv::cvtColor(in, out, code);
    state.SetBytesProcessed(int64_t(state.iterations() * out.total() * out.elemSize()));
}

const DemosaicMethod kBilinear = DemosaicMethod::Bilinear;
const DemosaicMethod kHigh = DemosaicMethod::HighQualityLinear;
const DemosaicMethod kAhd = DemosaicMethod::AdaptiveHomogeneityDirected;
const int kCores = int(std::max(1u, std::thread::hardware_concurrency()));

#define ORVAN_THREADS ->Arg(1)->Arg(kCores)->Unit(benchmark::kMillisecond)->UseRealTime()

BENCHMARK_CAPTURE(Ours, Bayer8_BGR8_Bilinear, BayerRG8, BGR8, kBilinear) ORVAN_THREADS;
BENCHMARK_CAPTURE(OpenCv, Bayer8_BGR8_Bilinear, CV_8UC1, CV_8UC3, cv::COLOR_BayerBG2BGR)
ORVAN_THREADS;
BENCHMARK_CAPTURE(Ours, Bayer8_BGR8_HighQualityLinear, BayerRG8, BGR8, kHigh) ORVAN_THREADS;
BENCHMARK_CAPTURE(OpenCv, Bayer8_BGR8_EdgeAware, CV_8UC1, CV_8UC3, cv::COLOR_BayerBG2BGR_EA)
ORVAN_THREADS;
BENCHMARK_CAPTURE(Ours, Bayer8_BGR8_AdaptiveHomogeneity, BayerRG8, BGR8, kAhd) ORVAN_THREADS;
BENCHMARK_CAPTURE(OpenCv, Bayer8_BGR8_Vng, CV_8UC1, CV_8UC3, cv::COLOR_BayerBG2BGR_VNG)
ORVAN_THREADS;
BENCHMARK_CAPTURE(Ours, Bayer16_BGR16_Bilinear, BayerRG16, BGR16, kBilinear) ORVAN_THREADS;
BENCHMARK_CAPTURE(OpenCv, Bayer16_BGR16_Bilinear, CV_16UC1, CV_16UC3, cv::COLOR_BayerBG2BGR)
ORVAN_THREADS;
BENCHMARK_CAPTURE(Ours, YUV422_BGR8, YUV422_8, BGR8, kBilinear) ORVAN_THREADS;
BENCHMARK_CAPTURE(OpenCv, YUV422_BGR8, CV_8UC2, CV_8UC3, cv::COLOR_YUV2BGR_YUYV) ORVAN_THREADS;
BENCHMARK_CAPTURE(Ours, BGR8_Mono8, BGR8, Mono8, kBilinear) ORVAN_THREADS;
BENCHMARK_CAPTURE(OpenCv, BGR8_Mono8, CV_8UC3, CV_8UC1, cv::COLOR_BGR2GRAY) ORVAN_THREADS;
BENCHMARK_CAPTURE(Ours, RGB8_BGR8, RGB8, BGR8, kBilinear) ORVAN_THREADS;
BENCHMARK_CAPTURE(OpenCv, RGB8_BGR8, CV_8UC3, CV_8UC3, cv::COLOR_RGB2BGR) ORVAN_THREADS;
BENCHMARK_CAPTURE(Ours, Mono16_Mono8, Mono16, Mono8, kBilinear) ORVAN_THREADS;

} // namespace
