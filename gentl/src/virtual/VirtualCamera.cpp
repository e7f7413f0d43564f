#include "VirtualCamera.h"

#include "CameraFeatures.h"
#include "GevEventMessage.h"
#include "ModelFeatures.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iterator>

namespace Orvan {
namespace Producer {

using namespace GenTL;

namespace {

constexpr uint64_t kNsPerSecond = 1000000000;
constexpr uint64_t kNsPerMicrosecond = 1000;
constexpr double kPacketHeaderBytes = 20 + 8 + 8; // IP, UDP, GVSP

std::chrono::steady_clock::time_point TimePoint(uint64_t ns) {
    return std::chrono::steady_clock::time_point(std::chrono::nanoseconds(ns));
}

// A stream's index is its transport, which is what the SDK selects streams by.
const char* const kStreamIds[] = {"UDP", "TCP", "RDMA", "EventData", "Multipart"};

} // namespace

uint64_t VirtualCamera::NowNs() {
    return uint64_t(std::chrono::duration_cast<std::chrono::nanoseconds>(
                        std::chrono::steady_clock::now().time_since_epoch())
                        .count());
}

VirtualCamera::VirtualCamera(const CameraModel& model, uint32_t index)
    : m_model(model), m_index(index), m_streams(model.streams.size()) {
    DeviceIdentity identity;
    char serial[16];
    std::snprintf(serial, sizeof serial, "OV%u%05u", unsigned(model.number), index % 100000);
    identity.id = model.key + "-" + std::to_string(index);
    identity.vendor = "Orvan";
    identity.model = model.modelName;
    identity.serialNumber = serial;
    identity.version = "1.0";
    identity.mac = 0x024F56000000ull | uint64_t(model.number) << 16 | (index & 0xFFFF);
    identity.ip = 0xA9FE0000u | uint32_t(model.number) << 8 | (index % 254 + 1); // 169.254/16
    identity.subnet = 0xFFFF0000u;
    identity.gateway = 0;
    m_identities.push_back(identity);
    m_identity = &m_identities.back();
    BuildDescription();
    InstallBehaviour();
    m_userSets[size_t(UserSet::Default)] = m_registers.SnapshotPersistent();
}

VirtualCamera::~VirtualCamera() {
    for (uint32_t i = 0; i < m_streams.size(); ++i)
        StopStream(i);
}

const DeviceIdentity& VirtualCamera::Identity() const {
    return *m_identity.load();
}

bool VirtualCamera::IsConnected() const {
    return m_connected;
}

GC_ERROR VirtualCamera::ReadPort(uint64_t address, void* data, size_t* size) {
    if (!data || !size)
        return GC_ERR_INVALID_PARAMETER;
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_connected)
        return GC_ERR_IO;
    return m_registers.Read(address, data, *size);
}

GC_ERROR VirtualCamera::WritePort(uint64_t address, const void* data, size_t* size) {
    if (!data || !size)
        return GC_ERR_INVALID_PARAMETER;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_connected)
            return GC_ERR_IO;
        const GC_ERROR status = m_registers.Write(address, data, *size);
        if (status != GC_ERR_SUCCESS)
            return status;
    }
    // A write may start acquisition, trigger a frame or change its timing.
    m_wake.notify_all();
    return GC_ERR_SUCCESS;
}

std::string VirtualCamera::DescriptionUrl() const {
    return m_url;
}

void VirtualCamera::DescriptionVersions(int32_t& schemaMajor, int32_t& schemaMinor,
                                        int32_t& fileMajor, int32_t& fileMinor,
                                        int32_t& fileSubminor) const {
    schemaMajor = 1, schemaMinor = 1;
    fileMajor = 1, fileMinor = 0, fileSubminor = 0;
}

uint32_t VirtualCamera::StreamCount() const {
    return uint32_t(m_model.streams.size());
}

std::string VirtualCamera::StreamId(uint32_t index) const {
    if (index >= m_model.streams.size() || index >= std::size(kStreamIds))
        return {};
    return kStreamIds[index];
}

