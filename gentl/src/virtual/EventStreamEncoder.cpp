#include "EventStreamEncoder.h"

#include <algorithm>
#include <cmath>

namespace Orvan {
namespace Producer {

namespace {

// EVT 3.0 word types.
constexpr uint16_t kAddrY = 0x0;
constexpr uint16_t kAddrX = 0x2;
constexpr uint16_t kTimeLow = 0x6;
constexpr uint16_t kTimeHigh = 0x8;
constexpr uint16_t kExtTrigger = 0xA;
constexpr size_t kWordsPerEvent = 3; // time low, y, x
constexpr size_t kWordsPerTrigger = 2;
constexpr size_t kHeaderWords = 2; // time high, time low
constexpr uint32_t kMaxTriggers = 64;

class WordWriter {
public:
    WordWriter(uint8_t* dst, size_t capacity) : m_dst(dst), m_capacity(capacity / 2) {}
    bool Put(uint16_t type, uint16_t payload) {
        if (m_count == m_capacity)
            return false;
        const uint16_t word = uint16_t(type << 12 | (payload & 0x0FFF));
        m_dst[2 * m_count] = uint8_t(word);
        m_dst[2 * m_count + 1] = uint8_t(word >> 8);
        ++m_count;
        return true;
    }
    size_t Bytes() const { return 2 * m_count; }

private:
    uint8_t* m_dst;
    size_t m_capacity;
    size_t m_count = 0;
};

} // namespace

size_t EventBufferBytes(const EventRateSettings& settings) {
    return 2 * (kHeaderWords + kWordsPerEvent * settings.height + kWordsPerTrigger * kMaxTriggers);
}

size_t EventStreamEncoder::Encode(const EventRateSettings& settings, uint64_t startNs,
                                  uint64_t durationNs, uint8_t* dst, size_t capacity) {
    WordWriter out(dst, std::min(capacity, EventBufferBytes(settings)));
    const uint64_t startUs = startNs / 1000;
    out.Put(kTimeHigh, uint16_t(startUs >> 12));
    out.Put(kTimeLow, uint16_t(startUs));
    for (uint32_t t = 0; t < std::min(settings.triggers, kMaxTriggers); ++t) {
        out.Put(kExtTrigger, 1); // channel 0, rising edge
        out.Put(kTimeLow, uint16_t(startUs));
    }
    // The edge is a diagonal that moves one column per slice; each row it crosses fires once.
    uint32_t events = settings.height;
    if (settings.ercEnable) {
        const double allowed = settings.ercRateLimit * 1e6 * double(durationNs) / 1e9;
        events = uint32_t(std::min<double>(events, std::floor(allowed)));
    }
    const uint64_t column = m_slices++;
    uint32_t written = 0;
    for (uint32_t i = 0; i < events && settings.width > 0; ++i) {
        // Spread the kept events over the whole height.
        const uint32_t y = uint32_t(uint64_t(i) * settings.height / std::max(events, 1u));
        const uint32_t x = uint32_t((column + y) % settings.width);
        const uint64_t timeUs = startUs + durationNs / 1000 * i / std::max(events, 1u);
        if (!out.Put(kTimeLow, uint16_t(timeUs)) || !out.Put(kAddrY, uint16_t(y)) ||
            !out.Put(kAddrX, uint16_t(x | 0x800)))
            break;
        ++written;
    }
    m_lastEvents = written;
    return out.Bytes();
}

} // namespace Producer
} // namespace Orvan
