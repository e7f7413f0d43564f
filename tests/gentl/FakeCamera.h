// A stand-in camera behind the producer's RemoteDevice seam, so the GenTL layer is tested
// without the virtual cameras: it fills buffers with a frame counter, optionally with GigE
// Vision chunks or as a multipart payload, and records what the producer asked of it.
#ifndef ORVAN_TESTS_GENTL_FAKECAMERA_H
#define ORVAN_TESTS_GENTL_FAKECAMERA_H

#include "RemoteDevice.h"

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

namespace Orvan {
namespace Producer {

class FakeCamera : public RemoteDevice, public VirtualControls {
public:
    struct Options {
        uint32_t width = 64;
        uint32_t height = 8;
        uint32_t streams = 1;
        std::chrono::microseconds period{200}; // 0: as fast as buffers come
        bool chunks = false;                   // image chunk, then an 8-byte frame-id chunk
        uint32_t parts = 0;                    // multipart payload of this many images
    };

    static constexpr uint32_t kImageChunkId = 0xA5A5A5A5;
    static constexpr uint32_t kFrameIdChunkId = 0x1001;

    FakeCamera(uint32_t index, const Options& options);
    ~FakeCamera() override;

    const DeviceIdentity& Identity() const override { return m_identity; }
    bool IsConnected() const override { return m_connected.load(); }
    GenTL::GC_ERROR ReadPort(uint64_t address, void* data, size_t* size) override;
    GenTL::GC_ERROR WritePort(uint64_t address, const void* data, size_t* size) override;
    std::string DescriptionUrl() const override;
    void DescriptionVersions(int32_t& schemaMajor, int32_t& schemaMinor, int32_t& fileMajor,
                             int32_t& fileMinor, int32_t& fileSubminor) const override;
    uint32_t StreamCount() const override { return m_options.streams; }
    std::string StreamId(uint32_t index) const override;
    uint64_t PayloadSize(uint32_t index) const override;
    uint64_t TimestampFrequency() const override { return 1000000000; }
    GenTL::GC_ERROR StartStream(uint32_t index, FrameSink* sink, uint64_t maxFrames) override;
    void StopStream(uint32_t index) override;
    void SetEventSink(EventSink* sink) override;
    GenTL::GC_ERROR ActionCommand(uint32_t deviceKey, uint32_t groupKey, uint32_t groupMask,
                                  uint64_t scheduledTimeNs) override;
    GenTL::GC_ERROR ForceIp(uint32_t ip, uint32_t subnet, uint32_t gateway) override;

    void SetConnected(bool connected) override { m_connected.store(connected); }
    void InjectFrameFault(FrameFault fault, uint32_t count) override;

    // Sends a GigE Vision EVENTDATA message with that event id through the event sink.
    void FireEvent(uint16_t eventId);
    void SendStreamEvent(uint32_t stream, int32_t type, const std::vector<uint8_t>& data);
    uint32_t LastActionDeviceKey() const { return m_actionDeviceKey.load(); }
    uint64_t ImageBytes() const { return uint64_t(m_options.width) * m_options.height; }

private:
    struct Worker {
        std::thread thread;
        std::atomic<bool> running{false};
        FrameSink* sink = nullptr;
        uint64_t maxFrames = 0;
    };

    void Run(uint32_t index);
    void Fill(uint8_t* data, size_t size, uint64_t frameId, FrameInfo& info) const;
    bool TakeFault(FrameFault& fault);

    Options m_options;
    DeviceIdentity m_identity;
    std::atomic<bool> m_connected{true};
    std::vector<uint8_t> m_registers;
    std::string m_description;
    std::vector<uint8_t> m_pattern;
    std::vector<std::unique_ptr<Worker>> m_workers;
    mutable std::mutex m_mutex; // registers, sinks, faults
    EventSink* m_eventSink = nullptr;
    FrameFault m_fault = FrameFault::Drop;
    uint32_t m_faultCount = 0;
    std::atomic<uint32_t> m_actionDeviceKey{0};
};

} // namespace Producer
} // namespace Orvan

#endif
