#include "GigeCamera.h"

#include "../GenTLError.h"
#include "../LastError.h"
#include "GigeMessageChannel.h"
#include "GigeStreamChannel.h"
#include "GvcpCodec.h"
#include "PacketSizeProbe.h"

#include <chrono>
#include <cstdio>
#include <cstring>

namespace Orvan {
namespace Producer {

namespace {

// A camera reporting a tiny timeout still gets heartbeats no more often than every 100 ms.
constexpr uint32_t kMinHeartbeatMs = 300;

// Three beats per timeout: one lost datagram (and its retries) never costs the privilege.
uint32_t HeartbeatPeriod(uint32_t timeoutMs) {
    return std::max(timeoutMs, kMinHeartbeatMs) / 3;
}

uint32_t PacketSizeRegister(uint32_t channel) {
    return Gev::Reg::StreamChannelPacketSize + channel * Gev::Reg::StreamChannelStride;
}

uint32_t PrivilegeFor(GenTL::DEVICE_ACCESS_FLAGS flags, bool& valid) {
    valid = true;
    switch (flags) {
    case GenTL::DEVICE_ACCESS_EXCLUSIVE:
        return Gev::kPrivilegeExclusive;
    case GenTL::DEVICE_ACCESS_CONTROL:
        return Gev::kPrivilegeControl;
    case GenTL::DEVICE_ACCESS_READONLY:
        return 0;
    default:
        valid = false;
        return 0;
    }
}

} // namespace

GigeCamera::GigeCamera(const DeviceIdentity& identity, uint32_t localIp, uint16_t port,
                       GvcpChannel::Options options)
    : m_identity(std::make_shared<const DeviceIdentity>(identity)), m_port(port),
      m_options(options), m_localIp(localIp),
      m_channel(std::make_shared<GvcpChannel>(identity.ip, port, localIp, options)) {
    auto read = [this](uint64_t address, void* data, size_t size) {
        std::shared_ptr<GvcpChannel> channel = Channel();
        return channel->ReadMemory(address, data, size) == GenTL::GC_ERR_SUCCESS;
    };
    auto write = [this](uint64_t address, const void* data, size_t size) {
        size_t done = size;
        return WritePort(address, data, &done) == GenTL::GC_ERR_SUCCESS;
    };
    m_features = std::make_unique<CameraFeatureReader>(read, write);
}

GigeCamera::~GigeCamera() {
    Close();
}

std::shared_ptr<GvcpChannel> GigeCamera::Channel() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_channel;
}

std::shared_ptr<GvcpChannel> GigeCamera::Reachable() const {
    if (!m_connected) {
        SetLastError(GenTL::GC_ERR_IO,
                     "The camera " + Identity().id + " no longer answers (heartbeat lost)");
        return nullptr;
    }
    return Channel();
}

GenTL::GC_ERROR GigeCamera::Report(GenTL::GC_ERROR status, const GvcpChannel& channel) const {
    if (status != GenTL::GC_ERR_SUCCESS)
        SetLastError(status, channel.LastErrorText());
    return status;
}

const DeviceIdentity& GigeCamera::Identity() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return *m_identity;
}

bool GigeCamera::IsConnected() const {
    return m_connected;
}

void GigeCamera::SetConnectionCallback(std::function<void(bool connected)> callback) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_connectionCallback = std::move(callback);
}

void GigeCamera::SetBroadcastAddress(uint32_t broadcast) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_broadcast = broadcast;
}

void GigeCamera::SetConnected(bool connected) {
    if (m_connected.exchange(connected) == connected)
        return;
    std::function<void(bool)> callback;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        callback = m_connectionCallback;
    }
    if (callback)
        callback(connected);
}

GenTL::GC_ERROR GigeCamera::TakePrivilege(GvcpChannel& channel, uint32_t privilege) {
    if (privilege == 0)
        return GenTL::GC_ERR_SUCCESS;
    GenTL::GC_ERROR status = channel.WriteRegister(Gev::Reg::ControlChannelPrivilege, privilege);
    // Some cameras ignore a would-be controller instead of refusing it; a camera that still
    // answers a read and names another holder has refused just the same.
    uint32_t holder = 0;
    if (status == GenTL::GC_ERR_TIMEOUT &&
        channel.ReadRegister(Gev::Reg::ControlChannelPrivilege, holder) == GenTL::GC_ERR_SUCCESS &&
        (holder & (Gev::kPrivilegeExclusive | Gev::kPrivilegeControl)) != 0)
        status = GenTL::GC_ERR_ACCESS_DENIED;
    if (status == GenTL::GC_ERR_ACCESS_DENIED)
        SetLastError(status, "The camera " + Identity().id +
                                 " refused access: another application controls it");
    else
        Report(status, channel);
    return status;
}

