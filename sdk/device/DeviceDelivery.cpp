// Handing delivered buffers to the application and taking them back.
#include "Device.h"

#include "buffer/ChunkData.h"
#include "buffer/CompressedImage.h"
#include "buffer/CompressedImageExtendedChunk.h"
#include "buffer/Image.h"
#include "buffer/ImageExtendedChunk.h"
#include "buffer/PayloadType.h"
#include "core/ErrorTranslation.h"
#include "feature/NodeMapUtility.h"

#include <GenApi/ChunkAdapterGEV.h>
#include <GenTL/GenTLExtensions.h>

#include <memory>

namespace Orvan {
namespace {

#define DELIVERY_SITE(function) ORVAN_SITE("Device", function)

uint64_t BufferInfo(TLDataStream* stream, void* buffer, int32_t cmd, const char* description,
                    const char* call) {
    uint64_t value = 0;
    GenTL::INFO_DATATYPE type = GenTL::INFO_DATATYPE_UNKNOWN;
    size_t size = sizeof(value);
    int32_t status = stream->GetBufferInfo(buffer, cmd, &type, &value, &size);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, description, DELIVERY_SITE("GetBuffer"), call);
    return value;
}

} // namespace

IBuffer* Device::GetBuffer(uint64_t timeout) {
    CheckHasStreams("GetBuffer");
    return GetBuffer(static_cast<int>(m_selectedStream.load()), timeout);
}

IImage* Device::GetImage(uint64_t timeout) {
    CheckHasStreams("GetImage");
    return GetImage(static_cast<int>(m_selectedStream.load()), timeout);
}

ICompressedImage* Device::GetCompressedImage(uint64_t timeout) {
    CheckHasStreams("GetCompressedImage");
    return GetCompressedImage(static_cast<int>(m_selectedStream.load()), timeout);
}

void Device::RequeueBuffer(IBuffer* buffer) {
    CheckHasStreams("RequeueBuffer");
    RequeueBuffer(static_cast<int>(m_selectedStream.load()), buffer);
}

void Device::WaitForNextLeader(uint64_t timeout) {
    CheckHasStreams("WaitForNextLeader");
    WaitForNextLeader(static_cast<int>(m_selectedStream.load()), timeout);
}

void Device::ResetWaitForNextLeader() {
    CheckHasStreams("ResetWaitForNextLeader");
    ResetWaitForNextLeader(static_cast<int>(m_selectedStream.load()));
}

EventSlot& Device::NewBufferEvent(int stream) {
    Stream(stream, "GetBuffer");
    return *m_newBufferEvents[static_cast<size_t>(stream)];
}

// The buffer is wrapped while the stream's event is held, so a stop waits for it and then
// finds it among the buffers handed out.
IBuffer* Device::GetBuffer(int stream, uint64_t timeout) {
    int32_t status = GenTL::GC_ERR_SUCCESS;
    IBuffer* buffer = nullptr;
    const bool started = NewBufferEvent(stream).With([&](TLEvent* event) {
        GenTL::S_EVENT_NEW_BUFFER data = {};
        size_t size = sizeof(data);
        status = event->GetData(&data, &size, timeout);
        if (status != GenTL::GC_ERR_SUCCESS)
            return;
        try {
            buffer = WrapBuffer(stream, data.BufferHandle);
        } catch (...) {
            // A buffer that cannot be handed out goes back to the pool instead of being lost.
            m_streams[static_cast<size_t>(stream)]->GetTLDataStream()->QueueBuffer(
                data.BufferHandle);
            throw;
        }
    });
    if (!started)
        ThrowLibraryError<GenICam::LogicalErrorException>(
            "Unable to get buffer data, event handle is NULL", DELIVERY_SITE("GetBuffer"));
    if (status == GenTL::GC_ERR_ABORT)
        ThrowGenTLError(status, "Unable to get buffer data, stream aborted",
                        DELIVERY_SITE("GetBuffer"), "EventGetData");
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to get buffer data", DELIVERY_SITE("GetBuffer"),
                        "EventGetData");
    return buffer;
}