uint64_t VirtualCamera::PayloadSize(uint32_t index) const {
    if (index >= m_model.streams.size())
        return 0;
    std::lock_guard<std::mutex> lock(m_mutex);
    return const_cast<VirtualCamera*>(this)->CurrentPayloadBytes();
}

uint64_t VirtualCamera::TimestampFrequency() const {
    return kNsPerSecond;
}

GC_ERROR VirtualCamera::StartStream(uint32_t index, FrameSink* sink, uint64_t maxFrames) {
    if (index >= m_streams.size() || !sink)
        return GC_ERR_INVALID_PARAMETER;
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_connected)
        return GC_ERR_IO;
    StreamState& stream = m_streams[index];
    if (stream.worker)
        return GC_ERR_RESOURCE_IN_USE;
    stream = StreamState{};
    stream.maxFrames = maxFrames;
    stream.worker = std::make_unique<StreamWorker>(static_cast<StreamHost&>(*this), index,
                                                   m_model.streams[index], *sink);
    return GC_ERR_SUCCESS;
}

void VirtualCamera::StopStream(uint32_t index) {
    StreamWorker* worker = nullptr;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (index >= m_streams.size() || !m_streams[index].worker)
            return;
        m_streams[index].stopping = true;
        worker = m_streams[index].worker.get();
    }
    m_wake.notify_all();
    worker->Join();
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_streams[index] = StreamState{};
    }
    m_wake.notify_all();
}

void VirtualCamera::SetEventSink(EventSink* sink) {
    std::lock_guard<std::mutex> lock(m_eventMutex);
    m_eventSink = sink;
}

GC_ERROR VirtualCamera::ActionCommand(uint32_t deviceKey, uint32_t groupKey, uint32_t groupMask,
                                      uint64_t scheduledTimeNs) {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_connected)
            return GC_ERR_IO;
        // Like a broadcast action on the wire, a command for other devices is simply ignored.
        if (deviceKey != uint32_t(m_registers.GetInt("ActionDeviceKey")) ||
            groupKey != uint32_t(m_registers.GetInt("ActionGroupKey")) ||
            (groupMask & uint32_t(m_registers.GetInt("ActionGroupMask"))) == 0)
            return GC_ERR_SUCCESS;
        Trigger(TriggerSource::Action1, scheduledTimeNs);
    }
    m_wake.notify_all();
    return GC_ERR_SUCCESS;
}

GC_ERROR VirtualCamera::ForceIp(uint32_t ip, uint32_t subnet, uint32_t gateway) {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_connected)
        return GC_ERR_IO;
    m_registers.SetInt("GevCurrentIPAddress", ip);
    m_registers.SetInt("GevCurrentSubnetMask", subnet);
    m_registers.SetInt("GevCurrentDefaultGateway", gateway);
    DeviceIdentity identity = Identity();
    identity.ip = ip;
    identity.subnet = subnet;
    identity.gateway = gateway;
    ReplaceIdentity(identity);
    return GC_ERR_SUCCESS;
}

void VirtualCamera::ReplaceIdentity(const DeviceIdentity& identity) {
    m_identities.push_back(identity);
    m_identity = &m_identities.back();
}

void VirtualCamera::SetConnected(bool connected) {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_connected = connected;
    m_wake.notify_all();
    if (connected)
        return;
    StopAcquisition();
    // A frame already on its way is finished; after that nothing reaches the sinks. Only an
    // unplug waits: a running stream is busy again the moment it is let go, so a replug that
    // waited for an idle moment could wait for ever.
    m_wake.wait(lock, [this] {
        return std::none_of(m_streams.begin(), m_streams.end(),
                            [](const StreamState& s) { return s.busy; });
    });
}

void VirtualCamera::InjectFrameFault(FrameFault fault, uint32_t count) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_faults.insert(m_faults.end(), count, fault);
}