void GigeCamera::ReadHeartbeatTimeout(GvcpChannel& channel) {
    uint32_t timeout = 0;
    if (channel.ReadRegister(Gev::Reg::HeartbeatTimeout, timeout) == GenTL::GC_ERR_SUCCESS &&
        timeout != 0) {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_heartbeatMs = timeout;
    }
}

GenTL::GC_ERROR GigeCamera::Open(GenTL::DEVICE_ACCESS_FLAGS flags) {
    bool valid = false;
    const uint32_t privilege = PrivilegeFor(flags, valid);
    if (!valid) {
        SetLastError(GenTL::GC_ERR_INVALID_PARAMETER,
                     "A GigE Vision camera opens read-only, with control or exclusively");
        return GenTL::GC_ERR_INVALID_PARAMETER;
    }
    std::shared_ptr<GvcpChannel> channel = Reachable();
    if (!channel)
        return GenTL::GC_ERR_IO;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_open) {
            SetLastError(GenTL::GC_ERR_RESOURCE_IN_USE, "The camera is already open");
            return GenTL::GC_ERR_RESOURCE_IN_USE;
        }
    }
    const GenTL::GC_ERROR status = TakePrivilege(*channel, privilege);
    if (status != GenTL::GC_ERR_SUCCESS)
        return status;
    ReadHeartbeatTimeout(*channel);
    if (privilege != 0)
        RecordPacketSizes(*channel);
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_open = true;
        m_privilege = privilege;
    }
    StartHeartbeat();
    return GenTL::GC_ERR_SUCCESS;
}

void GigeCamera::Close() {
    {
        std::lock_guard<std::mutex> lock(m_streamsMutex);
        for (auto& stream : m_streams)
            stream.second->Stop();
    }
    SetEventSink(nullptr);
    StopHeartbeat();
    uint32_t privilege = 0;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_open)
            return;
        privilege = m_privilege;
        m_open = false;
        m_privilege = 0;
        m_automaticPacketSizes.clear();
    }
    if (privilege != 0 && m_connected)
        Channel()->WriteRegister(Gev::Reg::ControlChannelPrivilege, 0);
}

int32_t GigeCamera::QueryAccessStatus() const {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_open)
            return m_privilege != 0 ? GenTL::DEVICE_ACCESS_STATUS_OPEN_READWRITE
                                    : GenTL::DEVICE_ACCESS_STATUS_OPEN_READONLY;
    }
    uint32_t privilege = 0;
    const GenTL::GC_ERROR read =
        Channel()->ReadRegister(Gev::Reg::ControlChannelPrivilege, privilege);
    // A camera held exclusively elsewhere answers, but refuses even this read.
    if (read == GenTL::GC_ERR_ACCESS_DENIED)
        return GenTL::DEVICE_ACCESS_STATUS_BUSY;
    if (read != GenTL::GC_ERR_SUCCESS)
        return GenTL::DEVICE_ACCESS_STATUS_NOACCESS;
    if ((privilege & Gev::kPrivilegeExclusive) != 0)
        return GenTL::DEVICE_ACCESS_STATUS_BUSY;
    if ((privilege & Gev::kPrivilegeControl) != 0)
        return GenTL::DEVICE_ACCESS_STATUS_READONLY;
    return GenTL::DEVICE_ACCESS_STATUS_READWRITE;
}

void GigeCamera::StartHeartbeat() {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_heartbeat.joinable())
        return;
    m_stopHeartbeat = false;
    m_heartbeat = std::thread([this] { HeartbeatLoop(); });
}

void GigeCamera::StopHeartbeat() {
    std::thread heartbeat;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stopHeartbeat = true;
        heartbeat = std::move(m_heartbeat);
    }
    m_heartbeatWake.notify_all();
    if (heartbeat.joinable())
        heartbeat.join();
}

