#include "GvcpCodec.h"

#include "BigEndian.h"

#include "GevProtocol.h"

#include <cstdio>

namespace Orvan {
namespace Producer {

namespace {

// A command with its header filled in and a zeroed payload of the given size.
std::vector<uint8_t> Command(uint8_t flags, uint16_t command, size_t payloadSize,
                             uint16_t requestId) {
    std::vector<uint8_t> out(Gev::kGvcpHeaderSize + payloadSize, 0);
    out[0] = Gev::kCommandKey;
    out[1] = flags;
    Gev::Put16(&out[2], command);
    Gev::Put16(&out[4], static_cast<uint16_t>(payloadSize));
    Gev::Put16(&out[6], requestId);
    return out;
}

// Text fields are fixed-size and NUL-padded, but a camera may fill one completely.
std::string Text(const uint8_t* field, size_t size) {
    size_t length = 0;
    while (length < size && field[length] != 0)
        ++length;
    return std::string(reinterpret_cast<const char*>(field), length);
}

std::string FormatMac(uint64_t mac) {
    char text[18];
    std::snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x",
                  static_cast<unsigned>(mac >> 40) & 0xFF, static_cast<unsigned>(mac >> 32) & 0xFF,
                  static_cast<unsigned>(mac >> 24) & 0xFF, static_cast<unsigned>(mac >> 16) & 0xFF,
                  static_cast<unsigned>(mac >> 8) & 0xFF, static_cast<unsigned>(mac) & 0xFF);
    return text;
}

} // namespace

std::string FormatIp(uint32_t ip) {
    char text[16];
    std::snprintf(text, sizeof text, "%u.%u.%u.%u", ip >> 24, (ip >> 16) & 0xFF, (ip >> 8) & 0xFF,
                  ip & 0xFF);
    return text;
}

std::vector<uint8_t> BuildDiscoveryCommand(uint16_t requestId, bool broadcastAck) {
    uint8_t flags = Gev::kFlagAckRequired;
    if (broadcastAck)
        flags |= Gev::kFlagDiscoveryBroadcastAck;
    return Command(flags, Gev::DiscoveryCmd, 0, requestId);
}

std::vector<uint8_t> BuildForceIpCommand(uint16_t requestId, uint64_t mac, uint32_t ip,
                                         uint32_t subnet, uint32_t gateway) {
    namespace F = Gev::ForceIpField;
    std::vector<uint8_t> out = Command(Gev::kFlagAckRequired, Gev::ForceIpCmd, F::Size, requestId);
    const size_t base = Gev::kGvcpHeaderSize;
    Gev::Put16(&out[base + F::MacHigh], static_cast<uint16_t>(mac >> 32));
    Gev::Put32(&out[base + F::MacLow], static_cast<uint32_t>(mac));
    Gev::Put32(&out[base + F::StaticIp], ip);
    Gev::Put32(&out[base + F::StaticSubnet], subnet);
    Gev::Put32(&out[base + F::StaticGateway], gateway);
    return out;
}

std::vector<uint8_t> BuildReadRegCommand(uint16_t requestId,
                                         const std::vector<uint32_t>& addresses) {
    std::vector<uint8_t> out =
        Command(Gev::kFlagAckRequired, Gev::ReadRegCmd, 4 * addresses.size(), requestId);
    for (size_t i = 0; i < addresses.size(); ++i)
        Gev::Put32(&out[Gev::kGvcpHeaderSize + 4 * i], addresses[i]);
    return out;
}

std::vector<uint8_t>
BuildWriteRegCommand(uint16_t requestId,
                     const std::vector<std::pair<uint32_t, uint32_t>>& addressValues) {
    std::vector<uint8_t> out =
        Command(Gev::kFlagAckRequired, Gev::WriteRegCmd, 8 * addressValues.size(), requestId);
    for (size_t i = 0; i < addressValues.size(); ++i) {
        Gev::Put32(&out[Gev::kGvcpHeaderSize + 8 * i], addressValues[i].first);
        Gev::Put32(&out[Gev::kGvcpHeaderSize + 8 * i + 4], addressValues[i].second);
    }
    return out;
}

std::vector<uint8_t> BuildReadMemCommand(uint16_t requestId, uint32_t address, uint16_t count) {
    std::vector<uint8_t> out = Command(Gev::kFlagAckRequired, Gev::ReadMemCmd, 8, requestId);
    Gev::Put32(&out[Gev::kGvcpHeaderSize], address);
    Gev::Put16(&out[Gev::kGvcpHeaderSize + 6], count);
    return out;
}

std::vector<uint8_t> BuildWriteMemCommand(uint16_t requestId, uint32_t address, const uint8_t* data,
                                          size_t size) {
    std::vector<uint8_t> out =
        Command(Gev::kFlagAckRequired, Gev::WriteMemCmd, 4 + size, requestId);
    Gev::Put32(&out[Gev::kGvcpHeaderSize], address);
    std::copy(data, data + size, out.begin() + Gev::kGvcpHeaderSize + 4);
    return out;
}

std::vector<uint8_t> BuildActionCommand(uint16_t requestId, uint32_t deviceKey, uint32_t groupKey,
                                        uint32_t groupMask, uint64_t scheduledTime,
                                        bool ackRequired) {
    const bool scheduled = scheduledTime != 0;
    uint8_t flags = ackRequired ? Gev::kFlagAckRequired : 0;
    if (scheduled)
        flags |= Gev::kFlagScheduledAction;
    std::vector<uint8_t> out =
        Command(flags, Gev::ActionCmd,
                scheduled ? Gev::kScheduledActionPayloadSize : Gev::kActionPayloadSize, requestId);
    const size_t base = Gev::kGvcpHeaderSize;
    Gev::Put32(&out[base], deviceKey);
    Gev::Put32(&out[base + 4], groupKey);
    Gev::Put32(&out[base + 8], groupMask);
    if (scheduled) {
        Gev::Put32(&out[base + 12], static_cast<uint32_t>(scheduledTime >> 32));
        Gev::Put32(&out[base + 16], static_cast<uint32_t>(scheduledTime));
    }
    return out;
}

std::vector<uint8_t> BuildPacketResendCommand(uint16_t requestId, uint16_t streamChannel,
                                              uint64_t blockId, uint32_t firstPacket,
                                              uint32_t lastPacket, bool extendedId) {
    // Nobody acknowledges a resend request: the packets themselves are the answer.
    std::vector<uint8_t> out = Command(extendedId ? Gev::kFlagExtendedId : 0, Gev::PacketResendCmd,
                                       extendedId ? 20 : 12, requestId);
    const size_t base = Gev::kGvcpHeaderSize;
    Gev::Put16(&out[base], streamChannel);
    if (extendedId) {
        Gev::Put32(&out[base + 4], firstPacket);
        Gev::Put32(&out[base + 8], lastPacket);
        Gev::Put32(&out[base + 12], static_cast<uint32_t>(blockId >> 32));
        Gev::Put32(&out[base + 16], static_cast<uint32_t>(blockId));
    } else {
        Gev::Put16(&out[base + 2], static_cast<uint16_t>(blockId));
        Gev::Put32(&out[base + 4], firstPacket & 0x00FFFFFF);
        Gev::Put32(&out[base + 8], lastPacket & 0x00FFFFFF);
    }
    return out;
}

std::vector<uint8_t> BuildEventAck(uint16_t requestId, bool eventData) {
    std::vector<uint8_t> out(Gev::kGvcpHeaderSize, 0);
    Gev::Put16(&out[2], eventData ? Gev::EventDataAck : Gev::EventAck);
    Gev::Put16(&out[6], requestId);
    return out;
}

std::optional<GvcpAck> ParseAck(const uint8_t* data, size_t size) {
    if (data == nullptr || size < Gev::kGvcpHeaderSize)
        return std::nullopt;
    const uint16_t length = Gev::Get16(data + 4);
    if (length > size - Gev::kGvcpHeaderSize)
        return std::nullopt;
    GvcpAck ack;
    ack.status = Gev::Get16(data);
    ack.answer = Gev::Get16(data + 2);
    ack.ackId = Gev::Get16(data + 6);
    ack.payload = data + Gev::kGvcpHeaderSize;
    ack.payloadSize = length;
    return ack;
}

std::optional<GvcpCommandHeader> ParseCommandHeader(const uint8_t* data, size_t size) {
    if (data == nullptr || size < Gev::kGvcpHeaderSize || data[0] != Gev::kCommandKey)
        return std::nullopt;
    const uint16_t length = Gev::Get16(data + 4);
    if (length > size - Gev::kGvcpHeaderSize)
        return std::nullopt;
    GvcpCommandHeader header;
    header.flags = data[1];
    header.command = Gev::Get16(data + 2);
    header.requestId = Gev::Get16(data + 6);
    header.payload = data + Gev::kGvcpHeaderSize;
    header.payloadSize = length;
    return header;
}

AckVerdict ClassifyAck(const GvcpAck& ack, uint16_t expectedAnswer, uint16_t requestId,
                       uint32_t& pendingMs) {
    if (ack.ackId != requestId)
        return AckVerdict::Foreign;
    if (ack.answer == Gev::PendingAck) {
        if (ack.payloadSize < 4)
            return AckVerdict::Invalid;
        pendingMs = Gev::Get16(ack.payload + 2);
        return AckVerdict::Pending;
    }
    // Some cameras answer a command they do not know with a generic acknowledge; its status
    // still tells why, so only a successful answer must carry the right code.
    if (ack.answer != expectedAnswer && ack.status == Gev::Success)
        return AckVerdict::Invalid;
    return AckVerdict::Answer;
}

bool ParseReadRegAck(const GvcpAck& ack, uint32_t* values, size_t count) {
    if (ack.answer != Gev::ReadRegAck || ack.status != Gev::Success || ack.payloadSize != 4 * count)
        return false;
    for (size_t i = 0; i < count; ++i)
        values[i] = Gev::Get32(ack.payload + 4 * i);
    return true;
}

bool ParseReadMemAck(const GvcpAck& ack, uint32_t address, uint8_t* data, size_t size) {
    if (ack.answer != Gev::ReadMemAck || ack.status != Gev::Success ||
        ack.payloadSize != 4 + size || Gev::Get32(ack.payload) != address)
        return false;
    std::copy(ack.payload + 4, ack.payload + 4 + size, data);
    return true;
}

std::optional<DeviceIdentity> ParseDiscoveryAck(const uint8_t* data, size_t size,
                                                uint16_t requestId) {
    namespace F = Gev::DiscoveryField;
    std::optional<GvcpAck> ack = ParseAck(data, size);
    if (!ack || ack->answer != Gev::DiscoveryAck || ack->ackId != requestId ||
        ack->status != Gev::Success || ack->payloadSize < F::Size)
        return std::nullopt;
    const uint8_t* p = ack->payload;
    DeviceIdentity identity;
    identity.tlType = "GEV";
    identity.mac =
        (static_cast<uint64_t>(Gev::Get16(p + F::MacHigh)) << 32) | Gev::Get32(p + F::MacLow);
    const uint32_t ipConfig = Gev::Get32(p + F::IpConfigCurrent);
    identity.persistentIp = (ipConfig & Gev::kIpConfigPersistent) != 0;
    identity.dhcp = (ipConfig & Gev::kIpConfigDhcp) != 0;
    identity.lla = (ipConfig & Gev::kIpConfigLla) != 0;
    identity.ip = Gev::Get32(p + F::CurrentIp);
    identity.subnet = Gev::Get32(p + F::CurrentSubnet);
    identity.gateway = Gev::Get32(p + F::DefaultGateway);
    identity.vendor = Text(p + F::ManufacturerName, 32);
    identity.model = Text(p + F::ModelName, 32);
    identity.version = Text(p + F::DeviceVersion, 32);
    identity.serialNumber = Text(p + F::SerialNumber, 16);
    identity.userDefinedName = Text(p + F::UserDefinedName, 16);
    identity.id = identity.mac != 0 ? FormatMac(identity.mac) : FormatIp(identity.ip);
    return identity;
}

} // namespace Producer
} // namespace Orvan
