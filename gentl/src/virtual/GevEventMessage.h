// GigE Vision GVCP EVENTDATA_CMD messages: what a virtual camera hands to EVENT_REMOTE_DEVICE,
// laid out as a real camera would send it on its message channel, so that the GigE Vision event
// adapter parses both alike.
#ifndef ORVAN_GENTL_VIRTUAL_GEVEVENTMESSAGE_H
#define ORVAN_GENTL_VIRTUAL_GEVEVENTMESSAGE_H

#include <cstdint>
#include <vector>

namespace Orvan {
namespace Producer {

struct GevEvent {
    uint16_t eventId;
    uint16_t streamChannel; // 0xFFFF when no stream channel is involved
    uint64_t blockId;       // only the low 16 bits travel without the extended-id flag
    uint64_t timestamp;
    std::vector<uint8_t> data;
};

// Layout, all big-endian (from the GigE Vision protocol as public protocol analysers decode it):
//   GVCP command header, 8 bytes: key 0x42, flags, command 0x00C2, length of what follows the
//   header, request id. Flag 0x10 (bit 3, counting from the most significant bit) is
//   "extended_id": 64-bit block ids and a size per event.
//   Standard event, one per message (its data runs to the end of the message):
//     reserved (0), event id, stream channel index, 16-bit block id, timestamp high, timestamp
//     low, data.
//   Extended-id event, any number per message:
//     event size (24 header bytes + data), event id, stream channel index, reserved (0), block
//     id high, block id low, timestamp high, timestamp low, data.
// No acknowledge is requested: in the process nobody would answer it.
// Throws std::invalid_argument for an empty list, several events without the extended-id flag
// (the standard form cannot delimit them), or sizes beyond the 16-bit length fields.
std::vector<uint8_t> BuildGevEventMessage(const std::vector<GevEvent>& events, uint16_t requestId,
                                          bool extendedId);

} // namespace Producer
} // namespace Orvan

#endif
