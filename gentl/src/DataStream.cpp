#include "DataStream.h"

#include "Device.h"
#include "GenTLError.h"
#include "MessageEvent.h"
#include "NewBufferEvent.h"

#include <GenTL/GenTLExtensions.h>

#include <algorithm>
#include <cmath>
#include <thread>
#include <type_traits>

namespace Orvan {
namespace Producer {

namespace {

constexpr size_t kBufferAlignment = 64;
constexpr size_t kStreamEventSize = 64 * 1024;

PortIdentity StreamPortIdentity(const std::string& id) {
    PortIdentity identity;
    identity.id = id;
    identity.vendor = "Orvan";
    identity.model = "Orvan GenTL data stream module";
    identity.tlType = TLTypeGEVName;
    identity.module = TLDataStreamModuleName;
    identity.portName = "StreamPort";
    identity.version = "1.0";
    return identity;
}

// DSSetupResendRetryParams names a window of frames at a frame rate: the time the camera keeps
// a frame's packets for resending. A network stream keeps an unfinished frame open that long
// and spreads its retries over it, but never waits less than its defaults, which already suit
// fast cameras on a busy host; so only slow cameras (a window longer than the default frame
// timeout) change anything. Without a window or a usable rate the defaults stay. Width and
// height are only shown in the node map: without the link's speed they say nothing about time.
ResendSettings ResendSettingsFor(const DataStream::ResendParameters& parameters) {
    ResendSettings settings;
    if (parameters.frameCount == 0 || !(parameters.frameRate > 0) ||
        !std::isfinite(parameters.frameRate))
        return settings;
    const double windowUs = double(parameters.frameCount) / parameters.frameRate * 1e6;
    const double frameTimeoutUs = std::clamp(windowUs, double(settings.frameTimeoutUs), 10e6);
    settings.frameTimeoutUs = static_cast<uint32_t>(frameTimeoutUs);
    settings.retryTimeoutUs = std::clamp<uint32_t>(
        settings.frameTimeoutUs / (settings.maxRetries + 1), settings.retryTimeoutUs, 1000000);
    return settings;
}

} // namespace

std::shared_ptr<DataStream> DataStream::Create(const std::shared_ptr<Device>& parent,
                                               std::shared_ptr<RemoteDevice> camera,
                                               uint32_t index) {
    std::shared_ptr<DataStream> stream(new DataStream(std::move(camera), index));
    stream->m_parent = parent;
    stream->m_parentHandle = parent->Handle();
    stream->m_handle = HandleRegistry::Instance().Add(stream, HandleKind::Stream);
    return stream;
}

DataStream::DataStream(std::shared_ptr<RemoteDevice> camera, uint32_t index)
    : m_camera(std::move(camera)), m_index(index), m_id(m_camera->StreamId(index)),
      m_pool(std::make_shared<BufferPool>()), m_port(StreamPortIdentity(m_id)) {
    Describe();
}

DataStream::~DataStream() = default;

void DataStream::Describe() {
    ModuleDescription description("GenTLDataStream", "StreamPort");
    BufferPool* pool = m_pool.get();
    description.Category("StreamInformation");
    description.String("StreamID", [this] { return m_id; });
    description.Enumeration("StreamType", {{"Mixed", 0}, {"Custom", 1}, {"GigEVision", 2}},
                            [] { return 2; });
    description.Category("BufferHandlingControl");
    description.Integer("StreamAnnouncedBufferCount",
                        [pool] { return static_cast<int64_t>(pool->AnnouncedCount()); });
    description.Integer("StreamAnnounceBufferMinimum", [] { return 1; });
    description.Integer("StreamInputBufferCount",
                        [pool] { return static_cast<int64_t>(pool->InputCount()); });
    description.Integer("StreamOutputBufferCount",
                        [pool] { return static_cast<int64_t>(pool->OutputCount()); });
    description.Integer("StreamBufferAlignment", [] { return kBufferAlignment; });
    description.Enumeration(
        "StreamBufferHandlingMode",
        {{"OldestFirst", 1}, {"OldestFirstOverwrite", 2}, {"NewestOnly", 3}},
        [pool] { return static_cast<int64_t>(pool->GetHandlingMode()); },
        [pool](int64_t mode) { pool->SetHandlingMode(BufferPool::HandlingMode(mode)); });
    description.Boolean("StreamIsGrabbing", [pool] { return pool->IsAcquiring(); });
    description.Integer("StreamPayloadSize",
                        [this] { return static_cast<int64_t>(m_camera->PayloadSize(m_index)); });
    description.Category("StreamStatistics");
    description.Integer("StreamStartedFrameCount",
                        [pool] { return static_cast<int64_t>(pool->GetCounters().started); });
    description.Integer("StreamDeliveredFrameCount",
                        [pool] { return static_cast<int64_t>(pool->GetCounters().delivered); });
    description.Integer("StreamLostFrameCount",
                        [pool] { return static_cast<int64_t>(pool->GetCounters().lost); });
    description.Integer("StreamIncompleteFrameCount",
                        [pool] { return static_cast<int64_t>(pool->GetCounters().incomplete); });
    // The packet transport's own counters; zero on streams that have none.
    auto packets = [this](uint64_t StreamStatistics::*counter) {
        return [this, counter] {
            StreamStatistics statistics;
            m_camera->GetStreamStatistics(m_index, statistics);
            return static_cast<int64_t>(statistics.*counter);
        };
    };
    description.Integer("StreamReceivedPacketCount", packets(&StreamStatistics::packetsReceived));
    description.Integer("StreamResentPacketCount", packets(&StreamStatistics::packetsRecovered));
    description.Integer("StreamLostPacketCount", packets(&StreamStatistics::packetsLost));
    description.Integer("StreamResendRequestCount", packets(&StreamStatistics::resendRequests));
    description.Category("StreamMultipart");
    description
        .Integer(
            "StreamMultipartNumParts", [this] { return m_multipartParts.load(); },
            [this](int64_t parts) {
                if (parts < 0)
                    throw GenTLError(GenTL::GC_ERR_INVALID_VALUE, "Negative part count");
                m_multipartParts.store(parts);
            })
        .Custom();
    description.Category("StreamEventBasedSensor");
    description
        .Enumeration(
            "StreamEvsOutputFormat", {{"EVT3_0", 0}, {"EVT2_1", 1}, {"EVT2_0", 2}},
            [this] { return m_evsFormat.load(); },
            [this](int64_t format) { m_evsFormat.store(format); })
        .Custom();
    description
        .Integer(
            "StreamEvsBitDepth", [this] { return m_evsBitDepth.load(); },
            [this](int64_t depth) {
                if (depth < 1 || depth > 64)
                    throw GenTLError(GenTL::GC_ERR_INVALID_VALUE, "Bit depth is 1 to 64");
                m_evsBitDepth.store(depth);
            })
        .Custom();
    description.Category("StreamResend");
    description
        .Integer("StreamResendWindowFrameCount",
                 [this] { return static_cast<int64_t>(GetResendParameters().frameCount); })
        .Custom();
    description.Float("StreamResendFrameRate", [this] { return GetResendParameters().frameRate; })
        .Custom();
    description
        .String("StreamResendDeviceSerialNumber",
                [this] { return GetResendParameters().serialNumber; })
        .Custom();
    description
        .String("StreamResendDeviceFirmwareVersion",
                [this] { return GetResendParameters().firmwareVersion; })
        .Custom();
    description.Integer("StreamResendImageWidth", [this] { return GetResendParameters().width; })
        .Custom();
    description.Integer("StreamResendImageHeight", [this] { return GetResendParameters().height; })
        .Custom();
    DescribeReceive(description);
    m_port.Describe(description);
}

// The receive path and the receiving thread's placement as asked for (from the next start), and
// as the last start got them.
void DataStream::DescribeReceive(ModuleDescription& description) {
    auto wanted = [this](auto member) {
        return [this, member] {
            std::lock_guard<std::mutex> lock(m_settingsMutex);
            return static_cast<int64_t>(m_receive.*member);
        };
    };
    auto change = [this](auto member) {
        return [this, member](int64_t value) {
            std::lock_guard<std::mutex> lock(m_settingsMutex);
            using Value = std::remove_reference_t<decltype(m_receive.*member)>;
            m_receive.*member = static_cast<Value>(value);
        };
    };
    auto inUse = [this](auto member) {
        return [this, member] {
            ReceiveSettings used;
            m_camera->GetReceiveInUse(m_index, used);
            return static_cast<int64_t>(used.*member);
        };
    };
    const auto lastCore = [] { return int64_t{std::thread::hardware_concurrency()} - 1; };
    auto changeCore = [setCore = change(&ReceiveSettings::core), lastCore](int64_t core) {
        if (core < -1 || core > lastCore())
            throw GenTLError(GenTL::GC_ERR_INVALID_VALUE,
                             "The receive thread's core is -1 (any) or one of the machine's");
        setCore(core);
    };
    const std::vector<std::pair<std::string, int64_t>> priorities = {{"Normal", 0},
                                                                     {"RealTime", 1}};
    description.Category("StreamReceive");
    description
        .Enumeration("StreamReceivePath",
                     {{"Auto", 0}, {"Socket", 1}, {"PacketRing", 2}, {"Xdp", 3}},
                     wanted(&ReceiveSettings::path), change(&ReceiveSettings::path))
        .Custom();
    description
        .Enumeration("StreamReceivePathInUse",
                     {{"None", 0}, {"Socket", 1}, {"PacketRing", 2}, {"Xdp", 3}},
                     inUse(&ReceiveSettings::path))
        .Custom();
    description.Integer("StreamReceiveThreadCore", wanted(&ReceiveSettings::core), changeCore)
        .Max(lastCore)
        .Custom();
    description.Integer("StreamReceiveThreadCoreInUse", inUse(&ReceiveSettings::core)).Custom();
    description
        .Enumeration("StreamReceiveThreadPriority", priorities, wanted(&ReceiveSettings::priority),
                     change(&ReceiveSettings::priority))
        .Custom();
    description
        .Enumeration("StreamReceiveThreadPriorityInUse", priorities,
                     inUse(&ReceiveSettings::priority))
        .Custom();
}

void DataStream::Close() {
    {
        std::lock_guard<std::mutex> lock(m_controlMutex);
        // A start racing with this close must not hand the camera a sink that is going away.
        m_closed = true;
        if (m_pool->IsAcquiring()) {
            m_camera->StopStream(m_index);
            m_pool->Stop();
        }
    }
    UnregisterAllEvents();
    m_pool->AbortWaits();
    HandleRegistry::Instance().Remove(m_handle);
    if (auto parent = m_parent.lock())
        parent->Forget(this);
}

void* DataStream::AllocAndAnnounce(size_t size, void* userPointer) {
    size_t rounded = (size + kBufferAlignment - 1) / kBufferAlignment * kBufferAlignment;
    auto* memory = static_cast<uint8_t*>(std::aligned_alloc(kBufferAlignment, rounded));
    if (!memory)
        throw GenTLError(GenTL::GC_ERR_OUT_OF_MEMORY,
                         "Unable to allocate " + std::to_string(size) + " bytes");
    return m_pool->Announce(memory, size, userPointer, true);
}

void DataStream::Start(uint64_t frameLimit) {
    std::lock_guard<std::mutex> lock(m_controlMutex);
    if (m_closed)
        throw GenTLError(GenTL::GC_ERR_INVALID_HANDLE, "The data stream is closed");
    if (auto parent = m_parent.lock()) {
        parent->RequireConnected();
        if (parent->AccessStatus() == GenTL::DEVICE_ACCESS_STATUS_NOACCESS)
            throw GenTLError(GenTL::GC_ERR_ACCESS_DENIED, "The device was opened without access");
    }
    ReceiveSettings receive;
    {
        std::lock_guard<std::mutex> settings(m_settingsMutex);
        receive = m_receive;
    }
    m_camera->ConfigureReceive(m_index, receive);
    m_pool->Start(frameLimit);
    GenTL::GC_ERROR status = m_camera->StartStream(m_index, this, frameLimit);
    if (status != GenTL::GC_ERR_SUCCESS) {
        m_pool->Stop();
        throw GenTLError(status, "The camera could not start stream '" + m_id + "'");
    }
}

void DataStream::Stop() {
    std::lock_guard<std::mutex> lock(m_controlMutex);
    if (!m_pool->IsAcquiring())
        return;
    // The camera returns only after its last call into this sink, so nothing is in flight when
    // the pool takes back what the camera held.
    m_camera->StopStream(m_index);
    m_pool->Stop();
}

InfoValue DataStream::Info(GenTL::STREAM_INFO_CMD cmd) const {
    BufferPool::Counters counters = m_pool->GetCounters();
    switch (cmd) {
    case GenTL::STREAM_INFO_ID:
        return InfoValue::String(m_id);
    case GenTL::STREAM_INFO_NUM_DELIVERED:
        return InfoValue::UInt64(counters.delivered);
    case GenTL::STREAM_INFO_NUM_UNDERRUN:
        return InfoValue::UInt64(counters.lost);
    case GenTL::STREAM_INFO_NUM_ANNOUNCED:
        return InfoValue::SizeT(m_pool->AnnouncedCount());
    case GenTL::STREAM_INFO_NUM_QUEUED:
        return InfoValue::SizeT(m_pool->InputCount());
    case GenTL::STREAM_INFO_NUM_AWAIT_DELIVERY:
        return InfoValue::SizeT(m_pool->OutputCount());
    case GenTL::STREAM_INFO_NUM_STARTED:
        return InfoValue::UInt64(counters.started);
    case GenTL::STREAM_INFO_PAYLOAD_SIZE:
        return InfoValue::SizeT(m_camera->PayloadSize(m_index));
    case GenTL::STREAM_INFO_IS_GRABBING:
        return InfoValue::Bool8(m_pool->IsAcquiring());
    case GenTL::STREAM_INFO_DEFINES_PAYLOADSIZE:
        return InfoValue::Bool8(true);
    case GenTL::STREAM_INFO_TLTYPE:
        return InfoValue::String(TLTypeGEVName);
    case GenTL::STREAM_INFO_NUM_CHUNKS_MAX:
        throw GenTLError(GenTL::GC_ERR_NOT_AVAILABLE, "The chunk count depends on the camera");
    case GenTL::STREAM_INFO_BUF_ANNOUNCE_MIN:
        return InfoValue::SizeT(1);
    case GenTL::STREAM_INFO_BUF_ALIGNMENT:
        return InfoValue::SizeT(kBufferAlignment);
    default:
        throw GenTLError(GenTL::GC_ERR_INVALID_PARAMETER,
                         "Unknown stream info command " + std::to_string(cmd));
    }
}

void DataStream::SetResendParameters(const ResendParameters& parameters) {
    {
        std::lock_guard<std::mutex> lock(m_settingsMutex);
        m_resend = parameters;
    }
    m_camera->ConfigureResend(m_index, ResendSettingsFor(parameters));
}

DataStream::ResendParameters DataStream::GetResendParameters() const {
    std::lock_guard<std::mutex> lock(m_settingsMutex);
    return m_resend;
}

void DataStream::DeliverStreamEvent(int32_t eventType, const void* data, size_t size) {
    // Only vendor stream events come this way; the standard ones have their own sources.
    if (eventType < GenTL::EVENT_CUSTOM_ID)
        return;
    if (auto event = std::static_pointer_cast<MessageEvent>(FindEvent(eventType)))
        event->Push(data, size);
}

std::shared_ptr<Event> DataStream::MakeEvent(GenTL::EVENT_TYPE type) {
    if (type == GenTL::EVENT_NEW_BUFFER)
        return std::make_shared<NewBufferEvent>(m_pool);
    if (type == GenTL::EVENT_ORVAN_EVS_TRIGGER)
        return std::make_shared<MessageEvent>(type, kStreamEventSize);
    return Module::MakeEvent(type);
}

} // namespace Producer
} // namespace Orvan
