// A simulated GigE Vision camera of one model: a register space with real feature behaviour, its
// GenICam description, acquisition threads that fill the streams' buffers with test pictures,
// chunks and events, and the controls a test uses to disconnect it or spoil frames.
#ifndef ORVAN_GENTL_VIRTUAL_VIRTUALCAMERA_H
#define ORVAN_GENTL_VIRTUAL_VIRTUALCAMERA_H

#include "../RemoteDevice.h"
#include "CameraModel.h"
#include "RegisterMap.h"
#include "StreamWorker.h"

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Orvan {
namespace Producer {

class VirtualCamera : public RemoteDevice, public VirtualControls, private StreamHost {
public:
    VirtualCamera(const CameraModel& model, uint32_t index);
    ~VirtualCamera() override;

    // RemoteDevice
    const DeviceIdentity& Identity() const override;
    bool IsConnected() const override;
    GenTL::GC_ERROR ReadPort(uint64_t address, void* data, size_t* size) override;
    GenTL::GC_ERROR WritePort(uint64_t address, const void* data, size_t* size) override;
    std::string DescriptionUrl() const override;
    void DescriptionVersions(int32_t& schemaMajor, int32_t& schemaMinor, int32_t& fileMajor,
                             int32_t& fileMinor, int32_t& fileSubminor) const override;
    uint32_t StreamCount() const override;
    std::string StreamId(uint32_t index) const override;
    uint64_t PayloadSize(uint32_t index) const override;
    uint64_t TimestampFrequency() const override;
    GenTL::GC_ERROR StartStream(uint32_t index, FrameSink* sink, uint64_t maxFrames) override;
    void StopStream(uint32_t index) override;
    void SetEventSink(EventSink* sink) override;
    GenTL::GC_ERROR ActionCommand(uint32_t deviceKey, uint32_t groupKey, uint32_t groupMask,
                                  uint64_t scheduledTimeNs) override;
    GenTL::GC_ERROR ForceIp(uint32_t ip, uint32_t subnet, uint32_t gateway) override;

    // VirtualControls
    void SetConnected(bool connected) override;
    void InjectFrameFault(FrameFault fault, uint32_t count) override;

    // The description as served (an XML text, or a zip archive holding it).
    const std::vector<uint8_t>& DescriptionFile() const { return m_descriptionFile; }
    // The description as XML text, whichever form is served.
    const std::string& DescriptionXml() const { return m_descriptionXml; }
    // Defined registers, for checking the description against them.
    std::map<uint64_t, uint32_t> RegisterLayout() const;

private:
    struct StreamState {
        std::unique_ptr<StreamWorker> worker;
        bool stopping = false;
        uint64_t maxFrames = 0;
        uint64_t started = 0;          // frames started since StartStream
        uint64_t generation = 0;       // the acquisition the counters below belong to
        int64_t remaining = -1;        // frames left in this acquisition, -1 = unlimited
        std::deque<uint64_t> triggers; // times of pending triggers, 0 = at once
        uint64_t nextStartNs = 0;
        uint64_t nextFrameId = 1;
        bool busy = false; // between a frame's start and the thread's next wait
    };

    // StreamHost, called by stream threads.
    bool NextFrame(uint32_t stream, FrameOrder& order) override;
    bool SleepUntil(uint32_t stream, uint64_t timeNs) override;
    void ExtendFrame(uint32_t stream, uint32_t periods) override;
    void Notify(CameraEvent event, uint64_t frameId, uint64_t timestampNs) override;

    // Construction (VirtualCameraSetup.cpp).
    void BuildDescription();
    void InstallBehaviour();
    void InstallImageFormat();
    void InstallAcquisition();
    void InstallChunksAndEvents();
    void InstallUserSets();
    void InstallTransport();
    void InstallDevice();

    // Under m_mutex.
    FrameSettings CurrentSettings();
    EventRateSettings CurrentEventSettings();
    size_t CurrentPayloadBytes();
    bool CarriesFrames(uint32_t stream);
    double AutoExposureTime();
    double MaxFrameRate();
    double ResultingFrameRate();
    uint64_t FramePeriodNs();
    bool TriggerGated(uint32_t stream);
    void ConformGeometry();
    void StartAcquisition();
    void StopAcquisition();
    void Trigger(TriggerSource source, uint64_t timeNs);
    bool ReadyToStart(uint32_t stream, uint64_t now, uint64_t& wakeAt);
    void FillOrder(uint32_t stream, uint64_t startNs, FrameOrder& order);
    void ReplaceIdentity(const DeviceIdentity& identity);
    GenTL::GC_ERROR LoadUserSet(int64_t set);

    static uint64_t NowNs();

    const CameraModel& m_model;
    const uint32_t m_index;

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    RegisterMap m_registers;
    std::vector<StreamState> m_streams;
    std::array<std::map<std::string, std::vector<uint8_t>>, 3> m_userSets;
    std::deque<FrameFault> m_faults;
    bool m_acquiring = false;
    uint64_t m_generation = 0;
    uint64_t m_acquisitionStartNs = 0;
    uint64_t m_acquiredNs = 0; // acquisition time before the current run, for the temperature
    std::atomic<bool> m_connected{true};

    // Identity snapshots: readers keep references, so a change appends a new one.
    std::deque<DeviceIdentity> m_identities;
    std::atomic<const DeviceIdentity*> m_identity{nullptr};

    std::mutex m_eventMutex; // held while the event sink is called
    EventSink* m_eventSink = nullptr;
    uint16_t m_eventRequestId = 0;

    std::vector<uint8_t> m_descriptionFile;
    std::string m_descriptionXml;
    std::string m_url;
};

} // namespace Producer
} // namespace Orvan

#endif
