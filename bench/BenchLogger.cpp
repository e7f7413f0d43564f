// What logging costs the caller, and how many records per second reach the text and JSON files.
// The baseline writes the same lines to a file directly, flushing each as the file sinks do.
#include <Orvan/ALogger.h>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <time.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

const char* const kMessage = "Stream 0 selected: 8 buffers of 5038848 bytes announced";

// A scratch working directory with a configuration that turns on the file sinks only, or none
// at all for a silent logger.
class ScratchDirectory {
public:
    explicit ScratchDirectory(bool fileSinks) : m_previous(std::filesystem::current_path()) {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "orvan-bench-XXXXXX").string();
        m_path = mkdtemp(pattern.data());
        std::filesystem::current_path(m_path);
        if (fileSinks) {
            const int base = 62000 + (getpid() % 300) * 3;
            const nlohmann::json config = {
                {"ports", {{"orvan_in", base}, {"orvan_out", base + 1}, {"ez_in", base + 2}}},
                {"levels", {{"orvan", 400}}},
                {"logging", {{"console", false}, {"json", true}, {"file", true}}}};
            std::ofstream("morlu_log.conf") << config.dump();
        }
    }
    ~ScratchDirectory() {
        std::filesystem::current_path(m_previous);
        std::filesystem::remove_all(m_path);
    }

private:
    std::filesystem::path m_previous;
    std::filesystem::path m_path;
};

// The caller's time per record; the sinks write behind its back, and their draining at the end
// is outside the timed loop.
void CallerCost(benchmark::State& state, bool fileSinks) {
    ScratchDirectory dir(fileSinks);
    Orvan::ALogger logger;
    for (auto _ : state) {
        Orvan::ALogger::Info("cam-0042", kMessage);
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_InfoCallerCostFileSinks(benchmark::State& state) {
    CallerCost(state, true);
}
void BM_InfoCallerCostSilent(benchmark::State& state) {
    CallerCost(state, false);
}

double ProcessCpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// From the first Info to the last record flushed to both files. On a busy machine the wall time
// depends on the other load; the CPU time of all the process's threads per record does not.
void BM_InfoToDisk(benchmark::State& state) {
    const int64_t records = state.range(0);
    ScratchDirectory dir(true);
    const double cpuStart = ProcessCpuSeconds();
    for (auto _ : state) {
        Orvan::ALogger logger;
        for (int64_t i = 0; i < records; ++i) {
            Orvan::ALogger::Info("cam-0042", kMessage);
        }
    }
    const double total = static_cast<double>(state.iterations() * records);
    state.SetItemsProcessed(state.iterations() * records);
    state.counters["process_cpu_us_per_record"] = (ProcessCpuSeconds() - cpuStart) * 1e6 / total;
}

void BM_FlushedLineBaseline(benchmark::State& state) {
    ScratchDirectory dir(false);
    std::ofstream file("baseline.log");
    const std::string line =
        std::string("[ 12:00:00.000 ] :: [    INFO ] :: [     Orvan ] ||>  (cam-0042) ") +
        kMessage + "\n";
    for (auto _ : state) {
        file << line << std::flush;
    }
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(BM_FlushedLineBaseline);
BENCHMARK(BM_InfoCallerCostSilent);
BENCHMARK(BM_InfoCallerCostFileSinks);
BENCHMARK(BM_InfoToDisk)->Arg(20000)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
