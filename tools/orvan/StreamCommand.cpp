// orvan stream CAMERA: acquires images until a count, a time or Ctrl-C ends it, showing progress
// and then a summary of counts, rates and latencies.
#include "AcquisitionGuards.h"
#include "CameraScope.h"
#include "Commands.h"
#include "ImageSaver.h"
#include "InterruptFlag.h"
#include "LatencyClock.h"
#include "ProgressLine.h"
#include "StreamStatistics.h"
#include "ToolError.h"

#include <Base/GCException.h>
#include <Orvan/GenApiCustom.h>

#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

namespace Orvan {
namespace Cli {

namespace {

// How long one wait for a buffer may block: the longest Ctrl-C or a time limit goes unnoticed.
constexpr uint64_t kWaitMs = 100;

struct StreamOptions {
    std::string camera;
    uint64_t count = 0;
    double seconds = 0;
    size_t buffers = kAutomaticBufferCount;
    std::string saveDirectory;
    std::string format = "png";
    bool verbose = false;
};

int64_t StreamCounter(IDevice& device, const char* name) {
    try {
        return GetNodeValue<int64_t>(device.GetTLStreamNodeMap(), name);
    } catch (const GenICam::GenericException&) {
        return 0; // a producer without the counter: report what the tool itself saw
    }
}

class StreamRun {
public:
    StreamRun(const StreamOptions& options, IDevice& device)
        : m_options(options), m_device(device), m_clock(device), m_progress(stdout) {
        if (!options.saveDirectory.empty())
            m_saver.emplace(options.saveDirectory, *ImageFile::ParseFormat(options.format));
    }

    int Run() {
        RunningStream stream(m_device, m_options.buffers);
        const int64_t announced = StreamCounter(m_device, "StreamAnnouncedBufferCount");
        std::cout << "streaming with " << announced << " buffers; Ctrl-C stops" << std::endl;
        const uint64_t start = LatencyClock::HostNowNs();
        while (!Done(start)) {
            TakeOne();
            m_progress.Update(m_statistics.CountsLine(Seconds(start)));
        }
        m_statistics.SetLost(
            static_cast<uint64_t>(StreamCounter(m_device, "StreamLostFrameCount")));
        stream.Stop();
        const double seconds = Seconds(start);
        m_progress.Finish();
        PrintSummary(seconds, announced);
        return m_interrupt.Raised() ? kExitInterrupted : 0;
    }

private:
    bool Done(uint64_t start) const {
        if (m_interrupt.Raised())
            return true;
        if (m_options.count > 0 && m_statistics.Images() >= m_options.count)
            return true;
        return m_options.seconds > 0 && Seconds(start) >= m_options.seconds;
    }

    static double Seconds(uint64_t start) {
        return static_cast<double>(LatencyClock::HostNowNs() - start) / 1e9;
    }

    void TakeOne() {
        IBuffer* taken = nullptr;
        try {
            taken = m_device.GetBuffer(kWaitMs);
        } catch (const GenICam::TimeoutException&) {
            return;
        }
        const uint64_t delivered = LatencyClock::HostNowNs();
        HeldBuffer buffer(m_device, taken);
        IImage* image = buffer->AsImage();
        std::optional<int64_t> latency;
        if (image)
            latency = m_clock.LatencyNs(image->GetTimestampNs(), delivered);
        const bool incomplete = buffer->IsIncomplete();
        m_statistics.AddImage(buffer->GetSizeFilled(), incomplete, latency);
        if (m_saver && image && !incomplete)
            m_saver->Save(*image);
    }

    void PrintSummary(double seconds, int64_t announced) {
        std::cout << (m_interrupt.Raised() ? "interrupted: " : "done: ")
                  << m_statistics.CountsLine(seconds) << '\n';
        const std::string latency = m_statistics.LatencyLine();
        if (!latency.empty())
            std::cout << "latency, camera timestamp to delivery"
                      << (m_clock.OnHostClock()
                              ? " (host clock): "
                              : " (camera clock is not host time; offset taken at the first "
                                "image): ")
                      << latency << '\n';
        if (m_options.verbose)
            std::cout << "buffers: announced " << announced << ", still announced after stop "
                      << StreamCounter(m_device, "StreamAnnouncedBufferCount") << '\n';
    }

    const StreamOptions& m_options;
    IDevice& m_device;
    LatencyClock m_clock;
    ProgressLine m_progress;
    InterruptFlag m_interrupt;
    StreamStatistics m_statistics;
    std::optional<ImageSaver> m_saver;
};

} // namespace

void AddStreamCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<StreamOptions>();
    CLI::App* command = app.add_subcommand(
        "stream", "Acquire images and report rates and latencies; Ctrl-C stops (exit 130)");
    command->add_option("camera", options->camera, "Serial number, name, index or IP address")
        ->required();
    command->add_option("--count", options->count, "Stop after this many images")
        ->check(CLI::PositiveNumber);
    command->add_option("--seconds", options->seconds, "Stop after this many seconds")
        ->check(CLI::PositiveNumber);
    command
        ->add_option("--buffers", options->buffers,
                     "Number of stream buffers (default: sized by the SDK to the camera)")
        ->check(CLI::Range(1, 100000));
    CLI::Option* save =
        command->add_option("--save", options->saveDirectory, "Save each image into DIR");
    command->add_option("--format", options->format, "File format of saved images: png, pgm, raw")
        ->needs(save)
        ->capture_default_str();
    command->add_flag("--verbose", options->verbose, "Report the buffers announced and released");
    command->callback([options, &exitCode] {
        if (!ImageFile::ParseFormat(options->format))
            throw UsageError("unknown image format '" + options->format +
                             "' (use png, pgm or raw)");
        CameraScope scope;
        IDevice& device = scope.Open(options->camera);
        exitCode = StreamRun(*options, device).Run();
    });
}

} // namespace Cli
} // namespace Orvan
