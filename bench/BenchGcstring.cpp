// Feature names travel as gcstrings on every node lookup: compare building and comparing them
// with the same work on std::string.
#include <Base/GCString.h>

#include <benchmark/benchmark.h>
#include <string>

namespace {

const char* const kName = "AcquisitionFrameRateEnable";

template <class S>
void BuildAndCompare(benchmark::State& state) {
    S reference(kName);
    for (auto _ : state) {
        S name(kName);
        name += "Selector";
        benchmark::DoNotOptimize(name == reference);
    }
}

void BM_GcstringBuildCompare(benchmark::State& state) {
    BuildAndCompare<GenICam::gcstring>(state);
}
void BM_StdStringBuildCompare(benchmark::State& state) {
    BuildAndCompare<std::string>(state);
}

BENCHMARK(BM_StdStringBuildCompare);
BENCHMARK(BM_GcstringBuildCompare);

} // namespace
