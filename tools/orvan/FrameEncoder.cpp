#include "FrameEncoder.h"

#include "ToolError.h"

#include <Base/GCException.h>

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Orvan {
namespace Cli {

namespace {

// Wake() does not take the encoder's lock, so a wake-up can slip in between the encoder's
// check and its wait; it then looks again after this long at the latest.
constexpr std::chrono::milliseconds kRecheck{20};
constexpr int kEncoderNiceness = 10;

std::vector<std::array<uint32_t, 256>> Histogram(IImage& image, int channels) {
    std::vector<std::array<uint32_t, 256>> bins(static_cast<size_t>(channels));
    for (auto& channel : bins)
        channel.fill(0);
    const uint8_t* sample = image.GetData();
    const size_t pixels = image.GetWidth() * image.GetHeight();
    for (size_t i = 0; i < pixels; ++i)
        for (auto& channel : bins)
            ++channel[*sample++];
    return bins;
}

} // namespace

FrameEncoder::FrameEncoder(NewestFrame& frames) : m_frames(frames), m_thread([this] { Run(); }) {}

FrameEncoder::~FrameEncoder() {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stop = true;
    }
    m_wanted.notify_all();
    m_done.notify_all();
    m_thread.join();
}

std::shared_ptr<const ShownFrame> FrameEncoder::After(uint64_t sequence,
                                                      std::chrono::milliseconds timeout) {
    std::unique_lock<std::mutex> lock(m_mutex);
    ++m_waiting;
    m_wanted.notify_one();
    // A page from before a restart of the viewer counts from further on: it gets the latest.
    const bool newer = m_done.wait_for(lock, timeout, [&] {
        return m_stop || (m_latest && (m_latest->sequence > sequence || sequence > m_sequence));
    });
    --m_waiting;
    return newer && !m_stop ? m_latest : nullptr;
}

std::shared_ptr<const ShownFrame> FrameEncoder::Latest() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_latest;
}

uint64_t FrameEncoder::Encoded() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_sequence;
}

std::string FrameEncoder::Problem() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_problem;
}

void FrameEncoder::Run() {
    // When the processor is short, the acquisition goes first: the page can show fewer images,
    // the camera cannot wait.
    setpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid)), kEncoderNiceness);
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_stop) {
        if (m_waiting == 0 || !m_frames.HasNew()) {
            m_wanted.wait_for(lock, kRecheck);
            continue;
        }
        lock.unlock();
        const RawFrame* frame = m_frames.TakeNewest();
        std::shared_ptr<ShownFrame> shown;
        std::string problem;
        try {
            shown = Encode(*frame);
        } catch (const GenICam::GenericException& e) {
            problem = e.GetDescription();
        } catch (const ToolError& e) {
            problem = e.what();
        }
        lock.lock();
        m_problem = problem;
        if (shown) {
            shown->sequence = ++m_sequence;
            m_latest = std::move(shown);
            m_done.notify_all();
        }
    }
}

std::shared_ptr<ShownFrame> FrameEncoder::Encode(const RawFrame& frame) {
    IImage& image = m_display.From(frame);
    const int channels = DisplayImage::Channels(image);
    auto shown = std::make_shared<ShownFrame>();
    shown->source = frame;
    shown->jpeg =
        m_compressor.Compress(image.GetData(), image.GetWidth(), image.GetHeight(), channels);
    shown->histogram = Histogram(image, channels);
    return shown;
}

} // namespace Cli
} // namespace Orvan
