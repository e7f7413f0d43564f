// Starting and stopping a device's streams: the buffer pool, the new-buffer event, the
// producer's acquisition and the camera's.
#include "Device.h"

#include "StreamBuffers.h"
#include "StreamSelection.h"
#include "core/ErrorTranslation.h"

#include <Orvan/ALogger.h>
#include <Orvan/GenApiCustom.h>

#include <GenApi/AccessModeHelpers.h>
#include <GenApi/Pointer.h>

#include <algorithm>
#include <string>

namespace Orvan {
namespace {

#define START_SITE ORVAN_SITE("Device", "StartStream")
#define STOP_SITE ORVAN_SITE("Device", "StopStream")

// A TCP stream runs with jumbo packets whatever the camera was set to.
constexpr int64_t sk_hardcodedTcpPacketSize = 9000;
constexpr size_t kMinAutomaticBuffers = 10;
constexpr size_t kMaxAutomaticBuffers = 1000;
constexpr int64_t kGigabitBytesPerSecond = 125000000;

template <class T>
GenApi::CPointer<T> NodeOf(GenApi::INodeMap* nodeMap, const char* name) {
    return nodeMap ? nodeMap->GetNode(name) : nullptr;
}

// A feature the camera may lack, or fail to read, counts as its type's zero value.
template <class T, class V>
V Optional(GenApi::INodeMap* nodeMap, const char* name) {
    try {
        GenApi::CPointer<T> node = NodeOf<T>(nodeMap, name);
        if (GenApi::IsReadable(node))
            return static_cast<V>(node->GetValue());
    } catch (const GenICam::GenericException&) {
    }
    return V();
}

double OptionalFloat(GenApi::INodeMap* nodeMap, const char* name) {
    return Optional<GenApi::IFloat, double>(nodeMap, name);
}

int64_t OptionalInteger(GenApi::INodeMap* nodeMap, const char* name) {
    return Optional<GenApi::IInteger, int64_t>(nodeMap, name);
}

std::string OptionalString(GenApi::INodeMap* nodeMap, const char* name) {
    return Optional<GenApi::IString, GenICam::gcstring>(nodeMap, name).c_str();
}

// Gives the pool back and reports the failure that made the start give up; the producer's
// text is fetched before the cleanup's own calls overwrite it.
[[noreturn]] void AbandonStart(StreamInfo* info, int32_t status, const char* description,
                               const char* call) {
    const std::string text = ProducerErrorText();
    CleanupAnnouncedBuffersOnStartFailure(info);
    ThrowGenTLError(status, description, START_SITE, call, text);
}

} // namespace

void Device::StartStream(size_t numBuffers) {
    CheckHasStreams("StartStream");
    const uint32_t stream = SelectStream();
    if (stream == kTcpStream && m_streams.size() >= 2) {
        m_savedPacketSize = GetNodeValue<int64_t>(m_nodeMap, "DeviceStreamChannelPacketSize");
        SetNodeValue<int64_t>(m_nodeMap, "DeviceStreamChannelPacketSize",
                              sk_hardcodedTcpPacketSize);
    }
    try {
        if (stream == kEvsStream)
            StartStreamEVS(static_cast<int>(stream), numBuffers);
        else
            StartStream(static_cast<int>(stream), numBuffers);
    } catch (...) {
        RestorePacketSize();
        throw;
    }
}

void Device::StopStream() {
    CheckHasStreams("StopStream");
    const uint32_t stream = SelectStream();
    if (stream == kEvsStream)
        StopStreamEVS(static_cast<int>(stream));
    else
        StopStream(static_cast<int>(stream));
}

// Whatever stops the TCP stream gives the camera back the packet size it had before.
void Device::RestorePacketSize() {
    if (m_streams.size() > 1 && m_savedPacketSize != -1)
        SetNodeValue<int64_t>(m_nodeMap, "DeviceStreamChannelPacketSize", m_savedPacketSize);
}

void Device::StartStream(int stream, size_t numBuffers) {
    std::lock_guard<std::mutex> lock(m_deviceMutex);
    if (numBuffers == 0)
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "Number of acquisition buffers must be 1 or greater", START_SITE);
    if (!m_nodeMap)
        ThrowLibraryError<GenICam::RuntimeException>("Node map not present", START_SITE);
    StreamInfo* info = Stream(stream, "StartStream");
    // A second start would give the running stream's buffers back in its failure cleanup.
    if (m_newBufferEvents[static_cast<size_t>(stream)]->IsSet())
        ThrowLibraryError<GenICam::LogicalErrorException>("Stream already started", START_SITE);
    // Buffers an earlier failed start or stop could not give back go now, so that the pool
    // holds exactly the count asked for.
    CleanupAnnouncedBuffersOnStartFailure(info);
    const int64_t payload = GenApi::CIntegerPtr(m_nodeMap->GetNode("PayloadSize"))->GetValue();
    const int64_t height = GenApi::CIntegerPtr(m_nodeMap->GetNode("Height"))->GetValue();
    SelectStream();
    const size_t bufferSize = BufferSize(payload, height);
    if (numBuffers == kAutomaticBufferCount)
        numBuffers = AutomaticBufferCount(bufferSize);
    AnnounceBuffers(info, numBuffers, bufferSize);
    SetupResendParameters(info);
    RegisterNewBufferEvent(stream, info);
    StartAcquisition(stream, info, numBuffers);
    try {
        GenApi::CIntegerPtr(m_nodeMap->GetNode("TLParamsLocked"))->SetValue(1, true);
        GenApi::CCommandPtr acquisitionStart = m_nodeMap->GetNode("AcquisitionStart");
        StartCallbackThreadIfNeeded();
        // A host without write access receives the stream another host started.
        if (HasControl())
            acquisitionStart->Execute(true);
    } catch (...) {
        AbortStartedStream(stream, info);
        throw;
    }
}

