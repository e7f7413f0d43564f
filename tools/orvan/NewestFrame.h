// The hand-over of images from the acquisition thread to the viewer's encoder: the viewer shows
// the newest image and lets older ones go, so the acquisition never waits for it. Three slots
// (one being written, one being read, one in between) make both sides wait-free.
#ifndef ORVAN_TOOLS_ORVAN_NEWESTFRAME_H
#define ORVAN_TOOLS_ORVAN_NEWESTFRAME_H

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Orvan {
namespace Cli {

// One image as the camera delivered it, its pixels copied out of the stream's buffer.
struct RawFrame {
    std::vector<uint8_t> pixels;
    size_t width = 0;
    size_t height = 0;
    uint64_t pixelFormat = 0;
    uint64_t frameId = 0;
};

// One writer thread and one reader thread.
class NewestFrame {
public:
    // The writer fills this slot, then publishes it.
    RawFrame& WriteSlot() { return m_slots[m_writing]; }
    void Publish();

    bool HasNew() const { return (m_middle.load() & kFresh) != 0; }
    // The newest published frame, the reader's until its next call; null when nothing new was
    // published since the last call.
    const RawFrame* TakeNewest();

    // Published frames that a newer one replaced before the reader took them.
    uint64_t Replaced() const { return m_replaced.load(); }
    void ResetCount() { m_replaced = 0; }

private:
    static constexpr unsigned kIndex = 3;
    static constexpr unsigned kFresh = 4;

    std::array<RawFrame, 3> m_slots;
    unsigned m_writing = 0;
    unsigned m_reading = 1;
    std::atomic<unsigned> m_middle{2}; // slot index, with kFresh when not taken yet
    std::atomic<uint64_t> m_replaced{0};
};

} // namespace Cli
} // namespace Orvan

#endif