bool VirtualCamera::CarriesFrames(uint32_t stream) {
    const StreamRole role = m_model.streams[stream];
    if (!m_model.transportSelection)
        return role != StreamRole::Idle;
    const auto protocol = TransportProtocol(m_registers.GetInt("TransportStreamProtocol"));
    return (role == StreamRole::Udp && protocol == TransportProtocol::UDP) ||
           (role == StreamRole::Tcp && protocol == TransportProtocol::TCP) ||
           (role == StreamRole::Rdma && protocol == TransportProtocol::RDMA);
}

bool VirtualCamera::ReadyToStart(uint32_t index, uint64_t now, uint64_t& wakeAt) {
    StreamState& stream = m_streams[index];
    wakeAt = 0;
    if (!m_connected || !m_acquiring || !CarriesFrames(index) || stream.started >= stream.maxFrames)
        return false;
    if (stream.generation != m_generation) {
        stream.generation = m_generation;
        const auto mode = AcquisitionMode(m_registers.GetInt("AcquisitionMode"));
        stream.remaining = mode == AcquisitionMode::SingleFrame ? 1
                           : mode == AcquisitionMode::MultiFrame
                               ? m_registers.GetInt("AcquisitionFrameCount")
                               : -1;
        stream.nextStartNs = now;
    }
    if (stream.remaining == 0)
        return false;
    uint64_t earliest = stream.nextStartNs;
    if (TriggerGated(index)) {
        if (stream.triggers.empty())
            return false;
        earliest = std::max(earliest, stream.triggers.front());
    }
    if (earliest > now) {
        wakeAt = earliest;
        return false;
    }
    return true;
}

bool VirtualCamera::NextFrame(uint32_t index, FrameOrder& order) {
    std::unique_lock<std::mutex> lock(m_mutex);
    StreamState& stream = m_streams[index];
    if (stream.busy) {
        stream.busy = false;
        m_wake.notify_all();
    }
    for (;;) {
        if (stream.stopping)
            return false;
        const uint64_t now = NowNs();
        uint64_t wakeAt = 0;
        if (ReadyToStart(index, now, wakeAt))
            break;
        if (wakeAt)
            m_wake.wait_until(lock, TimePoint(wakeAt));
        else
            m_wake.wait(lock);
    }
    const uint64_t now = NowNs();
    const uint64_t period = FramePeriodNs();
    const bool triggered = TriggerGated(index);
    // A free-running stream that fell behind starts afresh instead of bursting to catch up.
    uint64_t start = stream.nextStartNs;
    if (triggered || now - start > period) {
        start = now;
        if (triggered)
            stream.triggers.pop_front();
    }
    stream.nextStartNs = start + period;
    stream.started++;
    FillOrder(index, start, order);
    if (stream.remaining > 0 && --stream.remaining == 0)
        StopAcquisition(); // SingleFrame and MultiFrame end by themselves
    stream.busy = true;
    return true;
}

void VirtualCamera::FillOrder(uint32_t index, uint64_t startNs, FrameOrder& order) {
    StreamState& stream = m_streams[index];
    if (ExposureAuto(m_registers.GetInt("ExposureAuto")) == ExposureAuto::Continuous)
        m_registers.SetFloat("ExposureTime", AutoExposureTime());
    order.settings = CurrentSettings();
    order.frameId = stream.nextFrameId++;
    order.startNs = startNs;
    order.exposureNs = uint64_t(m_registers.GetFloat("ExposureTime") * kNsPerMicrosecond);
    if (m_model.streams[index] == StreamRole::EventData) {
        order.events = CurrentEventSettings();
        order.events.triggers = uint32_t(stream.triggers.size());
        stream.triggers.clear();
        order.exposureNs = FramePeriodNs();
    }
    order.faulty = !m_faults.empty();
    if (order.faulty) {
        order.fault = m_faults.front();
        m_faults.pop_front();
    }
}

bool VirtualCamera::SleepUntil(uint32_t index, uint64_t timeNs) {
    if (NowNs() >= timeNs) // short exposures at high rates: no need to look at the flags yet
        return true;
    std::unique_lock<std::mutex> lock(m_mutex);
    const StreamState& stream = m_streams[index];
    return !m_wake.wait_until(lock, TimePoint(timeNs),
                              [&] { return stream.stopping || !m_connected; });
}

