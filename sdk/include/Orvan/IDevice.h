// An opened camera: its node maps, its streams, image delivery, callbacks and device events.
#ifndef ORVAN_IDEVICE_H
#define ORVAN_IDEVICE_H

#include <Orvan/IBuffer.h>
#include <Orvan/ICompressedImage.h>
#include <Orvan/IImage.h>
#include <Orvan/IImageCallback.h>

#include <GenApi/INodeMap.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Orvan {

class Interface;

// Asks StartStream for a buffer count sized to 40 ms of the device's maximum throughput.
constexpr size_t kAutomaticBufferCount = 0xFFFFFFFF;

class IDevice {
public:
    virtual bool IsConnected() = 0;
    // Starts the stream the device's transport settings select, with numBuffers buffers.
    virtual void StartStream(size_t numBuffers = kAutomaticBufferCount) = 0;
    virtual void StopStream() = 0;
    // Waits up to timeout milliseconds. Returned buffers stay the device's: give each back
    // with RequeueBuffer and never delete it.
    virtual IImage* GetImage(uint64_t timeout) = 0;
    virtual ICompressedImage* GetCompressedImage(uint64_t timeout) = 0;
    virtual IBuffer* GetBuffer(uint64_t timeout) = 0;
    virtual void RequeueBuffer(IBuffer* buffer) = 0;
    virtual void WaitForNextLeader(uint64_t timeout) = 0;
    virtual void ResetWaitForNextLeader() = 0;
    // Camera events: once initialised, each WaitOnEvent delivers one event message into the
    // device node map, whose event nodes then fire their callbacks.
    virtual void InitializeEvents() = 0;
    virtual void DeinitializeEvents() = 0;
    virtual void WaitOnEvent(uint64_t timeout) = 0;
    virtual GenApi::INodeMap* GetNodeMap() = 0;
    virtual GenApi::INodeMap* GetTLDeviceNodeMap() = 0;
    virtual GenApi::INodeMap* GetTLStreamNodeMap() = 0;
    virtual GenApi::INodeMap* GetTLInterfaceNodeMap() = 0;
    virtual void SendActionCommand(uint32_t deviceKey, uint32_t groupKey, uint32_t groupMask,
                                   uint64_t actionTime) = 0;
    // Callbacks run in registration order on one library thread while the device streams.
    virtual void RegisterImageCallback(IImageCallback* callback) = 0;
    virtual void DeregisterImageCallback(IImageCallback* callback) = 0;
    virtual void DeregisterAllImageCallbacks() = 0;
    // The data of the next trigger event of the event-based-sensor stream.
    virtual std::vector<uint8_t> GetNextEvsTriggerEvent(uint64_t timeout) = 0;
    // Writes the camera description to "<serial number>.xml" in the working directory.
    virtual void DownloadXml() = 0;
    virtual ~IDevice() = default;

    // The same operations on one stream index (0 UDP, 1 TCP, 2 RDMA, 3 event-based sensor,
    // 4 multipart), without the stream selection.
    virtual GenApi::INodeMap* GetTLStreamNodeMap(int stream) = 0;
    virtual void StartStream(int stream, size_t numBuffers) = 0;
    virtual void StopStream(int stream) = 0;
    virtual ICompressedImage* GetCompressedImage(int stream, uint64_t timeout) = 0;
    virtual IImage* GetImage(int stream, uint64_t timeout) = 0;
    virtual IBuffer* GetBuffer(int stream, uint64_t timeout) = 0;
    virtual void RequeueBuffer(int stream, IBuffer* buffer) = 0;
    virtual void WaitForNextLeader(int stream, uint64_t timeout) = 0;
    virtual void ResetWaitForNextLeader(int stream) = 0;

    // Used by the library itself.
    virtual void ImageCallbackThread() = 0;
    virtual void ResetInterface() = 0;
    virtual Interface* GetInterface() = 0;
    virtual void StartStreamEVS(int stream, size_t numBuffers) = 0;
    virtual void StopStreamEVS(int stream) = 0;
};

} // namespace Orvan

#endif
