#include "GevEventMessage.h"

#include <stdexcept>

namespace Orvan {
namespace Producer {

namespace {

constexpr uint8_t kGvcpKey = 0x42;
constexpr uint8_t kFlagExtendedId = 0x10;
constexpr uint16_t kEventDataCommand = 0x00C2;
constexpr size_t kHeaderBytes = 8;
constexpr size_t kStandardEventHeader = 16;
constexpr size_t kExtendedEventHeader = 24;
constexpr size_t kMaxField = 0xFFFF;

class BigEndianWriter {
public:
    explicit BigEndianWriter(std::vector<uint8_t>& out) : m_out(out) {}
    void U8(uint8_t v) { m_out.push_back(v); }
    void U16(uint16_t v) {
        U8(uint8_t(v >> 8));
        U8(uint8_t(v));
    }
    void U32(uint32_t v) {
        U16(uint16_t(v >> 16));
        U16(uint16_t(v));
    }
    void U64(uint64_t v) {
        U32(uint32_t(v >> 32));
        U32(uint32_t(v));
    }
    void Bytes(const std::vector<uint8_t>& v) { m_out.insert(m_out.end(), v.begin(), v.end()); }

private:
    std::vector<uint8_t>& m_out;
};

size_t PayloadBytes(const std::vector<GevEvent>& events, bool extendedId) {
    if (events.empty())
        throw std::invalid_argument("GEV event message: no events");
    if (!extendedId && events.size() > 1)
        throw std::invalid_argument("GEV event message: several events need the extended-id form");
    const size_t header = extendedId ? kExtendedEventHeader : kStandardEventHeader;
    size_t total = 0;
    for (const GevEvent& event : events) {
        if (header + event.data.size() > kMaxField)
            throw std::invalid_argument("GEV event message: event data too large");
        total += header + event.data.size();
    }
    if (total > kMaxField)
        throw std::invalid_argument("GEV event message: message too large");
    return total;
}

void WriteEvent(BigEndianWriter& out, const GevEvent& event, bool extendedId) {
    if (extendedId) {
        out.U16(uint16_t(kExtendedEventHeader + event.data.size()));
        out.U16(event.eventId);
        out.U16(event.streamChannel);
        out.U16(0);
        out.U64(event.blockId);
    } else {
        out.U16(0);
        out.U16(event.eventId);
        out.U16(event.streamChannel);
        out.U16(uint16_t(event.blockId));
    }
    out.U64(event.timestamp);
    out.Bytes(event.data);
}

} // namespace

std::vector<uint8_t> BuildGevEventMessage(const std::vector<GevEvent>& events, uint16_t requestId,
                                          bool extendedId) {
    const size_t payload = PayloadBytes(events, extendedId);
    std::vector<uint8_t> message;
    message.reserve(kHeaderBytes + payload);
    BigEndianWriter out(message);
    out.U8(kGvcpKey);
    out.U8(extendedId ? kFlagExtendedId : 0);
    out.U16(kEventDataCommand);
    out.U16(uint16_t(payload));
    out.U16(requestId);
    for (const GevEvent& event : events)
        WriteEvent(out, event, extendedId);
    return message;
}

} // namespace Producer
} // namespace Orvan
