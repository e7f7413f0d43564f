// A data stream module (DS_HANDLE): the buffers, acquisition start and stop, and the sink the
// camera fills buffers through.
#ifndef ORVAN_GENTL_DATASTREAM_H
#define ORVAN_GENTL_DATASTREAM_H

#include "BufferPool.h"
#include "LocalPort.h"
#include "Module.h"
#include "RemoteDevice.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Orvan {
namespace Producer {

class Device;

class DataStream : public Module, public FrameSink {
public:
    // What DSSetupResendRetryParams stores; shown in the stream's node map.
    struct ResendParameters {
        uint64_t frameCount = 0;
        double frameRate = 0;
        std::string serialNumber;
        std::string firmwareVersion;
        int64_t width = 0;
        int64_t height = 0;
    };

    static std::shared_ptr<DataStream> Create(const std::shared_ptr<Device>& parent,
                                              std::shared_ptr<RemoteDevice> camera, uint32_t index);
    ~DataStream() override;

    GenTL::DS_HANDLE Handle() const { return m_handle; }
    GenTL::DEV_HANDLE ParentHandle() const { return m_parentHandle; }
    Port& GetPort() override { return m_port; }
    void Close();

    BufferPool& Pool() { return *m_pool; }
    void* AllocAndAnnounce(size_t size, void* userPointer);
    void Start(uint64_t frameLimit);
    void Stop();
    InfoValue Info(GenTL::STREAM_INFO_CMD cmd) const;
    void SetResendParameters(const ResendParameters& parameters);
    ResendParameters GetResendParameters() const;

    bool AcquireBuffer(FillSlot& slot) override { return m_pool->Acquire(slot); }
    void Deliver(const FillSlot& slot, const FrameInfo& info) override {
        m_pool->Deliver(slot, info);
    }
    void Return(const FillSlot& slot) override { m_pool->Return(slot); }
    void SignalLeader() override { m_pool->SignalLeader(); }
    void CountLostFrame() override { m_pool->CountLost(); }
    void DeliverStreamEvent(int32_t eventType, const void* data, size_t size) override;

protected:
    std::shared_ptr<Event> MakeEvent(GenTL::EVENT_TYPE type) override;

private:
    DataStream(std::shared_ptr<RemoteDevice> camera, uint32_t index);
    void Describe();
    void DescribeReceive(ModuleDescription& description);

    const std::shared_ptr<RemoteDevice> m_camera;
    const uint32_t m_index;
    const std::string m_id;
    std::weak_ptr<Device> m_parent;
    GenTL::DEV_HANDLE m_parentHandle = nullptr;
    GenTL::DS_HANDLE m_handle = nullptr;
    std::shared_ptr<BufferPool> m_pool;
    LocalPort m_port;

    std::mutex m_controlMutex; // start, stop and close, one at a time
    bool m_closed = false;     // guarded by m_controlMutex
    mutable std::mutex m_settingsMutex;
    ResendParameters m_resend;
    ReceiveSettings m_receive; // handed to the camera at every start
    std::atomic<int64_t> m_multipartParts{1};
    std::atomic<int64_t> m_evsFormat{0};
    std::atomic<int64_t> m_evsBitDepth{8};
};

} // namespace Producer
} // namespace Orvan

#endif
