#include <GenApi/EventAdapterGEV.h>

#include "ByteOrder.h"

#include <Base/GCException.h>

#include <vector>

namespace GenApi {

namespace {

constexpr uint8_t kGvcpKey = 0x42;
constexpr uint8_t kFlagExtendedId = 0x10;
constexpr uint16_t kEventCommand = 0x00C0;
constexpr uint16_t kEventDataCommand = 0x00C2;
constexpr uint32_t kHeaderBytes = 8;
constexpr uint32_t kEventHeaderBytes = 16;
constexpr uint32_t kExtendedEventHeaderBytes = 24;

struct Event {
    uint16_t id;
    const uint8_t* bytes;
    uint32_t length;
};

[[noreturn]] void Malformed(const char* why) {
    throw RUNTIME_EXCEPTION("Not a GigE Vision event message: %s", why);
}

// The whole message is checked before anything is delivered. An event states its size in its
// first field; where that is 0 (GigE Vision 1.x, which calls it reserved), an EVENT item is
// just its header and an EVENTDATA item runs to the end of the message.
std::vector<Event> SplitEvents(const uint8_t* msg, uint32_t numBytes) {
    if (!msg || numBytes < kHeaderBytes)
        Malformed("shorter than the GVCP header");
    if (msg[0] != kGvcpKey)
        Malformed("wrong GVCP key");
    uint16_t command = detail::ReadBigEndian16(msg + 2);
    if (command != kEventCommand && command != kEventDataCommand)
        Malformed("neither EVENT nor EVENTDATA");
    uint32_t payload = detail::ReadBigEndian16(msg + 4);
    if (payload > numBytes - kHeaderBytes)
        Malformed("the header announces more bytes than the message holds");
    const uint32_t header =
        (msg[1] & kFlagExtendedId) ? kExtendedEventHeaderBytes : kEventHeaderBytes;
    std::vector<Event> events;
    const uint8_t* at = msg + kHeaderBytes;
    uint32_t left = payload;
    while (left > 0) {
        if (left < header)
            Malformed("truncated event header");
        uint32_t size = detail::ReadBigEndian16(at);
        if (size == 0)
            size = command == kEventCommand ? header : left;
        if (size < header || size > left)
            Malformed("event size outside the message");
        events.push_back({detail::ReadBigEndian16(at + 2), at, size});
        at += size;
        left -= size;
    }
    return events;
}

} // namespace

CEventAdapterGEV::CEventAdapterGEV(INodeMap* pNodeMap) : CEventAdapter(pNodeMap) {}

CEventAdapterGEV::~CEventAdapterGEV() = default;

void CEventAdapterGEV::DeliverMessage(const uint8_t msg[], uint32_t numBytes) {
    for (const Event& event : SplitEvents(msg, numBytes))
        DeliverEvent(event.id, event.bytes, event.length);
}

} // namespace GenApi