// Chunk-carrying buffers get a node map of their own from the chunk part of the description,
// and the device node map shows their chunks through the device's adapter.
IBuffer* Device::WrapBuffer(int stream, void* handle) {
    TLDataStream* dataStream = m_streams[static_cast<size_t>(stream)]->GetTLDataStream();
    const uint64_t payloadType =
        BufferInfo(dataStream, handle, GenTL::BUFFER_INFO_PAYLOADTYPE,
                   "Unable to get buffer payload type", "DSGetBufferInfo, BUFFER_INFO_PAYLOADTYPE");
    if (payloadType == PayloadType::kImage || payloadType == PayloadType::kMultiPart) {
        auto image = std::make_unique<Image>(dataStream, handle);
        // The multipart stream's parts are frames of one format and width, stacked; parts of
        // different kinds are no image.
        if (payloadType == PayloadType::kMultiPart && !image->HasImageData())
            ThrowLibraryError<GenICam::LogicalErrorException>(
                "The parts of this multi-part buffer do not form one image",
                DELIVERY_SITE("GetBuffer"));
        Image* tracked = image.release();
        return Track({stream, static_cast<IImage*>(tracked), tracked, nullptr});
    }
    if (payloadType == PayloadType::kCompressedImage) {
        auto* image = new CompressedImage(dataStream, handle);
        return Track({stream, static_cast<ICompressedImage*>(image), image, nullptr});
    }
    if (payloadType != PayloadType::kChunkOnly && payloadType != PayloadType::kImageWithChunks &&
        payloadType != PayloadType::kCompressedImageWithChunks)
        ThrowLibraryError<GenICam::LogicalErrorException>("Unknown payload type",
                                                          DELIVERY_SITE("GetBuffer"));
    Outstanding entry{stream, nullptr, nullptr, m_chunkFactory.CreateNodeMap("Device", true)};
    try {
        if (payloadType == PayloadType::kChunkOnly) {
            auto* chunks = new ChunkData(dataStream, handle, entry.chunkNodeMap, m_chunkFactory);
            entry.object = static_cast<IChunkData*>(chunks);
            entry.buffer = chunks;
        } else if (payloadType == PayloadType::kImageWithChunks) {
            auto* image =
                new ImageExtendedChunk(dataStream, handle, entry.chunkNodeMap, m_chunkFactory);
            entry.object = static_cast<IImage*>(image);
            entry.buffer = image;
        } else {
            auto* image = new CompressedImageExtendedChunk(dataStream, handle, entry.chunkNodeMap,
                                                           m_chunkFactory);
            entry.object = static_cast<ICompressedImage*>(image);
            entry.buffer = image;
        }
        const size_t chunkSize = payloadType == PayloadType::kChunkOnly
                                     ? entry.buffer->GetSizeFilled()
                                     : BufferInfo(dataStream, handle, GenTL::BUFFER_INFO_DATA_SIZE,
                                                  "Unable to get buffer data size",
                                                  "DSGetBufferInfo, BUFFER_INFO_DATA_SIZE");
        const uint8_t* data = entry.buffer->GetData();
        std::lock_guard<std::mutex> lock(m_outstandingMutex);
        m_chunkAdapter->AttachBuffer(const_cast<uint8_t*>(data), static_cast<int64_t>(chunkSize),
                                     nullptr);
    } catch (...) {
        Discard(entry);
        throw;
    }
    return Track(entry);
}

IBuffer* Device::Track(const Outstanding& entry) {
    std::lock_guard<std::mutex> lock(m_outstandingMutex);
    m_outstanding[dynamic_cast<const void*>(entry.object)] = entry;
    return entry.object;
}

