// The register space the emulated camera serves: the GigE Vision bootstrap registers the
// virtual camera lacks (versions, capabilities, heartbeat, timestamps, control privilege,
// message and stream channels, action keys) laid over the virtual camera's own register space,
// with the side effects of writing them. There is a stream channel for each of the virtual
// camera's streams; the first one's packet size is the camera's packet-size feature.
#ifndef ORVAN_TOOLS_GIGE_CAMERA_DEVICEREGISTERS_H
#define ORVAN_TOOLS_GIGE_CAMERA_DEVICEREGISTERS_H

#include "ControlPrivilege.h"
#include "FeatureRegister.h"
#include "MessageChannel.h"
#include "RemoteDevice.h"
#include "StreamChannel.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace Orvan {
namespace Emulator {

class DeviceRegisters {
public:
    static constexpr uint32_t kDeviceMode = 0x80000001; // big-endian transmitter, UTF-8 strings

    // Features of the camera's description that bootstrap registers share.
    struct Features {
        FeatureRegister packetSize;      // stream channel packet size
        FeatureRegister actionDeviceKey; // action keys and group mask of action group 0
        FeatureRegister actionGroupKey;
        FeatureRegister actionGroupMask;
        FeatureRegister acquisitionStop; // stopped when the controlling application goes
    };

    DeviceRegisters(Producer::RemoteDevice& camera, ControlPrivilege& privilege,
                    std::vector<StreamChannel*> streams, MessageChannel& messages,
                    const Features& features, uint32_t heartbeatTimeoutMs);

    // Power-on values; the channels are closed.
    void Reset();
    // The controlling application is gone: its channels close and acquisition stops.
    void ReleaseControl();

    // READREG/READMEM and WRITEREG/WRITEMEM data, big-endian; a GVCP status.
    uint16_t Read(uint32_t address, uint8_t* out, size_t size);
    uint16_t Write(uint32_t address, const uint8_t* data, size_t size, const Endpoint& from);

    bool ExtendedIds() const;
    // Whether an action command with these keys is meant for this camera.
    bool ActionMatches(uint32_t deviceKey, uint32_t groupKey, uint32_t groupMask);

private:
    uint16_t ReadWord(uint32_t address, uint32_t& value);
    uint16_t WriteWord(uint32_t address, uint32_t value, const Endpoint& from);
    uint16_t ReadCamera(uint64_t address, uint8_t* out, size_t size);
    uint16_t WriteCamera(uint64_t address, const uint8_t* data, size_t size);
    uint64_t ReadFeature(const FeatureRegister& feature);
    uint16_t WriteFeature(const FeatureRegister& feature, uint64_t value);
    // The stream channel a register belongs to, or -1; reg becomes its first channel's address.
    int StreamChannelOf(uint32_t address, uint32_t& reg) const;
    uint32_t PacketSize(size_t channel);
    uint16_t WritePacketSize(size_t channel, uint32_t value);
    void ApplyStream(size_t channel);
    void ApplyStreams();
    void ApplyMessages();
    uint32_t& Value(uint32_t address) { return m_values[address].value; }

    struct Owned {
        uint32_t value = 0;
        bool writable = false;
    };

    Producer::RemoteDevice& m_camera;
    ControlPrivilege& m_privilege;
    const std::vector<StreamChannel*> m_streams;
    MessageChannel& m_messages;
    const Features m_features;
    const uint32_t m_defaultHeartbeatMs;
    std::map<uint32_t, Owned> m_values;
    // Per stream channel: the size of channels without a feature of their own, and the bits of
    // the packet size register besides the size.
    std::vector<uint32_t> m_packetSizes;
    std::vector<uint32_t> m_packetSizeFlags;
    uint32_t m_actionDeviceKey = 0; // write-only on the camera, so remembered here
};

} // namespace Emulator
} // namespace Orvan

#endif
