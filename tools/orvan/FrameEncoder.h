// The viewer's encoder: a thread of its own that turns the newest camera image into a JPEG for
// the browser, and only when a browser is waiting for one, so a viewer nobody looks at costs the
// camera nothing. Images that a newer one replaced before it was encoded are let go.
#ifndef ORVAN_TOOLS_ORVAN_FRAMEENCODER_H
#define ORVAN_TOOLS_ORVAN_FRAMEENCODER_H

#include "DisplayImage.h"
#include "JpegCompressor.h"
#include "NewestFrame.h"

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Orvan {
namespace Cli {

// An image as it went to the browser; never changed once made.
struct ShownFrame {
    uint64_t sequence = 0; // counts the encoded images, from 1
    RawFrame source;       // the camera's pixels, for saving at full depth
    std::vector<uint8_t> jpeg;
    // Per channel (grey, or red, green and blue) of what the browser shows.
    std::vector<std::array<uint32_t, 256>> histogram;
};

class FrameEncoder {
public:
    explicit FrameEncoder(NewestFrame& frames);
    ~FrameEncoder();
    FrameEncoder(const FrameEncoder&) = delete;
    FrameEncoder& operator=(const FrameEncoder&) = delete;

    // Tells the encoder a new image is there; for the acquisition thread, never blocks.
    void Wake() { m_wanted.notify_one(); }

    // The newest image encoded after `sequence`, waiting up to `timeout` for one; null when
    // none came.
    std::shared_ptr<const ShownFrame> After(uint64_t sequence, std::chrono::milliseconds timeout);
    std::shared_ptr<const ShownFrame> Latest() const;
    uint64_t Encoded() const;
    // Why the last image could not be shown; empty when it could.
    std::string Problem() const;

private:
    void Run();
    std::shared_ptr<ShownFrame> Encode(const RawFrame& frame);

    NewestFrame& m_frames;
    mutable std::mutex m_mutex;
    std::condition_variable m_wanted; // the encoder waits for a browser and an image
    std::condition_variable m_done;   // browsers wait for an encoded image
    unsigned m_waiting = 0;
    bool m_stop = false;
    std::shared_ptr<const ShownFrame> m_latest;
    uint64_t m_sequence = 0;
    std::string m_problem;
    DisplayImage m_display;      // the encoder thread's own
    JpegCompressor m_compressor; // the encoder thread's own
    std::thread m_thread;
};

} // namespace Cli
} // namespace Orvan

#endif