IImage* Device::GetImage(int stream, uint64_t timeout) {
    {
        std::lock_guard<std::mutex> lock(m_callbackMutex);
        if (!m_imageCallbacks.empty())
            ThrowLibraryError<GenICam::RuntimeException>(
                "GetImage should not be called while there are registered image callbacks",
                DELIVERY_SITE("GetImage"));
    }
    IBuffer* buffer = GetBuffer(stream, timeout);
    IImage* image = buffer->AsImage();
    if (!image) {
        RequeueBuffer(stream, buffer);
        ThrowLibraryError<GenICam::LogicalErrorException>(
            "Failed to cast Orvan::IBuffer* to Orvan::IImage* ", DELIVERY_SITE("GetImage"));
    }
    return image;
}

ICompressedImage* Device::GetCompressedImage(int stream, uint64_t timeout) {
    {
        std::lock_guard<std::mutex> lock(m_callbackMutex);
        if (!m_imageCallbacks.empty())
            ThrowLibraryError<GenICam::RuntimeException>(
                "GetCompressedImage should not be called while there are registered image "
                "callbacks",
                DELIVERY_SITE("GetCompressedImage"));
    }
    IBuffer* buffer = GetBuffer(stream, timeout);
    ICompressedImage* image = buffer->AsCompressedImage();
    if (!image) {
        RequeueBuffer(stream, buffer);
        ThrowLibraryError<GenICam::LogicalErrorException>(
            "Failed to cast Orvan::IBuffer* to Orvan::ICompressedImage* (perhaps an unsupported "
            "compressed pixel format)",
            DELIVERY_SITE("GetCompressedImage"));
    }
    return image;
}

void Device::RequeueBuffer(int stream, IBuffer* buffer) {
    if (!buffer)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Buffer is null",
                                                             DELIVERY_SITE("RequeueBuffer"));
    StreamInfo* info = Stream(stream, "RequeueBuffer");
    // The application may hand back any of the object's interfaces; the whole object is the key.
    const void* key = dynamic_cast<const void*>(buffer);
    Outstanding entry;
    {
        std::lock_guard<std::mutex> lock(m_outstandingMutex);
        auto found = m_outstanding.find(key);
        if (found == m_outstanding.end() || found->second.stream != stream)
            ThrowLibraryError<GenICam::InvalidArgumentException>(
                "Buffer was not delivered by this stream", DELIVERY_SITE("RequeueBuffer"));
        entry = found->second;
    }
    int32_t status = info->GetTLDataStream()->QueueBuffer(entry.buffer->GetBufferHandle());
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to requeue internal buffer", DELIVERY_SITE("RequeueBuffer"),
                        "DSQueueBuffer");
    {
        std::lock_guard<std::mutex> lock(m_outstandingMutex);
        m_outstanding.erase(key);
    }
    Discard(entry);
}

void Device::Discard(const Outstanding& entry) noexcept {
    delete entry.buffer;
    DestroyNodeMap(entry.chunkNodeMap);
}

// Buffers the application still holds when their stream stops are revoked by the producer;
// their wrappers go with them.
void Device::DiscardOutstanding(int stream) noexcept {
    std::vector<Outstanding> gone;
    {
        std::lock_guard<std::mutex> lock(m_outstandingMutex);
        for (auto it = m_outstanding.begin(); it != m_outstanding.end();) {
            if (it->second.stream == stream) {
                gone.push_back(it->second);
                it = m_outstanding.erase(it);
            } else {
                ++it;
            }
        }
        if (m_chunkAdapter)
            m_chunkAdapter->DetachBuffer();
    }
    for (const Outstanding& entry : gone)
        Discard(entry);
}

void Device::WaitForNextLeader(int stream, uint64_t timeout) {
    int32_t status =
        Stream(stream, "WaitForNextLeader")->GetTLDataStream()->WaitForNextLeader(timeout);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Wait for next leader failed", DELIVERY_SITE("WaitForNextLeader"),
                        "DSWaitForNextLeader");
}

void Device::ResetWaitForNextLeader(int stream) {
    int32_t status =
        Stream(stream, "ResetWaitForNextLeader")->GetTLDataStream()->ResetWaitForNextLeader();
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Wait for next leader reset failed",
                        DELIVERY_SITE("ResetWaitForNextLeader"), "DSResetWaitForNextLeader");
}

} // namespace Orvan
