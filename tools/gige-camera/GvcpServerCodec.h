// The camera side of GVCP: parses the commands a client sends (every field checked against the
// datagram's real size, since anyone on the network may send anything) and builds the
// acknowledges and the camera's own messages.
#ifndef ORVAN_TOOLS_GIGE_CAMERA_GVCPSERVERCODEC_H
#define ORVAN_TOOLS_GIGE_CAMERA_GVCPSERVERCODEC_H

#include "RemoteDevice.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Orvan {
namespace Emulator {

struct GvcpCommand {
    uint8_t flags = 0;
    uint16_t command = 0;
    uint16_t requestId = 0;
    const uint8_t* payload = nullptr; // inside the datagram; valid while it is
    size_t size = 0;                  // the header's length field, checked against the datagram
    bool AckRequired() const;
};

// Null for anything but a well-formed command header (key byte, length within the datagram).
std::optional<GvcpCommand> ParseGvcpCommand(const uint8_t* data, size_t size);

struct ReadMemRequest {
    uint32_t address = 0;
    uint16_t count = 0;
};
struct PacketResendRequest {
    uint16_t streamChannel = 0;
    uint64_t blockId = 0;
    uint32_t firstPacket = 0;
    uint32_t lastPacket = 0;
};
struct ActionRequest {
    uint32_t deviceKey = 0;
    uint32_t groupKey = 0;
    uint32_t groupMask = 0;
    bool scheduled = false;
    uint64_t actionTime = 0;
};
struct ForceIpRequest {
    uint64_t mac = 0;
    uint32_t ip = 0;
    uint32_t subnet = 0;
    uint32_t gateway = 0;
};

// Payload parsers: null when the payload is too short or malformed for the command.
std::optional<std::vector<uint32_t>> ParseReadReg(const GvcpCommand& command);
std::optional<std::vector<std::pair<uint32_t, uint32_t>>> ParseWriteReg(const GvcpCommand& command);
std::optional<ReadMemRequest> ParseReadMem(const GvcpCommand& command);
// The address; the data follows it in the payload.
std::optional<uint32_t> ParseWriteMemAddress(const GvcpCommand& command);
std::optional<PacketResendRequest> ParsePacketResend(const GvcpCommand& command);
std::optional<ActionRequest> ParseAction(const GvcpCommand& command);
std::optional<ForceIpRequest> ParseForceIp(const GvcpCommand& command);

std::vector<uint8_t> BuildAck(uint16_t status, uint16_t ackCommand, uint16_t requestId,
                              const std::vector<uint8_t>& payload = {});
std::vector<uint8_t> BuildPendingAck(uint16_t requestId, uint16_t timeToCompletionMs);

// What a DISCOVERY_ACK tells besides the identity.
struct DiscoveryDetails {
    uint16_t versionMajor = 2;
    uint16_t versionMinor = 0;
    uint32_t deviceMode = 0;
    uint32_t ipConfigOptions = 0;
    uint32_t ipConfigCurrent = 0;
    std::string manufacturerInfo;
};
std::vector<uint8_t> BuildDiscoveryAck(uint16_t requestId, const Producer::DeviceIdentity& identity,
                                       const DiscoveryDetails& details);

// Turns a camera's EVENTDATA message (GVCP command layout) into one the host must acknowledge
// with the given request id. False when it is no EVENTDATA message.
bool PrepareEventMessage(std::vector<uint8_t>& message, uint16_t requestId);

} // namespace Emulator
} // namespace Orvan

#endif
