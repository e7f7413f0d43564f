// The data of the event-based sensor's stream: EVT 3.0 words (16-bit, little-endian, the type
// in the top four bits) describing the pixels that a moving edge crosses during one time slice,
// thinned by event rate control, plus the external-trigger events of the slice.
#ifndef ORVAN_GENTL_VIRTUAL_EVENTSTREAMENCODER_H
#define ORVAN_GENTL_VIRTUAL_EVENTSTREAMENCODER_H

#include <cstddef>
#include <cstdint>

namespace Orvan {
namespace Producer {

struct EventRateSettings {
    uint32_t width = 0;
    uint32_t height = 0;
    bool ercEnable = false;
    double ercRateLimit = 0; // million events per second
    uint32_t triggers = 0;   // external-trigger events that fall into the slice
};

// Bytes a buffer of the event stream needs for one slice.
size_t EventBufferBytes(const EventRateSettings& settings);

class EventStreamEncoder {
public:
    // Writes the slice [startNs, startNs + durationNs) into dst; returns the bytes written
    // (never more than EventBufferBytes, never more than capacity).
    size_t Encode(const EventRateSettings& settings, uint64_t startNs, uint64_t durationNs,
                  uint8_t* dst, size_t capacity);
    // Pixel events written in the last slice (after rate control).
    uint32_t LastEventCount() const { return m_lastEvents; }

private:
    uint32_t m_lastEvents = 0;
    uint64_t m_slices = 0;
};

} // namespace Producer
} // namespace Orvan

#endif
