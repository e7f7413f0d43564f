// Timing of delivered frames: camera timestamps placed on the pipeline clock, and frame ids
// turned into buffer offsets with gaps reported as lost frames.
#ifndef ORVAN_GSTREAMER_FRAMETIMING_H
#define ORVAN_GSTREAMER_FRAMETIMING_H

#include <cstdint>

namespace Orvan {
namespace Gst {

// The camera's clock and the pipeline's run at independent origins. A frame can only arrive
// after it was exposed, so the smallest (arrival - camera time) seen is the best estimate of
// the offset between them: transfer jitter never pushes a timestamp later than the frame was
// taken, and timestamps stay evenly spaced as the camera spaced them.
class CameraClockMapping {
public:
    // Both in nanoseconds; the result is on the arrival clock and never after the arrival.
    uint64_t Map(uint64_t cameraNs, uint64_t arrivalNs);
    void Reset() { m_anchored = false; }

private:
    bool m_anchored = false;
    int64_t m_offset = 0;
};

// Frame ids from the camera increase by one per frame; any larger step lost frames on the way.
class FrameSequence {
public:
    // The number of frames lost since the previous id (0 for the first).
    uint64_t Advance(uint64_t frameId);
    void Reset() { m_started = false; }

private:
    bool m_started = false;
    uint64_t m_last = 0;
};

} // namespace Gst
} // namespace Orvan

#endif
