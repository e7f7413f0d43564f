#include "GvcpServerCodec.h"

#include "gige/BigEndian.h"
#include "gige/GevProtocol.h"

#include <algorithm>
#include <cstring>

using Orvan::Gev::Get16;
using Orvan::Gev::Get32;
using Orvan::Gev::Get64;
using Orvan::Gev::Put16;
using Orvan::Gev::Put32;

namespace Orvan {
namespace Emulator {

namespace {

constexpr size_t kReadMemPayload = 8;
constexpr size_t kResendPayload = 12;
constexpr size_t kExtendedResendPayload = 20;

void PutString(std::vector<uint8_t>& out, size_t offset, size_t field, const std::string& text) {
    std::memcpy(out.data() + offset, text.data(), std::min(text.size(), field - 1));
}

} // namespace

bool GvcpCommand::AckRequired() const {
    return (flags & Gev::kFlagAckRequired) != 0;
}

std::optional<GvcpCommand> ParseGvcpCommand(const uint8_t* data, size_t size) {
    if (!data || size < Gev::kGvcpHeaderSize || data[0] != Gev::kCommandKey)
        return std::nullopt;
    GvcpCommand command;
    command.flags = data[1];
    command.command = Get16(data + 2);
    command.size = Get16(data + 4);
    command.requestId = Get16(data + 6);
    command.payload = data + Gev::kGvcpHeaderSize;
    if (command.size > size - Gev::kGvcpHeaderSize)
        return std::nullopt;
    return command;
}

std::optional<std::vector<uint32_t>> ParseReadReg(const GvcpCommand& command) {
    if (command.size == 0 || command.size % 4 != 0 || command.size > Gev::kReadMemMax)
        return std::nullopt;
    std::vector<uint32_t> addresses;
    for (size_t i = 0; i < command.size; i += 4)
        addresses.push_back(Get32(command.payload + i));
    return addresses;
}

std::optional<std::vector<std::pair<uint32_t, uint32_t>>>
ParseWriteReg(const GvcpCommand& command) {
    if (command.size == 0 || command.size % 8 != 0 || command.size > Gev::kReadMemMax)
        return std::nullopt;
    std::vector<std::pair<uint32_t, uint32_t>> writes;
    for (size_t i = 0; i < command.size; i += 8)
        writes.emplace_back(Get32(command.payload + i), Get32(command.payload + i + 4));
    return writes;
}

std::optional<ReadMemRequest> ParseReadMem(const GvcpCommand& command) {
    if (command.size < kReadMemPayload)
        return std::nullopt;
    return ReadMemRequest{Get32(command.payload), Get16(command.payload + 6)};
}

std::optional<uint32_t> ParseWriteMemAddress(const GvcpCommand& command) {
    if (command.size < 4)
        return std::nullopt;
    return Get32(command.payload);
}

std::optional<PacketResendRequest> ParsePacketResend(const GvcpCommand& command) {
    const bool extended = (command.flags & Gev::kFlagExtendedId) != 0;
    if (command.size < (extended ? kExtendedResendPayload : kResendPayload))
        return std::nullopt;
    PacketResendRequest request;
    request.streamChannel = Get16(command.payload);
    request.firstPacket = Get32(command.payload + 4);
    request.lastPacket = Get32(command.payload + 8);
    if (extended) {
        request.blockId = Get64(command.payload + 12);
    } else {
        request.blockId = Get16(command.payload + 2);
        request.firstPacket &= 0x00FFFFFF;
        request.lastPacket &= 0x00FFFFFF;
    }
    return request;
}

std::optional<ActionRequest> ParseAction(const GvcpCommand& command) {
    ActionRequest request;
    request.scheduled = (command.flags & Gev::kFlagScheduledAction) != 0;
    if (command.size <
        (request.scheduled ? Gev::kScheduledActionPayloadSize : Gev::kActionPayloadSize))
        return std::nullopt;
    request.deviceKey = Get32(command.payload);
    request.groupKey = Get32(command.payload + 4);
    request.groupMask = Get32(command.payload + 8);
    if (request.scheduled)
        request.actionTime = Get64(command.payload + 12);
    return request;
}

std::optional<ForceIpRequest> ParseForceIp(const GvcpCommand& command) {
    namespace F = Gev::ForceIpField;
    if (command.size < F::Size)
        return std::nullopt;
    ForceIpRequest request;
    request.mac =
        uint64_t(Get16(command.payload + F::MacHigh)) << 32 | Get32(command.payload + F::MacLow);
    request.ip = Get32(command.payload + F::StaticIp);
    request.subnet = Get32(command.payload + F::StaticSubnet);
    request.gateway = Get32(command.payload + F::StaticGateway);
    return request;
}

std::vector<uint8_t> BuildAck(uint16_t status, uint16_t ackCommand, uint16_t requestId,
                              const std::vector<uint8_t>& payload) {
    std::vector<uint8_t> ack(Gev::kGvcpHeaderSize + payload.size());
    Put16(ack.data(), status);
    Put16(ack.data() + 2, ackCommand);
    Put16(ack.data() + 4, uint16_t(payload.size()));
    Put16(ack.data() + 6, requestId);
    std::copy(payload.begin(), payload.end(), ack.begin() + Gev::kGvcpHeaderSize);
    return ack;
}

std::vector<uint8_t> BuildPendingAck(uint16_t requestId, uint16_t timeToCompletionMs) {
    std::vector<uint8_t> payload(4);
    Put16(payload.data() + 2, timeToCompletionMs);
    return BuildAck(Gev::Success, Gev::PendingAck, requestId, payload);
}

std::vector<uint8_t> BuildDiscoveryAck(uint16_t requestId, const Producer::DeviceIdentity& identity,
                                       const DiscoveryDetails& details) {
    namespace F = Gev::DiscoveryField;
    std::vector<uint8_t> payload(F::Size);
    uint8_t* p = payload.data();
    Put16(p + F::SpecVersionMajor, details.versionMajor);
    Put16(p + F::SpecVersionMinor, details.versionMinor);
    Put32(p + F::DeviceMode, details.deviceMode);
    Put16(p + F::MacHigh, uint16_t(identity.mac >> 32));
    Put32(p + F::MacLow, uint32_t(identity.mac));
    Put32(p + F::IpConfigOptions, details.ipConfigOptions);
    Put32(p + F::IpConfigCurrent, details.ipConfigCurrent);
    Put32(p + F::CurrentIp, identity.ip);
    Put32(p + F::CurrentSubnet, identity.subnet);
    Put32(p + F::DefaultGateway, identity.gateway);
    PutString(payload, F::ManufacturerName, 32, identity.vendor);
    PutString(payload, F::ModelName, 32, identity.model);
    PutString(payload, F::DeviceVersion, 32, identity.version);
    PutString(payload, F::ManufacturerInfo, 48, details.manufacturerInfo);
    PutString(payload, F::SerialNumber, 16, identity.serialNumber);
    PutString(payload, F::UserDefinedName, 16, identity.userDefinedName);
    return BuildAck(Gev::Success, Gev::DiscoveryAck, requestId, payload);
}

bool PrepareEventMessage(std::vector<uint8_t>& message, uint16_t requestId) {
    if (message.size() < Gev::kGvcpHeaderSize || message[0] != Gev::kCommandKey ||
        Get16(message.data() + 2) != Gev::EventDataCmd)
        return false;
    message[1] |= Gev::kFlagAckRequired;
    Put16(message.data() + 6, requestId);
    return true;
}

} // namespace Emulator
} // namespace Orvan