// A camera that stopped answering for longer than its own heartbeat timeout has dropped our
// control anyway; it is lost. Until then, a missed heartbeat is retried at once.
void GigeCamera::HeartbeatLoop() {
    using Clock = std::chrono::steady_clock;
    Clock::time_point lastAnswer = Clock::now();
    bool missed = false;
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_stopHeartbeat && m_connected) {
        if (!missed)
            m_heartbeatWake.wait_for(lock,
                                     std::chrono::milliseconds(HeartbeatPeriod(m_heartbeatMs)),
                                     [this] { return m_stopHeartbeat || m_heartbeatChanged; });
        // A new timeout may be shorter than what is left of the old period: beat now.
        m_heartbeatChanged = false;
        if (m_stopHeartbeat)
            break;
        std::shared_ptr<GvcpChannel> channel = m_channel;
        const uint32_t timeoutMs = m_heartbeatMs;
        const uint32_t held = m_privilege;
        lock.unlock();
        // Any command counts as a sign of life; reading the privilege register is harmless
        // and answered even to applications without control.
        uint32_t privilege = 0;
        const GenTL::GC_ERROR status =
            channel->ReadRegister(Gev::Reg::ControlChannelPrivilege, privilege);
        missed = status == GenTL::GC_ERR_TIMEOUT || status == GenTL::GC_ERR_IO;
        if (!missed)
            lastAnswer = Clock::now();
        else if (Clock::now() - lastAnswer >= std::chrono::milliseconds(timeoutMs))
            SetConnected(false);
        // A camera that restarted within the timeout answers, but has forgotten us; whoever
        // took control meanwhile keeps it, and the camera is lost to this application.
        if (!missed && held != 0 && (privilege & held) == 0 &&
            TakePrivilege(*channel, held) != GenTL::GC_ERR_SUCCESS)
            SetConnected(false);
        lock.lock();
    }
}

void GigeCamera::Rediscovered(const DeviceIdentity& identity, uint32_t localIp) {
    std::shared_ptr<GvcpChannel> channel;
    uint32_t privilege = 0;
    bool open = false;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (identity.ip != m_identity->ip || localIp != m_localIp)
            m_channel = std::make_shared<GvcpChannel>(identity.ip, m_port, localIp, m_options);
        m_formerIdentities.push_back(m_identity);
        m_identity = std::make_shared<const DeviceIdentity>(identity);
        m_localIp = localIp;
        channel = m_channel;
        privilege = m_privilege;
        open = m_open;
    }
    if (m_connected)
        return;
    if (open) {
        // The heartbeat thread ended when the camera was lost; a camera that restarted has
        // forgotten us, so control is asked for again.
        StopHeartbeat();
        if (TakePrivilege(*channel, privilege) != GenTL::GC_ERR_SUCCESS)
            return;
        ReadHeartbeatTimeout(*channel);
        SetConnected(true);
        StartHeartbeat();
    } else {
        SetConnected(true);
    }
}

GenTL::GC_ERROR GigeCamera::ReadPort(uint64_t address, void* data, size_t* size) {
    if (data == nullptr || size == nullptr) {
        SetLastError(GenTL::GC_ERR_INVALID_PARAMETER, "No buffer for the register read");
        return GenTL::GC_ERR_INVALID_PARAMETER;
    }
    std::shared_ptr<GvcpChannel> channel = Reachable();
    if (!channel)
        return GenTL::GC_ERR_IO;
    GenTL::GC_ERROR status;
    if (*size == 4 && address % 4 == 0 && address <= 0xFFFFFFFCu) {
        uint32_t value = 0;
        status = channel->ReadRegister(static_cast<uint32_t>(address), value);
        const uint8_t bytes[4] = {static_cast<uint8_t>(value >> 24),
                                  static_cast<uint8_t>(value >> 16),
                                  static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)};
        if (status == GenTL::GC_ERR_SUCCESS)
            std::memcpy(data, bytes, 4);
    } else {
        status = channel->ReadMemory(address, data, *size);
    }
    if (status != GenTL::GC_ERR_SUCCESS)
        *size = 0;
    return Report(status, *channel);
}

