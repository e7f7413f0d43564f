#include "FrameTiming.h"

namespace Orvan {
namespace Gst {

namespace {

// A camera clock that jumps by this much (a camera reset, a timestamp latch) starts a new
// mapping instead of dragging every later frame along the old one.
constexpr int64_t kResyncNs = 1000000000;

} // namespace

uint64_t CameraClockMapping::Map(uint64_t cameraNs, uint64_t arrivalNs) {
    const int64_t offset = static_cast<int64_t>(arrivalNs - cameraNs);
    if (!m_anchored || offset < m_offset || offset - m_offset > kResyncNs) {
        m_offset = offset;
        m_anchored = true;
    }
    return cameraNs + static_cast<uint64_t>(m_offset);
}

uint64_t FrameSequence::Advance(uint64_t frameId) {
    const bool first = !m_started;
    const uint64_t previous = m_last;
    m_started = true;
    m_last = frameId;
    if (first || frameId <= previous)
        return 0;
    return frameId - previous - 1;
}

} // namespace Gst
} // namespace Orvan
