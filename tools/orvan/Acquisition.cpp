#include "Acquisition.h"

#include "AcquisitionGuards.h"
#include "LatencyClock.h"

#include <Base/GCException.h>

#include <cstring>

namespace Orvan {
namespace Cli {

namespace {

// How long one wait for a buffer may block: the longest a stop request goes unnoticed.
constexpr uint64_t kWaitMs = 100;
constexpr uint64_t kRateWindowNs = 1000000000;

} // namespace

Acquisition::Acquisition(IDevice& device, NewestFrame& frames, std::function<void()> onFrame)
    : m_device(device), m_frames(frames), m_onFrame(std::move(onFrame)) {}

Acquisition::~Acquisition() {
    Stop();
}

void Acquisition::Start(uint64_t limit) {
    Stop();
    m_images = 0;
    m_incomplete = 0;
    m_withoutImage = 0;
    m_framesPerSecond = 0;
    m_megabytesPerSecond = 0;
    m_frameIntervalMs = 0;
    m_frames.ResetCount();
    {
        std::lock_guard<std::mutex> lock(m_errorMutex);
        m_error.clear();
    }
    m_stop = false;
    m_running = true;
    m_thread = std::thread([this, limit] { Run(limit); });
}

void Acquisition::Stop() {
    m_stop = true;
    if (m_thread.joinable())
        m_thread.join();
}

AcquisitionCounts Acquisition::Counts() const {
    AcquisitionCounts counts;
    counts.images = m_images;
    counts.incomplete = m_incomplete;
    counts.withoutImage = m_withoutImage;
    counts.framesPerSecond = m_framesPerSecond;
    counts.megabytesPerSecond = m_megabytesPerSecond;
    counts.frameIntervalMs = m_frameIntervalMs;
    std::lock_guard<std::mutex> lock(m_errorMutex);
    counts.error = m_error;
    return counts;
}

void Acquisition::Run(uint64_t limit) {
    try {
        RunningStream stream(m_device, kAutomaticBufferCount);
        m_windowStartNs = LatencyClock::HostNowNs();
        m_windowImages = m_windowBytes = m_windowStamped = 0;
        uint64_t taken = 0;
        while (!m_stop && (limit == 0 || taken < limit)) {
            if (TakeOne())
                ++taken;
            UpdateRates();
        }
        stream.Stop();
    } catch (const GenICam::GenericException& e) {
        std::lock_guard<std::mutex> lock(m_errorMutex);
        m_error = e.GetDescription();
    }
    m_framesPerSecond = 0;
    m_megabytesPerSecond = 0;
    m_running = false;
}

// True for a complete image handed over.
bool Acquisition::TakeOne() {
    IBuffer* taken = nullptr;
    try {
        taken = m_device.GetBuffer(kWaitMs);
    } catch (const GenICam::TimeoutException&) {
        return false;
    }
    HeldBuffer buffer(m_device, taken);
    ++m_images;
    ++m_windowImages;
    m_windowBytes += buffer->GetSizeFilled();
    if (buffer->IsIncomplete()) {
        ++m_incomplete;
        return false;
    }
    IImage* image = buffer->AsImage();
    if (!image) {
        ++m_withoutImage;
        return false;
    }
    if (m_windowStamped++ == 0)
        m_firstTimestampNs = image->GetTimestampNs();
    m_lastTimestampNs = image->GetTimestampNs();
    Publish(*image);
    return true;
}

void Acquisition::Publish(IImage& image) {
    RawFrame& frame = m_frames.WriteSlot();
    frame.width = image.GetWidth();
    frame.height = image.GetHeight();
    frame.pixelFormat = image.GetPixelFormat();
    frame.frameId = image.GetFrameId();
    const size_t bytes = frame.width * frame.height * image.GetBitsPerPixel() / 8;
    if (bytes > image.GetSizeFilled())
        return; // a payload shorter than its geometry: nothing sensible to show
    frame.pixels.resize(bytes);
    std::memcpy(frame.pixels.data(), image.GetData(), bytes);
    m_frames.Publish();
    m_onFrame();
}

void Acquisition::UpdateRates() {
    const uint64_t now = LatencyClock::HostNowNs();
    const uint64_t elapsed = now - m_windowStartNs;
    if (elapsed < kRateWindowNs)
        return;
    const double seconds = static_cast<double>(elapsed) / 1e9;
    m_framesPerSecond = static_cast<double>(m_windowImages) / seconds;
    m_megabytesPerSecond = static_cast<double>(m_windowBytes) / 1e6 / seconds;
    m_frameIntervalMs = m_windowStamped < 2
                            ? 0.0
                            : static_cast<double>(m_lastTimestampNs - m_firstTimestampNs) / 1e6 /
                                  static_cast<double>(m_windowStamped - 1);
    m_windowStartNs = now;
    m_windowImages = m_windowBytes = m_windowStamped = 0;
}

} // namespace Cli
} // namespace Orvan