void VirtualCamera::ExtendFrame(uint32_t index, uint32_t periods) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_streams[index].nextStartNs += periods * FramePeriodNs();
}

void VirtualCamera::Notify(CameraEvent event, uint64_t frameId, uint64_t timestampNs) {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (((m_registers.GetInt("EventNotificationMask") >> int(event)) & 1) == 0)
            return;
    }
    std::lock_guard<std::mutex> lock(m_eventMutex);
    if (!m_eventSink)
        return;
    GevEvent data{EventIdOf(event), 0, frameId, timestampNs, std::vector<uint8_t>(8)};
    for (int i = 0; i < 8; ++i)
        data.data[i] = uint8_t(frameId >> (56 - 8 * i));
    if (++m_eventRequestId == 0) // GVCP request IDs are never zero
        m_eventRequestId = 1;
    const std::vector<uint8_t> message = BuildGevEventMessage({data}, m_eventRequestId, false);
    m_eventSink->DeliverRemoteEvent(message.data(), message.size());
}

void VirtualCamera::Trigger(TriggerSource source, uint64_t timeNs) {
    if (!m_acquiring)
        return;
    const bool armed = m_registers.GetInt("TriggerMode") != 0 &&
                       TriggerSource(m_registers.GetInt("TriggerSource")) == source;
    for (uint32_t i = 0; i < m_streams.size(); ++i) {
        const bool eventSensorInput =
            m_model.streams[i] == StreamRole::EventData && source == TriggerSource::Software;
        if (m_streams[i].worker && CarriesFrames(i) && (armed || eventSensorInput))
            m_streams[i].triggers.push_back(timeNs);
    }
}

void VirtualCamera::StartAcquisition() {
    if (m_acquiring || !m_connected)
        return;
    m_acquiring = true;
    ++m_generation;
    m_acquisitionStartNs = NowNs();
}

void VirtualCamera::StopAcquisition() {
    if (!m_acquiring)
        return;
    m_acquiring = false;
    m_acquiredNs += NowNs() - m_acquisitionStartNs;
    for (StreamState& stream : m_streams)
        stream.triggers.clear();
}

double VirtualCamera::MaxFrameRate() {
    const double byExposure = 1e6 / m_registers.GetFloat("ExposureTime");
    if (m_registers.GetInt("DeviceLinkThroughputLimitMode") == 0)
        return byExposure;
    // Every packet also carries IP, UDP and stream headers, so small packets cost bandwidth.
    const double packet = double(m_registers.GetInt("DeviceStreamChannelPacketSize"));
    const double wire =
        double(std::max<size_t>(CurrentPayloadBytes(), 1)) * packet / (packet - kPacketHeaderBytes);
    const double byLink = double(m_registers.GetInt("DeviceLinkThroughputLimit")) / wire;
    return std::min(byExposure, byLink);
}

double VirtualCamera::ResultingFrameRate() {
    const double max = MaxFrameRate();
    if (m_registers.GetInt("AcquisitionFrameRateEnable") == 0)
        return max;
    return std::min(max, m_registers.GetFloat("AcquisitionFrameRate"));
}

std::map<uint64_t, uint32_t> VirtualCamera::RegisterLayout() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::map<uint64_t, uint32_t> layout;
    for (const auto& [address, entry] : m_registers.Entries())
        layout.emplace(address, entry.definition.length);
    return layout;
}

bool VirtualCamera::TriggerGated(uint32_t stream) {
    // The event sensor's slices run freely; a trigger only marks them.
    return m_registers.GetInt("TriggerMode") != 0 &&
           m_model.streams[stream] != StreamRole::EventData;
}

uint64_t VirtualCamera::FramePeriodNs() {
    return uint64_t(double(kNsPerSecond) / ResultingFrameRate());
}

} // namespace Producer
} // namespace Orvan
