#include <GenApi/EventAdapterU3V.h>

#include "ByteOrder.h"

#include <Base/GCException.h>

namespace GenApi {

namespace {

constexpr uint32_t kEventPrefix = 0x45563355; // "U3VE" in little-endian byte order
constexpr uint16_t kEventCommand = 0x0C00;
constexpr uint32_t kHeaderBytes = 12;
// reserved, event ID, 64-bit timestamp
constexpr uint32_t kEventHeaderBytes = 12;

[[noreturn]] void Malformed(const char* why) {
    throw RUNTIME_EXCEPTION("Not a USB3 Vision event message: %s", why);
}

} // namespace

CEventAdapterU3V::CEventAdapterU3V(INodeMap* pNodeMap) : CEventAdapter(pNodeMap) {}

CEventAdapterU3V::~CEventAdapterU3V() = default;

void CEventAdapterU3V::DeliverMessage(const uint8_t msg[], uint32_t numBytes) {
    if (!msg || numBytes < kHeaderBytes)
        Malformed("shorter than the command header");
    if (detail::ReadLittleEndian32(msg) != kEventPrefix)
        Malformed("wrong prefix");
    if (detail::ReadLittleEndian16(msg + 6) != kEventCommand)
        Malformed("not EVENT_CMD");
    uint32_t length = detail::ReadLittleEndian16(msg + 8);
    if (length > numBytes - kHeaderBytes)
        Malformed("the header announces more bytes than the message holds");
    if (length < kEventHeaderBytes)
        Malformed("truncated event");
    const uint8_t* event = msg + kHeaderBytes;
    DeliverEvent(detail::ReadLittleEndian16(event + 2), event, length);
}

} // namespace GenApi