GenTL::GC_ERROR GigeCamera::WritePort(uint64_t address, const void* data, size_t* size) {
    if (data == nullptr || size == nullptr) {
        SetLastError(GenTL::GC_ERR_INVALID_PARAMETER, "No data for the register write");
        return GenTL::GC_ERR_INVALID_PARAMETER;
    }
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_open && m_privilege == 0) {
            SetLastError(GenTL::GC_ERR_ACCESS_DENIED, "The camera was opened read-only");
            return GenTL::GC_ERR_ACCESS_DENIED;
        }
    }
    std::shared_ptr<GvcpChannel> channel = Reachable();
    if (!channel)
        return GenTL::GC_ERR_IO;
    GenTL::GC_ERROR status;
    if (*size == 4 && address % 4 == 0 && address <= 0xFFFFFFFCu) {
        const uint8_t* bytes = static_cast<const uint8_t*>(data);
        const uint32_t value = (uint32_t(bytes[0]) << 24) | (uint32_t(bytes[1]) << 16) |
                               (uint32_t(bytes[2]) << 8) | bytes[3];
        status = channel->WriteRegister(static_cast<uint32_t>(address), value);
        // The heartbeat follows a new timeout at once, or a shorter one would drop us.
        if (status == GenTL::GC_ERR_SUCCESS && address == Gev::Reg::HeartbeatTimeout &&
            value != 0) {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_heartbeatMs = value;
            m_heartbeatChanged = true;
            m_heartbeatWake.notify_all();
        }
    } else {
        status = channel->WriteMemory(address, data, *size);
    }
    if (status != GenTL::GC_ERR_SUCCESS)
        *size = 0;
    return Report(status, *channel);
}

std::string GigeCamera::ReadUrl() const {
    char url[512] = {};
    std::shared_ptr<GvcpChannel> channel = Channel();
    if (!m_connected ||
        channel->ReadMemory(Gev::Reg::FirstUrl, url, sizeof url) != GenTL::GC_ERR_SUCCESS)
        return {};
    return std::string(url, strnlen(url, sizeof url));
}

std::string GigeCamera::DescriptionUrl() const {
    return ReadUrl();
}

void GigeCamera::DescriptionVersions(int32_t& schemaMajor, int32_t& schemaMinor, int32_t& fileMajor,
                                     int32_t& fileMinor, int32_t& fileSubminor) const {
    schemaMajor = schemaMinor = fileMajor = fileMinor = fileSubminor = 0;
    const std::string url = ReadUrl();
    const size_t schema = url.find("SchemaVersion=");
    if (schema != std::string::npos) {
        int subminor = 0;
        std::sscanf(url.c_str() + schema + 14, "%d.%d.%d", &schemaMajor, &schemaMinor, &subminor);
    }
    // The file name precedes the first ';' (local) or the query (file:).
    const size_t nameEnd = std::min(url.find(';'), url.find('?'));
    const std::string name = url.substr(0, nameEnd);
    const size_t dot = name.rfind('.');
    const std::string stem = name.substr(0, dot);
    int32_t parts[3] = {0, 0, 0};
    size_t end = stem.size();
    for (int i = 2; i >= 0; --i) {
        const size_t underscore = stem.rfind('_', end == 0 ? 0 : end - 1);
        if (underscore == std::string::npos || underscore + 1 >= end)
            return;
        const std::string digits = stem.substr(underscore + 1, end - underscore - 1);
        if (digits.find_first_not_of("0123456789") != std::string::npos || digits.size() > 6)
            return;
        parts[i] = std::stoi(digits);
        end = underscore;
    }
    fileMajor = parts[0];
    fileMinor = parts[1];
    fileSubminor = parts[2];
}

uint32_t GigeCamera::StreamCount() const {
    std::lock_guard<std::mutex> lock(m_streamCountMutex);
    if (!m_streamCountKnown && m_connected) {
        uint32_t count = 0;
        if (Channel()->ReadRegister(Gev::Reg::NumberOfStreamChannels, count) ==
            GenTL::GC_ERR_SUCCESS) {
            // The register has room for nonsense; no camera has more than 512 channels.
            m_streamCount = std::min<uint32_t>(count, 512);
            m_streamCountKnown = true;
        }
    }
    return m_streamCount;
}

std::string GigeCamera::StreamId(uint32_t index) const {
    if (index >= StreamCount())
        return {};
    return "Stream" + std::to_string(index);
}

uint64_t GigeCamera::PayloadSize(uint32_t index) const {
    if (index >= StreamCount() || !m_connected)
        return 0;
    const std::optional<int64_t> size = m_features->ReadInteger(ReadUrl(), "PayloadSize");
    return size && *size > 0 ? static_cast<uint64_t>(*size) : 0;
}