// Multipart buffers hold several frames of the current height, as many as fit the sensor.
size_t Device::BufferSize(int64_t payload, int64_t height) {
    const size_t single = static_cast<size_t>(std::max<int64_t>(payload, 0));
    GenApi::CBooleanPtr enable =
        NodeOf<GenApi::IBoolean>(m_tlDeviceNodeMap, "StreamMultipartEnable");
    if (!enable.IsValid() || enable->GetAccessMode() < GenApi::WO || !enable->GetValue())
        return single;
    const uint32_t selected = m_selectedStream;
    if (selected >= m_streams.size())
        return single;
    GenApi::CIntegerPtr parts =
        NodeOf<GenApi::IInteger>(m_streams[selected]->GetNodeMap(), "StreamMultipartNumParts");
    if (!parts.IsValid() || parts->GetAccessMode() == GenApi::NI)
        return single;
    int64_t count = parts->GetValue();
    const int64_t maxHeight = GenApi::CIntegerPtr(m_nodeMap->GetNode("Height"))->GetMax();
    const int64_t maxParts = std::max<int64_t>(1, height > 0 ? maxHeight / height : 1);
    if (count == 0) {
        ALogger::Warn("Number of parts cannot be 0. Setting number of parts to minimum value 1");
        count = 1;
        parts->SetValue(count);
    } else if (count > maxParts) {
        ALogger::Warn(("Number of parts selected for multipart greater than maximum allowed. "
                       "Setting number of parts to " +
                       std::to_string(maxParts))
                          .c_str());
        count = maxParts;
        parts->SetValue(count);
    }
    return single * static_cast<size_t>(count);
}

// Enough buffers for 40 ms at the camera's top data rate. A camera that does not state that
// rate is taken at its link speed, and failing that at a gigabit link's.
size_t Device::AutomaticBufferCount(size_t bufferSize) {
    int64_t throughput = OptionalInteger(m_nodeMap, "DeviceMaxThroughput");
    if (throughput <= 0)
        throughput = OptionalInteger(m_nodeMap, "DeviceLinkSpeed");
    if (throughput <= 0)
        throughput = kGigabitBytesPerSecond;
    const uint64_t span = static_cast<uint64_t>(throughput) * 40 / 1000;
    const size_t count = bufferSize ? static_cast<size_t>(span / bufferSize) : kMaxAutomaticBuffers;
    return std::clamp(count, kMinAutomaticBuffers, kMaxAutomaticBuffers);
}

void Device::AnnounceBuffers(StreamInfo* info, size_t count, size_t bufferSize) {
    TLDataStream* stream = info->GetTLDataStream();
    for (size_t i = 0; i < count; ++i) {
        void* buffer = nullptr;
        int32_t status = stream->AllocAndAnnounceBuffer(bufferSize, nullptr, &buffer);
        if (status != GenTL::GC_ERR_SUCCESS)
            AbandonStart(info, status, "Unable to prepare internal buffer",
                         "DSAllocAndAnnounceBuffer");
        status = stream->QueueBuffer(buffer);
        if (status != GenTL::GC_ERR_SUCCESS)
            AbandonStart(info, status, "Unable to queue internal buffer", "DSQueueBuffer");
    }
}

// Resend tuning only helps the producer ask for lost packets in time; a producer that cannot
// use it still streams, so its answer does not stop the start.
void Device::SetupResendParameters(StreamInfo* info) {
    const double frameRate = OptionalFloat(m_nodeMap, "AcquisitionFrameRate");
    const int64_t frameCount = OptionalInteger(m_nodeMap, "PacketResendWindowFrameCount");
    const std::string serial = OptionalString(m_nodeMap, "DeviceSerialNumber");
    const std::string firmware = OptionalString(m_nodeMap, "DeviceFirmwareVersion");
    const int64_t width = OptionalInteger(m_nodeMap, "Width");
    const int64_t height = OptionalInteger(m_nodeMap, "Height");
    info->GetTLDataStream()->SetupResendRetryParams(
        static_cast<uint64_t>(frameCount), frameRate, serial.c_str(), firmware.c_str(),
        static_cast<int32_t>(width), static_cast<int32_t>(height));
}

