#include "DeviceRegisters.h"

#include "gige/BigEndian.h"
#include "gige/GevProtocol.h"

#include <algorithm>
#include <chrono>
#include <vector>

using Orvan::Gev::Get32;
using Orvan::Gev::Put32;

namespace Orvan {
namespace Emulator {

namespace R = Gev::Reg;
using namespace GenTL;

namespace {

constexpr uint32_t kVersion = 0x00020000; // 2.0
constexpr uint32_t kIpCapabilities =
    Gev::kIpConfigPersistent | Gev::kIpConfigDhcp | Gev::kIpConfigLla;
constexpr uint32_t kGvspCapability = 0xC0000000;    // source port shown; 16-bit ids allowed
constexpr uint32_t kMessageCapability = 0x80000000; // source port shown
constexpr uint32_t kStreamCapability = 0x00000000;
constexpr uint32_t kTickFrequency = 1000000000; // the virtual camera counts nanoseconds
constexpr uint32_t kPendingTimeoutMs = 500;
constexpr uint32_t kMinHeartbeatMs = 500;
constexpr uint32_t kGvcpCapabilities =
    Gev::kGvcpCapUserDefinedName | Gev::kGvcpCapSerialNumber | Gev::kGvcpCapHeartbeatDisable |
    Gev::kGvcpCapPrimaryApplication | Gev::kGvcpCapAction | Gev::kGvcpCapPendingAck |
    Gev::kGvcpCapEventData | Gev::kGvcpCapPacketResend | Gev::kGvcpCapWriteMem |
    Gev::kGvcpCapConcatenation;
constexpr uint32_t kPortMask = 0x0000FFFF;
constexpr uint32_t kBootstrapEnd = R::ManufacturerSpecific;
constexpr uint32_t kDefaultPacketSize = 1500;
constexpr uint32_t kMaxPacketSize = 9000; // jumbo frames

uint16_t StatusOf(GC_ERROR error, bool writing) {
    switch (error) {
    case GC_ERR_SUCCESS:
        return Gev::Success;
    case GC_ERR_INVALID_ADDRESS:
        return Gev::InvalidAddress;
    case GC_ERR_ACCESS_DENIED:
        return writing ? Gev::WriteProtect : Gev::AccessDenied;
    case GC_ERR_INVALID_VALUE:
    case GC_ERR_INVALID_PARAMETER:
        return Gev::InvalidParameter;
    default:
        return Gev::Error;
    }
}

uint64_t NowNs() {
    return uint64_t(std::chrono::duration_cast<std::chrono::nanoseconds>(
                        std::chrono::steady_clock::now().time_since_epoch())
                        .count());
}

} // namespace

DeviceRegisters::DeviceRegisters(Producer::RemoteDevice& camera, ControlPrivilege& privilege,
                                 std::vector<StreamChannel*> streams, MessageChannel& messages,
                                 const Features& features, uint32_t heartbeatTimeoutMs)
    : m_camera(camera), m_privilege(privilege), m_streams(std::move(streams)), m_messages(messages),
      m_features(features), m_defaultHeartbeatMs(heartbeatTimeoutMs) {
    Reset();
}

void DeviceRegisters::Reset() {
    const uint32_t heartbeat = std::max(m_defaultHeartbeatMs, kMinHeartbeatMs);
    // Registers the camera's side effects handle have no entry of their own (privilege, packet
    // size, source ports, action keys).
    m_values = {
        {R::Version, {kVersion, false}},
        {R::DeviceMode, {DeviceRegisters::kDeviceMode, false}},
        {R::NetworkInterfaceCapability, {kIpCapabilities, false}},
        {R::NetworkInterfaceConfiguration, {Gev::kIpConfigLla, true}},
        {R::NumberOfNetworkInterfaces, {1, false}},
        {R::PersistentIp, {0, true}},
        {R::PersistentSubnet, {0, true}},
        {R::PersistentGateway, {0, true}},
        {R::NumberOfMessageChannels, {1, false}},
        {R::NumberOfStreamChannels, {uint32_t(m_streams.size()), false}},
        {R::NumberOfActionSignals, {1, false}},
        {R::GvspCapability, {kGvspCapability, false}},
        {R::MessageChannelCapability, {kMessageCapability, false}},
        {R::GvcpCapability, {kGvcpCapabilities, false}},
        {R::HeartbeatTimeout, {heartbeat, true}},
        {R::TimestampTickFrequencyHigh, {0, false}},
        {R::TimestampTickFrequencyLow, {kTickFrequency, false}},
        {R::TimestampControl, {0, true}},
        {R::TimestampValueHigh, {0, false}},
        {R::TimestampValueLow, {0, false}},
        {R::DiscoveryAckDelay, {0, false}},
        {R::GvcpConfiguration, {0, true}},
        {R::PendingTimeout, {kPendingTimeoutMs, false}},
        {R::ControlSwitchoverKey, {0, true}},
        {R::GvspConfiguration, {0, true}},
        {R::MessageChannelPort, {0, true}},
        {R::MessageChannelDestination, {0, true}},
        {R::MessageChannelTransmissionTimeout, {300, true}},
        {R::MessageChannelRetryCount, {3, true}},
    };
    for (uint32_t channel = 0; channel < m_streams.size(); ++channel) {
        const uint32_t base = channel * R::StreamChannelStride;
        m_values[base + R::StreamChannelPort] = {0, true};
        m_values[base + R::StreamChannelPacketDelay] = {0, true};
        m_values[base + R::StreamChannelDestination] = {0, true};
        m_values[base + R::StreamChannelCapability] = {kStreamCapability, false};
        m_values[base + R::StreamChannelConfiguration] = {0, true};
    }
    m_packetSizes.assign(m_streams.size(), kDefaultPacketSize);
    m_packetSizeFlags.assign(m_streams.size(), 0);
    m_privilege.Release();
    m_privilege.SetHeartbeatTimeoutMs(heartbeat);
    m_privilege.SetHeartbeatDisabled(false);
    ApplyStreams();
    ApplyMessages();
}

void DeviceRegisters::ReleaseControl() {
    m_privilege.Release();
    for (uint32_t channel = 0; channel < m_streams.size(); ++channel)
        Value(R::StreamChannelPort + channel * R::StreamChannelStride) = 0;
    Value(R::MessageChannelPort) = 0;
    ApplyStreams();
    ApplyMessages();
    if (m_features.acquisitionStop.Found())
        WriteFeature(m_features.acquisitionStop, 1);
}

bool DeviceRegisters::ExtendedIds() const {
    return (m_values.at(R::GvspConfiguration).value & Gev::kGvspConfigExtendedId) != 0;
}

bool DeviceRegisters::ActionMatches(uint32_t deviceKey, uint32_t groupKey, uint32_t groupMask) {
    return deviceKey == m_actionDeviceKey &&
           groupKey == uint32_t(ReadFeature(m_features.actionGroupKey)) &&
           (groupMask & uint32_t(ReadFeature(m_features.actionGroupMask))) != 0;
}

int DeviceRegisters::StreamChannelOf(uint32_t address, uint32_t& reg) const {
    if (address < R::StreamChannelPort)
        return -1;
    const uint32_t channel = (address - R::StreamChannelPort) / R::StreamChannelStride;
    if (channel >= m_streams.size())
        return -1;
    reg = address - channel * R::StreamChannelStride;
    return int(channel);
}

uint32_t DeviceRegisters::PacketSize(size_t channel) {
    const uint32_t feature = channel == 0 ? uint32_t(ReadFeature(m_features.packetSize)) : 0;
    return feature ? feature : m_packetSizes[channel];
}

void DeviceRegisters::ApplyStream(size_t channel) {
    const uint32_t base = uint32_t(channel) * R::StreamChannelStride;
    const Endpoint destination{Value(base + R::StreamChannelDestination),
                               uint16_t(Value(base + R::StreamChannelPort) & kPortMask)};
    m_streams[channel]->Configure(destination, PacketSize(channel), ExtendedIds());
}

void DeviceRegisters::ApplyStreams() {
    for (size_t channel = 0; channel < m_streams.size(); ++channel)
        ApplyStream(channel);
}

void DeviceRegisters::ApplyMessages() {
    m_messages.Configure(
        {Value(R::MessageChannelDestination), uint16_t(Value(R::MessageChannelPort) & kPortMask)},
        Value(R::MessageChannelTransmissionTimeout), Value(R::MessageChannelRetryCount));
}

uint64_t DeviceRegisters::ReadFeature(const FeatureRegister& feature) {
    uint8_t bytes[8] = {};
    size_t size = std::min<size_t>(feature.length, sizeof bytes);
    if (!feature.Found() || m_camera.ReadPort(feature.address, bytes, &size) != GC_ERR_SUCCESS)
        return 0;
    uint64_t value = 0;
    for (size_t i = 0; i < size; ++i)
        value = value << 8 | bytes[i];
    return value;
}

uint16_t DeviceRegisters::WriteFeature(const FeatureRegister& feature, uint64_t value) {
    if (!feature.Found() || feature.length > 8)
        return Gev::InvalidAddress;
    uint8_t bytes[8];
    for (size_t i = 0; i < feature.length; ++i)
        bytes[i] = uint8_t(value >> (8 * (feature.length - 1 - i)));
    size_t size = feature.length;
    return StatusOf(m_camera.WritePort(feature.address, bytes, &size), true);
}

uint16_t DeviceRegisters::ReadCamera(uint64_t address, uint8_t* out, size_t size) {
    size_t done = size;
    return StatusOf(m_camera.ReadPort(address, out, &done), false);
}

uint16_t DeviceRegisters::WriteCamera(uint64_t address, const uint8_t* data, size_t size) {
    size_t done = size;
    const uint16_t status = StatusOf(m_camera.WritePort(address, data, &done), true);
    if (status == Gev::Success && address == m_features.packetSize.address && !m_streams.empty())
        ApplyStream(0);
    return status;
}

uint16_t DeviceRegisters::ReadWord(uint32_t address, uint32_t& value) {
    const Endpoint primary = m_privilege.Primary();
    uint32_t reg = 0;
    const int channel = StreamChannelOf(address, reg);
    if (channel >= 0 && reg == R::StreamChannelPacketSize) {
        value = m_packetSizeFlags[channel] | (PacketSize(channel) & kPortMask);
        return Gev::Success;
    }
    if (channel >= 0 && reg == R::StreamChannelSourcePort) {
        value = m_streams[channel]->SourcePort();
        return Gev::Success;
    }
    switch (address) {
    case R::ControlChannelPrivilege:
        value = m_privilege.Value();
        return Gev::Success;
    case R::PrimaryApplicationPort:
        value = primary.port;
        return Gev::Success;
    case R::PrimaryApplicationIp:
        value = primary.ip;
        return Gev::Success;
    case R::MessageChannelSourcePort:
        value = m_messages.SourcePort();
        return Gev::Success;
    case R::ActionDeviceKey:
        return Gev::AccessDenied; // write-only
    case R::ActionGroupKey:
        value = uint32_t(ReadFeature(m_features.actionGroupKey));
        return Gev::Success;
    case R::ActionGroupMask:
        value = uint32_t(ReadFeature(m_features.actionGroupMask));
        return Gev::Success;
    }
    const auto owned = m_values.find(address);
    if (owned != m_values.end()) {
        value = owned->second.value;
        return Gev::Success;
    }
    uint8_t bytes[4];
    const uint16_t status = ReadCamera(address, bytes, 4);
    value = Get32(bytes);
    return status;
}

// A size the camera cannot send is refused, and so is the test packet asked for with it.
uint16_t DeviceRegisters::WritePacketSize(size_t channel, uint32_t value) {
    const uint32_t size = value & kPortMask;
    if (channel == 0 && m_features.packetSize.Found()) {
        if (size != (PacketSize(0) & kPortMask)) {
            const uint16_t status = WriteFeature(m_features.packetSize, size);
            if (status != Gev::Success)
                return status;
        }
    } else if (size < Gev::kMinPacketSize || size > kMaxPacketSize || size % 4 != 0) {
        return Gev::InvalidParameter;
    } else {
        m_packetSizes[channel] = size;
    }
    m_packetSizeFlags[channel] =
        value & (Gev::kPacketSizeDoNotFragment | Gev::kPacketSizeBigEndian);
    ApplyStream(channel);
    if (value & Gev::kPacketSizeFireTestPacket)
        m_streams[channel]->SendTestPacket();
    return Gev::Success;
}

uint16_t DeviceRegisters::WriteWord(uint32_t address, uint32_t value, const Endpoint& from) {
    uint32_t reg = 0;
    const int channel = StreamChannelOf(address, reg);
    if (channel >= 0 && reg == R::StreamChannelPacketSize)
        return WritePacketSize(size_t(channel), value);
    switch (address) {
    case R::ControlChannelPrivilege: {
        const bool held = m_privilege.Held();
        const uint16_t status = m_privilege.Write(from, value, ControlPrivilege::Clock::now());
        if (status == Gev::Success && held && !m_privilege.Held())
            ReleaseControl();
        return status;
    }
    case R::ActionDeviceKey: {
        const uint16_t status = WriteFeature(m_features.actionDeviceKey, value);
        if (status == Gev::Success)
            m_actionDeviceKey = value;
        return status;
    }
    case R::ActionGroupKey:
        return WriteFeature(m_features.actionGroupKey, value);
    case R::ActionGroupMask:
        return WriteFeature(m_features.actionGroupMask, value);
    }
    const auto owned = m_values.find(address);
    if (owned == m_values.end()) {
        uint8_t bytes[4];
        Put32(bytes, value);
        return WriteCamera(address, bytes, 4);
    }
    if (!owned->second.writable)
        return Gev::WriteProtect;
    switch (address) {
    case R::HeartbeatTimeout:
        value = std::max(value, kMinHeartbeatMs);
        m_privilege.SetHeartbeatTimeoutMs(value);
        break;
    case R::GvcpConfiguration:
        m_privilege.SetHeartbeatDisabled((value & Gev::kGvcpConfigHeartbeatDisable) != 0);
        break;
    case R::TimestampControl:
        if (value & Gev::kTimestampLatch) {
            const uint64_t now = NowNs();
            Value(R::TimestampValueHigh) = uint32_t(now >> 32);
            Value(R::TimestampValueLow) = uint32_t(now);
        }
        value = 0; // the control bits act once and read back as zero
        break;
    }
    owned->second.value = value;
    if (channel >= 0)
        ApplyStream(size_t(channel));
    else if (address == R::GvspConfiguration)
        ApplyStreams();
    else if (address >= R::MessageChannelPort && address <= R::MessageChannelSourcePort)
        ApplyMessages();
    return Gev::Success;
}

uint16_t DeviceRegisters::Read(uint32_t address, uint8_t* out, size_t size) {
    if (address % 4 != 0)
        return Gev::BadAlignment;
    if (address >= kBootstrapEnd) {
        const uint16_t status = ReadCamera(address, out, size);
        if (status == Gev::Success || size <= 4)
            return status;
        // A block running past the last register (a description whose size is no multiple of
        // the block size): what exists is read, the rest reads as zero, as on a real camera.
        std::fill(out, out + size, 0);
        for (size_t offset = 0; offset < size; offset += 4) {
            const uint16_t word =
                ReadCamera(address + offset, out + offset, std::min<size_t>(4, size - offset));
            if (word != Gev::Success && offset == 0)
                return word;
        }
        return Gev::Success;
    }
    if (size % 4 != 0)
        return Gev::BadAlignment;
    for (size_t offset = 0; offset < size; offset += 4) {
        uint32_t value = 0;
        const uint16_t status = ReadWord(uint32_t(address + offset), value);
        // A single register must exist; in a block, unused bootstrap space reads as zero.
        if (status != Gev::Success && (size == 4 || status != Gev::InvalidAddress))
            return status;
        Put32(out + offset, status == Gev::Success ? value : 0);
    }
    return Gev::Success;
}

uint16_t DeviceRegisters::Write(uint32_t address, const uint8_t* data, size_t size,
                                const Endpoint& from) {
    if (address % 4 != 0)
        return Gev::BadAlignment;
    if (address >= kBootstrapEnd)
        return WriteCamera(address, data, size);
    if (size % 4 != 0)
        return Gev::BadAlignment;
    for (size_t offset = 0; offset < size; offset += 4) {
        const uint16_t status = WriteWord(uint32_t(address + offset), Get32(data + offset), from);
        if (status != Gev::Success)
            return status;
    }
    return Gev::Success;
}

} // namespace Emulator
} // namespace Orvan