uint64_t GigeCamera::TimestampFrequency() const {
    std::shared_ptr<GvcpChannel> channel = Channel();
    uint32_t high = 0;
    uint32_t low = 0;
    if (!m_connected ||
        channel->ReadRegister(Gev::Reg::TimestampTickFrequencyHigh, high) !=
            GenTL::GC_ERR_SUCCESS ||
        channel->ReadRegister(Gev::Reg::TimestampTickFrequencyLow, low) != GenTL::GC_ERR_SUCCESS)
        return 0;
    return (static_cast<uint64_t>(high) << 32) | low;
}

GenTL::GC_ERROR GigeCamera::ActionCommand(uint32_t deviceKey, uint32_t groupKey, uint32_t groupMask,
                                          uint64_t scheduledTimeNs) {
    std::shared_ptr<GvcpChannel> channel = Reachable();
    if (!channel)
        return GenTL::GC_ERR_IO;
    uint64_t ticks = 0;
    if (scheduledTimeNs != 0) {
        // The action time is in the camera's ticks.
        const uint64_t frequency = TimestampFrequency();
        if (frequency == 0) {
            SetLastError(GenTL::GC_ERR_IO, "The camera's timestamp frequency is unknown");
            return GenTL::GC_ERR_IO;
        }
        ticks = static_cast<uint64_t>(static_cast<unsigned __int128>(scheduledTimeNs) * frequency /
                                      1000000000u);
        if (ticks == 0)
            ticks = 1;
    }
    const GenTL::GC_ERROR status = channel->Transact(
        [&](uint16_t id) {
            return BuildActionCommand(id, deviceKey, groupKey, groupMask, ticks, true);
        },
        Gev::ActionAck, "an action command");
    return Report(status, *channel);
}

GenTL::GC_ERROR GigeCamera::ForceIp(uint32_t ip, uint32_t subnet, uint32_t gateway) {
    DeviceIdentity identity = Identity();
    std::vector<uint32_t> targets{identity.ip};
    uint32_t localIp = 0;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_broadcast != 0)
            targets.push_back(m_broadcast);
        localIp = m_localIp;
    }
    GenTL::GC_ERROR status = GenTL::GC_ERR_TIMEOUT;
    for (uint32_t target : targets) {
        GvcpChannel channel(target, m_port, localIp, m_options);
        status = channel.Transact(
            [&](uint16_t id) { return BuildForceIpCommand(id, identity.mac, ip, subnet, gateway); },
            Gev::ForceIpAck, "FORCEIP");
        Report(status, channel);
        if (status == GenTL::GC_ERR_SUCCESS)
            break;
    }
    if (status != GenTL::GC_ERR_SUCCESS)
        return status;
    identity.ip = ip;
    identity.subnet = subnet;
    identity.gateway = gateway;
    Rediscovered(identity, localIp);
    return GenTL::GC_ERR_SUCCESS;
}

void GigeCamera::SetEventSink(EventSink* sink) {
    std::lock_guard<std::mutex> lock(m_messageMutex);
    if (m_messages) {
        m_messages->Stop();
        m_messages.reset();
    }
    if (sink == nullptr)
        return;
    std::shared_ptr<GvcpChannel> channel = Reachable();
    if (!channel)
        return;
    auto messages = std::make_unique<GigeMessageChannel>(channel->LocalIp());
    if (messages->Start(channel, sink) == GenTL::GC_ERR_SUCCESS)
        m_messages = std::move(messages);
}

GigeStreamChannel& GigeCamera::Stream(uint32_t index, uint32_t localIp) {
    std::unique_ptr<GigeStreamChannel>& stream = m_streams[index];
    if (!stream)
        stream = std::make_unique<GigeStreamChannel>(index, localIp);
    return *stream;
}

GenTL::GC_ERROR GigeCamera::StartStream(uint32_t index, FrameSink* sink, uint64_t maxFrames) {
    if (sink == nullptr || index >= StreamCount()) {
        SetLastError(GenTL::GC_ERR_INVALID_PARAMETER, "No such stream, or no sink");
        return GenTL::GC_ERR_INVALID_PARAMETER;
    }
    std::shared_ptr<GvcpChannel> channel = Reachable();
    if (!channel)
        return GenTL::GC_ERR_IO;
    const uint64_t frequency = TimestampFrequency();
    std::lock_guard<std::mutex> lock(m_streamsMutex);
    GigeStreamChannel& stream = Stream(index, channel->LocalIp());
    if (stream.Running()) {
        SetLastError(GenTL::GC_ERR_RESOURCE_IN_USE, "The stream is already running");
        return GenTL::GC_ERR_RESOURCE_IN_USE;
    }
    NegotiatePacketSize(*channel, index);
    // The packet-size features describe the first channel; others have only their register.
    std::optional<int64_t> packetSize;
    if (index == 0) {
        const std::string url = ReadUrl();
        packetSize = m_features->ReadInteger(url, "DeviceStreamChannelPacketSize");
        if (!packetSize)
            packetSize = m_features->ReadInteger(url, "GevSCPSPacketSize");
    }
    return stream.Start(channel, sink, maxFrames, frequency, packetSize);
}

