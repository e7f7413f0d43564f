// The library's device: one opened camera with its node maps, data streams, buffer delivery,
// image callbacks and camera events.
#ifndef ORVAN_DEVICE_DEVICE_H
#define ORVAN_DEVICE_DEVICE_H

#include "StreamInfo.h"
#include "core/EventSlot.h"
#include "core/Port.h"
#include "core/TLDevice.h"
#include "core/TLEvent.h"

#include <Orvan/IDevice.h>

#include <GenApi/INode.h>
#include <GenApi/NodeMapFactory.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

namespace GenApi {
class CChunkAdapterGEV;
class CEventAdapterGEV;
} // namespace GenApi

namespace Orvan {

class Buffer;

class Device : public IDevice {
public:
    // A placeholder without streams or node maps.
    Device();
    // Loads the camera description through the remote port, builds the node maps and opens
    // every data stream. tlDevice stays the caller's.
    Device(TLDevice* tlDevice, Interface* iface);
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    bool IsConnected() override;
    void StartStream(size_t numBuffers) override;
    void StopStream() override;
    IImage* GetImage(uint64_t timeout) override;
    ICompressedImage* GetCompressedImage(uint64_t timeout) override;
    IBuffer* GetBuffer(uint64_t timeout) override;
    void RequeueBuffer(IBuffer* buffer) override;
    void WaitForNextLeader(uint64_t timeout) override;
    void ResetWaitForNextLeader() override;
    void InitializeEvents() override;
    void DeinitializeEvents() override;
    void WaitOnEvent(uint64_t timeout) override;
    GenApi::INodeMap* GetNodeMap() override;
    GenApi::INodeMap* GetTLDeviceNodeMap() override;
    GenApi::INodeMap* GetTLStreamNodeMap() override;
    GenApi::INodeMap* GetTLInterfaceNodeMap() override;
    void SendActionCommand(uint32_t deviceKey, uint32_t groupKey, uint32_t groupMask,
                           uint64_t actionTime) override;
    void RegisterImageCallback(IImageCallback* callback) override;
    void DeregisterImageCallback(IImageCallback* callback) override;
    void DeregisterAllImageCallbacks() override;
    std::vector<uint8_t> GetNextEvsTriggerEvent(uint64_t timeout) override;
    void DownloadXml() override;
    ~Device() override;

    GenApi::INodeMap* GetTLStreamNodeMap(int stream) override;
    void StartStream(int stream, size_t numBuffers) override;
    void StopStream(int stream) override;
    ICompressedImage* GetCompressedImage(int stream, uint64_t timeout) override;
    IImage* GetImage(int stream, uint64_t timeout) override;
    IBuffer* GetBuffer(int stream, uint64_t timeout) override;
    void RequeueBuffer(int stream, IBuffer* buffer) override;
    void WaitForNextLeader(int stream, uint64_t timeout) override;
    void ResetWaitForNextLeader(int stream) override;

    void ImageCallbackThread() override;
    void ResetInterface() override;
    Interface* GetInterface() override;
    void StartStreamEVS(int stream, size_t numBuffers) override;
    void StopStreamEVS(int stream) override;

    // The module the system opened for this device; the system closes it after deleting the
    // device.
    TLDevice* GetTLDevice() const { return m_tlDevice; }

private:
    // Construction steps, run under the device mutex.
    void LoadDescription();
    void EnumerateStreams();
    void ApplyEventRateControl();
    void ApplyScanType();
    void RegisterNodeCallbacks();
    // Undoes what construction built so far; also the destructor's second half.
    void Release() noexcept;

    void MultipartStreamCallback(GenApi::INode* node);
    bool HasControl();
    uint32_t SelectStream();
    void CheckHasStreams(const char* function);
    StreamInfo* Stream(int stream, const char* function);

    // Start and stop steps (device mutex held).
    size_t BufferSize(int64_t payload, int64_t height);
    size_t AutomaticBufferCount(size_t bufferSize);
    void AnnounceBuffers(StreamInfo* info, size_t count, size_t bufferSize);
    void SetupResendParameters(StreamInfo* info);
    void RegisterNewBufferEvent(int stream, StreamInfo* info);
    void StartAcquisition(int stream, StreamInfo* info, size_t count);
    void AbortStartedStream(int stream, StreamInfo* info) noexcept;
    void DeleteNewBufferEvent(int stream) noexcept;
    void RestorePacketSize();
    void StartCallbackThreadIfNeeded();
    void StopCallbackThread();
    void DeliverToCallbacks(IBuffer* buffer);
    void PauseCallbackThread(std::chrono::milliseconds pause);

    // A delivered buffer the application holds: the interface it was handed out as, the
    // object, and the chunk node map made for it (or null).
    struct Outstanding {
        int stream = 0;
        IBuffer* object = nullptr;
        Buffer* buffer = nullptr;
        GenApi::INodeMap* chunkNodeMap = nullptr;
    };
    EventSlot& NewBufferEvent(int stream);
    IBuffer* WrapBuffer(int stream, void* bufferHandle);
    IBuffer* Track(const Outstanding& entry);
    static void Discard(const Outstanding& entry) noexcept;
    void DiscardOutstanding(int stream) noexcept;

    TLDevice* m_tlDevice = nullptr;
    Interface* m_interface = nullptr;
    GenApi::INodeMap* m_tlDeviceNodeMap = nullptr;
    GenApi::INodeMap* m_nodeMap = nullptr;
    std::unique_ptr<TLBase> m_remoteModule; // the remote port as a module the port can read
    Port m_tlDevicePort;
    Port m_remotePort;
    std::vector<StreamInfo*> m_streams;                        // owned
    std::vector<std::unique_ptr<EventSlot>> m_newBufferEvents; // one a stream; empty while stopped
    GenApi::CChunkAdapterGEV* m_chunkAdapter = nullptr;
    GenApi::CNodeMapFactory m_chunkFactory;
    std::mutex m_deviceMutex;
    std::mutex m_callbackMutex;    // taken after m_deviceMutex
    std::mutex m_eventMutex;       // switching camera events on and off
    std::mutex m_deliveryMutex;    // the event adapter
    std::mutex m_outstandingMutex; // m_outstanding and the device's chunk adapter
    std::unordered_map<const void*, Outstanding> m_outstanding;
    std::vector<IImageCallback*> m_imageCallbacks;
    std::thread m_callbackThread;
    std::atomic<bool> m_callbackRun{false};
    EventSlot m_deviceEvent;
    GenApi::CEventAdapterGEV* m_eventAdapter = nullptr;
    EventSlot m_evsTriggerEvent; // while the event-based-sensor stream runs
    std::string m_xml;
    int64_t m_savedPacketSize = -1;
    // Written by the multipart node callback inside the node map's lock, read anywhere.
    std::atomic<uint32_t> m_selectedStream{0};
    GenApi::CallbackHandleType m_multipartCallback = 0;
};

} // namespace Orvan

#endif
