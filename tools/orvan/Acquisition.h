// The viewer's acquisition: one thread that owns the camera's stream from start to stop, copies
// each complete image into the hand-over to the encoder and gives the buffer straight back. It
// waits only for the camera, never for the viewer: everything it shares is atomic.
#ifndef ORVAN_TOOLS_ORVAN_ACQUISITION_H
#define ORVAN_TOOLS_ORVAN_ACQUISITION_H

#include "NewestFrame.h"

#include <Orvan/IDevice.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace Orvan {
namespace Cli {

struct AcquisitionCounts {
    uint64_t images = 0;
    uint64_t incomplete = 0;
    uint64_t withoutImage = 0;  // compressed or chunk data only: nothing to show
    double framesPerSecond = 0; // over the last second, by the host's clock
    double megabytesPerSecond = 0;
    // Mean time between the camera's timestamps of the last second's images; 0 when fewer
    // than two came.
    double frameIntervalMs = 0;
    std::string error; // why the stream ended by itself, if it did
};

class Acquisition {
public:
    // onFrame runs on the acquisition thread after each publication and must not block.
    Acquisition(IDevice& device, NewestFrame& frames, std::function<void()> onFrame);
    ~Acquisition();
    Acquisition(const Acquisition&) = delete;
    Acquisition& operator=(const Acquisition&) = delete;

    // Starts the stream; with a limit it stops by itself after that many complete images.
    void Start(uint64_t limit = 0);
    void Stop();
    bool Running() const { return m_running; }
    AcquisitionCounts Counts() const;

private:
    void Run(uint64_t limit);
    bool TakeOne();
    void Publish(IImage& image);
    void UpdateRates();

    IDevice& m_device;
    NewestFrame& m_frames;
    std::function<void()> m_onFrame;
    std::thread m_thread;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_running{false};

    std::atomic<uint64_t> m_images{0};
    std::atomic<uint64_t> m_incomplete{0};
    std::atomic<uint64_t> m_withoutImage{0};
    std::atomic<double> m_framesPerSecond{0};
    std::atomic<double> m_megabytesPerSecond{0};
    std::atomic<double> m_frameIntervalMs{0};
    mutable std::mutex m_errorMutex; // taken once when the thread ends, never per image
    std::string m_error;

    // The current second's window, the acquisition thread's own.
    uint64_t m_windowStartNs = 0;
    uint64_t m_windowImages = 0;
    uint64_t m_windowBytes = 0;
    uint64_t m_windowStamped = 0; // complete images, whose timestamps span the window
    uint64_t m_firstTimestampNs = 0;
    uint64_t m_lastTimestampNs = 0;
};

} // namespace Cli
} // namespace Orvan

#endif