void GigeCamera::RecordPacketSizes(GvcpChannel& channel) {
    std::map<uint32_t, uint32_t> sizes;
    for (uint32_t index = 0; index < StreamCount(); ++index) {
        uint32_t value = 0;
        if (channel.ReadRegister(PacketSizeRegister(index), value) == GenTL::GC_ERR_SUCCESS)
            sizes[index] = value & Gev::kPacketSizeMask;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    m_automaticPacketSizes = std::move(sizes);
}

void GigeCamera::NegotiatePacketSize(GvcpChannel& channel, uint32_t index) {
    const uint32_t address = PacketSizeRegister(index);
    uint32_t value = 0;
    if (channel.ReadRegister(address, value) != GenTL::GC_ERR_SUCCESS)
        return;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        const auto automatic = m_automaticPacketSizes.find(index);
        if (automatic == m_automaticPacketSizes.end() ||
            automatic->second != (value & Gev::kPacketSizeMask))
            return;
    }
    std::optional<uint32_t> size;
    try {
        size = PacketSizeProbe(channel, index, channel.LocalIp()).Run(PacketSizeProbe::Options());
    } catch (const GenTLError&) {
        // No socket to listen with: the size stays.
    }
    const uint32_t chosen = size ? *size : value & Gev::kPacketSizeMask;
    // The probe left its last test size behind; the other bits stay as the camera had them.
    const uint32_t flags = value & ~(Gev::kPacketSizeFireTestPacket | Gev::kPacketSizeMask);
    if (channel.WriteRegister(address, flags | chosen) != GenTL::GC_ERR_SUCCESS)
        return;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_automaticPacketSizes[index] = chosen;
    }
    if (size && index == 0)
        SetPacketSizeFeature(chosen);
}

// Most cameras keep the first channel's packet-size feature in its register; the few that do
// not are told the size through the feature itself.
void GigeCamera::SetPacketSizeFeature(uint32_t size) {
    const std::string url = ReadUrl();
    for (const char* name : {"DeviceStreamChannelPacketSize", "GevSCPSPacketSize"}) {
        const std::optional<int64_t> current = m_features->ReadInteger(url, name);
        if (current) {
            if (*current != size)
                m_features->WriteInteger(url, name, size);
            return;
        }
    }
}

void GigeCamera::StopStream(uint32_t index) {
    std::lock_guard<std::mutex> lock(m_streamsMutex);
    auto found = m_streams.find(index);
    if (found != m_streams.end())
        found->second->Stop();
}

template <typename Settings>
void GigeCamera::ConfigureStream(uint32_t index, const Settings& settings) {
    if (index >= StreamCount())
        return;
    std::shared_ptr<GvcpChannel> channel = Channel();
    std::lock_guard<std::mutex> lock(m_streamsMutex);
    Stream(index, channel->LocalIp()).Configure(settings);
}

template <typename Value>
bool GigeCamera::ReadStream(uint32_t index, Value (GigeStreamChannel::*read)() const,
                            Value& out) const {
    std::lock_guard<std::mutex> lock(m_streamsMutex);
    auto found = m_streams.find(index);
    if (found == m_streams.end())
        return false;
    out = ((*found->second).*read)();
    return true;
}

void GigeCamera::ConfigureResend(uint32_t index, const ResendSettings& settings) {
    ConfigureStream(index, settings);
}

bool GigeCamera::GetStreamStatistics(uint32_t index, StreamStatistics& out) const {
    return ReadStream(index, &GigeStreamChannel::Statistics, out);
}

void GigeCamera::ConfigureReceive(uint32_t index, const ReceiveSettings& settings) {
    ConfigureStream(index, settings);
}

bool GigeCamera::GetReceiveInUse(uint32_t index, ReceiveSettings& out) const {
    return ReadStream(index, &GigeStreamChannel::ReceiveInUse, out);
}

} // namespace Producer
} // namespace Orvan
