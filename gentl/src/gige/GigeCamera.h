// A GigE Vision camera on the network as the producer's modules see it: control privilege
// taken and kept alive by a heartbeat, its register space and description over GVCP, its
// stream channels feeding GVSP receivers and its message channel feeding events.
#ifndef ORVAN_GENTL_GIGE_GIGECAMERA_H
#define ORVAN_GENTL_GIGE_GIGECAMERA_H

#include "../RemoteDevice.h"
#include "CameraFeatureReader.h"
#include "GevProtocol.h"
#include "GvcpChannel.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace Orvan {
namespace Producer {

class GigeMessageChannel;
class GigeStreamChannel;

class GigeCamera : public RemoteDevice {
public:
    // identity from discovery; localIp = the host interface address it was found on; port =
    // the camera's GVCP port (tests run cameras on other ports).
    GigeCamera(const DeviceIdentity& identity, uint32_t localIp, uint16_t port = Gev::kGvcpPort,
               GvcpChannel::Options options = {});
    ~GigeCamera() override;

    // Rediscovery: new address data for the same camera (same MAC); a lost camera that answers
    // again comes back, with the privilege it had if it was open.
    void Rediscovered(const DeviceIdentity& identity, uint32_t localIp);
    // Connection changes (heartbeat loss, return) are reported through this callback so that
    // the device module can raise its events. Called from the heartbeat or a discovery thread.
    void SetConnectionCallback(std::function<void(bool connected)> callback);
    // Where ForceIp broadcasts besides the camera's current address (the interface's directed
    // broadcast address).
    void SetBroadcastAddress(uint32_t broadcast);

    const DeviceIdentity& Identity() const override;
    bool IsConnected() const override;
    GenTL::GC_ERROR Open(GenTL::DEVICE_ACCESS_FLAGS flags) override;
    void Close() override;
    // 0 in the privilege register: READWRITE; exclusive holder elsewhere: BUSY; control
    // holder elsewhere (reading still allowed): READONLY; opened here: OPEN_READWRITE or
    // OPEN_READONLY; no answer: NOACCESS (the camera exists but cannot be reached from here).
    int32_t QueryAccessStatus() const override;

    GenTL::GC_ERROR ReadPort(uint64_t address, void* data, size_t* size) override;
    GenTL::GC_ERROR WritePort(uint64_t address, const void* data, size_t* size) override;
    // The first URL register as the camera holds it; the description loaders handle local
    // (plain or zipped), file, and refuse web addresses with their own message.
    std::string DescriptionUrl() const override;
    // From the URL's "SchemaVersion=" query and a file name ending in _<major>_<minor>_<sub>;
    // zeros where the URL does not say.
    void DescriptionVersions(int32_t& schemaMajor, int32_t& schemaMinor, int32_t& fileMajor,
                             int32_t& fileMinor, int32_t& fileSubminor) const override;

    uint32_t StreamCount() const override;
    std::string StreamId(uint32_t index) const override;
    // The camera's PayloadSize feature, read through its description on every call.
    uint64_t PayloadSize(uint32_t index) const override;
    uint64_t TimestampFrequency() const override;

    GenTL::GC_ERROR StartStream(uint32_t index, FrameSink* sink, uint64_t maxFrames) override;
    void StopStream(uint32_t index) override;
    void ConfigureResend(uint32_t index, const ResendSettings& settings) override;
    bool GetStreamStatistics(uint32_t index, StreamStatistics& out) const override;
    void ConfigureReceive(uint32_t index, const ReceiveSettings& settings) override;
    bool GetReceiveInUse(uint32_t index, ReceiveSettings& out) const override;

    void SetEventSink(EventSink* sink) override;

    GenTL::GC_ERROR ActionCommand(uint32_t deviceKey, uint32_t groupKey, uint32_t groupMask,
                                  uint64_t scheduledTimeNs) override;
    GenTL::GC_ERROR ForceIp(uint32_t ip, uint32_t subnet, uint32_t gateway) override;

private:
    std::shared_ptr<GvcpChannel> Channel() const;
    // The channel when the camera is connected; otherwise null with the last error set.
    std::shared_ptr<GvcpChannel> Reachable() const;
    GenTL::GC_ERROR Report(GenTL::GC_ERROR status, const GvcpChannel& channel) const;
    GenTL::GC_ERROR TakePrivilege(GvcpChannel& channel, uint32_t privilege);
    void ReadHeartbeatTimeout(GvcpChannel& channel);
    void StartHeartbeat();
    void StopHeartbeat();
    void HeartbeatLoop();
    void SetConnected(bool connected);
    std::string ReadUrl() const;
    // Created on first use; kept across runs so that statistics and resend settings last.
    GigeStreamChannel& Stream(uint32_t index, uint32_t localIp);
    template <typename Settings>
    void ConfigureStream(uint32_t index, const Settings& settings);
    // False when the stream channel was never made.
    template <typename Value>
    bool ReadStream(uint32_t index, Value (GigeStreamChannel::*read)() const, Value& out) const;
    // Packet sizes are negotiated at stream start unless the application chose one: a size
    // other than the channel had when the camera was opened, or than the last negotiation set.
    void RecordPacketSizes(GvcpChannel& channel);
    void NegotiatePacketSize(GvcpChannel& channel, uint32_t index);
    void SetPacketSizeFeature(uint32_t size);

    mutable std::mutex m_mutex;
    std::shared_ptr<const DeviceIdentity> m_identity;
    // Identities replaced by rediscovery stay alive: callers hold references from Identity().
    std::vector<std::shared_ptr<const DeviceIdentity>> m_formerIdentities;
    const uint16_t m_port;
    const GvcpChannel::Options m_options;
    uint32_t m_localIp;
    uint32_t m_broadcast = 0;
    std::shared_ptr<GvcpChannel> m_channel;
    std::function<void(bool)> m_connectionCallback;
    std::atomic<bool> m_connected{true};

    bool m_open = false;
    uint32_t m_privilege = 0; // what Open asked for: exclusive, control or 0 (read-only)
    std::map<uint32_t, uint32_t> m_automaticPacketSizes; // by channel
    uint32_t m_heartbeatMs = 3000;
    std::thread m_heartbeat;
    bool m_stopHeartbeat = false;
    bool m_heartbeatChanged = false;
    std::condition_variable m_heartbeatWake;

    mutable std::unique_ptr<CameraFeatureReader> m_features;
    mutable std::mutex m_streamCountMutex;
    mutable uint32_t m_streamCount = 0;
    mutable bool m_streamCountKnown = false;

    mutable std::mutex m_streamsMutex;
    std::map<uint32_t, std::unique_ptr<GigeStreamChannel>> m_streams; // by index
    std::mutex m_messageMutex;
    std::unique_ptr<GigeMessageChannel> m_messages;
};

} // namespace Producer
} // namespace Orvan

#endif