void Device::RegisterNewBufferEvent(int stream, StreamInfo* info) {
    void* event = nullptr;
    int32_t status = info->GetTLDataStream()->RegisterEvent(GenTL::EVENT_NEW_BUFFER, &event);
    if (status != GenTL::GC_ERR_SUCCESS)
        AbandonStart(info, status, "Unable to register new buffer events",
                     "GCRegisterEvent, EVENT_NEW_BUFFER");
    m_newBufferEvents[static_cast<size_t>(stream)]->Set(std::make_unique<TLEvent>(event));
}

// The producer stops by itself after the announced count: deliberately that count and not an
// unlimited number of images.
void Device::StartAcquisition(int stream, StreamInfo* info, size_t count) {
    TLDataStream* dataStream = info->GetTLDataStream();
    int32_t status = dataStream->StartAcquisition(GenTL::ACQ_START_FLAGS_DEFAULT, count);
    if (status == GenTL::GC_ERR_SUCCESS)
        return;
    const std::string text = ProducerErrorText();
    DeleteNewBufferEvent(stream);
    dataStream->UnregisterEvent(GenTL::EVENT_NEW_BUFFER);
    CleanupAnnouncedBuffersOnStartFailure(info);
    ThrowGenTLError(status, "Unable to start acquisition", START_SITE, "DSStartAcquisition", text);
}

// The host side runs but the camera could not be started: take the host side down again so
// that a failed start leaves nothing announced.
void Device::AbortStartedStream(int stream, StreamInfo* info) noexcept {
    StopCallbackThread();
    TLDataStream* dataStream = info->GetTLDataStream();
    dataStream->StopAcquisition(GenTL::ACQ_STOP_FLAGS_DEFAULT);
    DeleteNewBufferEvent(stream);
    dataStream->UnregisterEvent(GenTL::EVENT_NEW_BUFFER);
    // Each step is tried whatever the one before did: a failure here must not leave the
    // buffers announced or the transport layer locked.
    try {
        CleanupAnnouncedBuffersOnStartFailure(info);
    } catch (const GenICam::GenericException&) {
    }
    try {
        GenApi::CIntegerPtr locked = m_nodeMap->GetNode("TLParamsLocked");
        if (GenApi::IsWritable(locked))
            locked->SetValue(0);
    } catch (const GenICam::GenericException&) {
    }
    DiscardOutstanding(stream);
}

// Threads still waiting for a buffer of this stream are let go before the event goes.
void Device::DeleteNewBufferEvent(int stream) noexcept {
    if (stream >= 0 && static_cast<size_t>(stream) < m_newBufferEvents.size())
        m_newBufferEvents[static_cast<size_t>(stream)]->Take();
}

void Device::StopStream(int stream) {
    std::lock_guard<std::mutex> lock(m_deviceMutex);
    StreamInfo* info = Stream(stream, "StopStream");
    StopCallbackThread();
    TLDataStream* dataStream = info->GetTLDataStream();
    int32_t status = dataStream->StopAcquisition(GenTL::ACQ_STOP_FLAGS_DEFAULT);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to stop acquisition", STOP_SITE, "DSStopAcquisition");
    DeleteNewBufferEvent(stream);
    status = dataStream->UnregisterEvent(GenTL::EVENT_NEW_BUFFER);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to unregister new buffer events", STOP_SITE,
                        "GCUnregisterEvent, EVENT_NEW_BUFFER");
    GenApi::CIntegerPtr(m_nodeMap->GetNode("TLParamsLocked"))->SetValue(0, true);
    status = dataStream->FlushQueue(GenTL::ACQ_QUEUE_ALL_DISCARD);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to flush queue", STOP_SITE, "DSFlushQueue");
    RevokeAnnouncedBuffers(info, "StopStream");
    DiscardOutstanding(stream);
    // The camera stops last, once the host has given back every buffer, and whether or not
    // this host controls it.
    GenApi::CCommandPtr acquisitionStop = m_nodeMap->GetNode("AcquisitionStop");
    if (!acquisitionStop.IsValid())
        ThrowLibraryError<GenICam::LogicalErrorException>(
            "Unable to stop acquisition because Acquisition Stop node doesn't exist", STOP_SITE);
    acquisitionStop->Execute(false);
    if (stream == static_cast<int>(kTcpStream))
        RestorePacketSize();
}

} // namespace Orvan
