// The client side of the GigE Vision control protocol: the commands a host sends to a camera
// and the checks on what comes back. Every parser takes arbitrary bytes from the network and
// never reads outside them.
#ifndef ORVAN_GENTL_GIGE_GVCPCODEC_H
#define ORVAN_GENTL_GIGE_GVCPCODEC_H

#include "../RemoteDevice.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace Orvan {
namespace Producer {

// An acknowledge as it arrived; payload points into the datagram it was parsed from.
struct GvcpAck {
    uint16_t status = 0;
    uint16_t answer = 0;
    uint16_t ackId = 0;
    const uint8_t* payload = nullptr;
    size_t payloadSize = 0;
};

// A command as the camera sends it on the message channel (EVENT, EVENTDATA).
struct GvcpCommandHeader {
    uint8_t flags = 0;
    uint16_t command = 0;
    uint16_t requestId = 0;
    const uint8_t* payload = nullptr;
    size_t payloadSize = 0;
};

// What an acknowledge means to the command waiting for it.
enum class AckVerdict {
    Answer,  // the awaited acknowledge; its status says whether the command succeeded
    Pending, // the camera needs more time (PENDING_ACK); the wait is extended
    Foreign, // a late answer to an earlier command, or not meant for us: ignored
    Invalid, // carries our request id but is not a well-formed answer to our command
};

std::vector<uint8_t> BuildDiscoveryCommand(uint16_t requestId, bool broadcastAck);
std::vector<uint8_t> BuildForceIpCommand(uint16_t requestId, uint64_t mac, uint32_t ip,
                                         uint32_t subnet, uint32_t gateway);
// A command payload holds at most 540 bytes: 135 addresses, 67 pairs.
std::vector<uint8_t> BuildReadRegCommand(uint16_t requestId,
                                         const std::vector<uint32_t>& addresses);
std::vector<uint8_t>
BuildWriteRegCommand(uint16_t requestId,
                     const std::vector<std::pair<uint32_t, uint32_t>>& addressValues);
// count: a multiple of 4, at most kReadMemMax.
std::vector<uint8_t> BuildReadMemCommand(uint16_t requestId, uint32_t address, uint16_t count);
// size: a multiple of 4, at most kReadMemMax.
std::vector<uint8_t> BuildWriteMemCommand(uint16_t requestId, uint32_t address, const uint8_t* data,
                                          size_t size);
// scheduledTime 0 sends the immediate form.
std::vector<uint8_t> BuildActionCommand(uint16_t requestId, uint32_t deviceKey, uint32_t groupKey,
                                        uint32_t groupMask, uint64_t scheduledTime,
                                        bool ackRequired);
// The standard form carries the low 16 bits of the block id and 24-bit packet ids.
std::vector<uint8_t> BuildPacketResendCommand(uint16_t requestId, uint16_t streamChannel,
                                              uint64_t blockId, uint32_t firstPacket,
                                              uint32_t lastPacket, bool extendedId);
// Acknowledge of an EVENT (eventData false) or EVENTDATA command with that request id.
std::vector<uint8_t> BuildEventAck(uint16_t requestId, bool eventData);

// The header checks: at least a header, and the length field within the datagram.
std::optional<GvcpAck> ParseAck(const uint8_t* data, size_t size);
std::optional<GvcpCommandHeader> ParseCommandHeader(const uint8_t* data, size_t size);

// Sorts an acknowledge for the command with that answer code and request id; a PENDING_ACK
// gives its time to completion in milliseconds.
AckVerdict ClassifyAck(const GvcpAck& ack, uint16_t expectedAnswer, uint16_t requestId,
                       uint32_t& pendingMs);

// Payload checks of successful acknowledges.
bool ParseReadRegAck(const GvcpAck& ack, uint32_t* values, size_t count);
bool ParseReadMemAck(const GvcpAck& ack, uint32_t address, uint8_t* data, size_t size);

// A DISCOVERY_ACK answering that request id, as device info. The id is the MAC in colon-hex;
// a camera reporting a zero MAC (emulators do) is named by its dotted IP address instead, to
// which a caller that talks to several ports of one address appends ":<port>".
std::optional<DeviceIdentity> ParseDiscoveryAck(const uint8_t* data, size_t size,
                                                uint16_t requestId);

// Dotted-quad text of a host-order IPv4 address.
std::string FormatIp(uint32_t ip);

} // namespace Producer
} // namespace Orvan

#endif
