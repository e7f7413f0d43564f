#include "GigeInterfaceBackend.h"

#include "../GenTLError.h"
#include "GevProtocol.h"
#include "GigeCamera.h"
#include "GigeSettings.h"
#include "GvcpCodec.h"
#include "GvcpStatus.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace Orvan {
namespace Producer {

namespace {

// How long FORCEIP waits for its acknowledge per attempt, and how often it tries: a camera
// changing its address may take a moment before it answers from the new one.
constexpr uint64_t kForceIpAttemptMs = 500;
constexpr int kForceIpAttempts = 3;
// The rediscovery after a FORCEIP only has to reach one known address.
constexpr uint64_t kRediscoveryMs = 300;

bool SameAddressing(const DeviceIdentity& a, const DeviceIdentity& b) {
    return a.ip == b.ip && a.subnet == b.subnet && a.gateway == b.gateway &&
           a.userDefinedName == b.userDefinedName && a.dhcp == b.dhcp &&
           a.persistentIp == b.persistentIp && a.lla == b.lla;
}

std::string MacText(uint64_t mac) {
    char text[18];
    std::snprintf(text, sizeof(text), "%02x:%02x:%02x:%02x:%02x:%02x", unsigned(mac >> 40 & 0xFF),
                  unsigned(mac >> 32 & 0xFF), unsigned(mac >> 24 & 0xFF),
                  unsigned(mac >> 16 & 0xFF), unsigned(mac >> 8 & 0xFF), unsigned(mac & 0xFF));
    return text;
}

} // namespace

GigeInterfaceBackend::GigeInterfaceBackend(const HostInterface& host, uint16_t port)
    : m_host(host), m_port(port) {}

GigeInterfaceBackend::~GigeInterfaceBackend() = default;

std::vector<std::shared_ptr<InterfaceBackend>> GigeInterfaceBackend::ForHost() {
    std::vector<std::shared_ptr<InterfaceBackend>> backends;
    const GigeSettings& settings = GigeSettings::Instance();
    if (!settings.Enabled())
        return backends;
    const uint16_t port = settings.Port();
    for (const HostInterface& host : ListHostInterfaces())
        if (settings.Selects(host.name))
            backends.push_back(std::make_shared<GigeInterfaceBackend>(host, port));
    return backends;
}

std::string GigeInterfaceBackend::DisplayName() const {
    return "GigE Vision on " + m_host.name + " (" + FormatIp(m_host.ip) + ")";
}

InterfaceAddress GigeInterfaceBackend::Address() const {
    InterfaceAddress address;
    address.mac = m_host.mac;
    address.ip = m_host.ip;
    address.subnet = m_host.netmask;
    address.gateway = m_host.gateway;
    return address;
}

void GigeInterfaceBackend::SetConnectionListener(ConnectionListener listener) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_listener = std::move(listener);
}

uint16_t GigeInterfaceBackend::NextRequestId() {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (++m_requestId == 0) // 0 is no valid request id
        m_requestId = 1;
    return m_requestId;
}

std::vector<uint32_t> GigeInterfaceBackend::BroadcastTargets() const {
    std::vector<uint32_t> targets{m_host.broadcast};
    if (m_host.loopback)
        targets.push_back(m_host.ip);
    return targets;
}

std::vector<DeviceIdentity> GigeInterfaceBackend::Collect(DiscoverySocket& socket,
                                                          uint16_t requestId, uint64_t timeoutMs) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    std::vector<DeviceIdentity> answers;
    uint8_t datagram[Gev::kGvcpMaxMessage + 64];
    while (size_t size = socket.Receive(datagram, sizeof(datagram), deadline)) {
        std::optional<DeviceIdentity> identity = ParseDiscoveryAck(datagram, size, requestId);
        if (!identity)
            continue;
        // A camera reached both by broadcast and by its unicast address answers twice.
        bool seen = std::any_of(answers.begin(), answers.end(), [&](const DeviceIdentity& known) {
            return known.id == identity->id;
        });
        if (!seen)
            answers.push_back(std::move(*identity));
    }
    return answers;
}

std::shared_ptr<GigeCamera> GigeInterfaceBackend::Adopt(const DeviceIdentity& identity) {
    std::shared_ptr<GigeCamera> camera;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (const auto& known : m_cameras)
            if (known->Identity().id == identity.id)
                camera = known;
        if (!camera) {
            camera = std::make_shared<GigeCamera>(identity, m_host.ip, m_port);
            camera->SetBroadcastAddress(m_host.broadcast);
            if (m_listener) {
                ConnectionListener listener = m_listener;
                std::string id = identity.id;
                camera->SetConnectionCallback(
                    [listener, id](bool connected) { listener(id, connected); });
            }
            m_cameras.push_back(camera);
            return camera;
        }
    }
    // A camera coming back reports so through the listener: not under the lock.
    if (!camera->IsConnected() || !SameAddressing(camera->Identity(), identity))
        camera->Rediscovered(identity, m_host.ip);
    return camera;
}

std::vector<std::shared_ptr<RemoteDevice>>
GigeInterfaceBackend::Discover(uint64_t timeoutMs, const std::vector<uint32_t>& unicast) {
    std::lock_guard<std::mutex> discovery(m_discoveryMutex);
    DiscoverySocket socket(m_host.ip);
    const uint16_t requestId = NextRequestId();
    const std::vector<uint8_t> command = BuildDiscoveryCommand(requestId, false);
    for (uint32_t target : BroadcastTargets())
        socket.Send(command, target, m_port);
    for (uint32_t target : unicast)
        socket.Send(command, target, m_port);
    std::vector<DeviceIdentity> answers = Collect(socket, requestId, timeoutMs);

    std::vector<std::shared_ptr<GigeCamera>> found;
    for (const DeviceIdentity& identity : answers)
        found.push_back(Adopt(identity));
    // Listed in the order cameras were first seen, so indexes stay put between updates.
    std::vector<std::shared_ptr<RemoteDevice>> listed;
    std::lock_guard<std::mutex> lock(m_mutex);
    for (const auto& camera : m_cameras)
        if (std::find(found.begin(), found.end(), camera) != found.end())
            listed.push_back(camera);
    return listed;
}

void GigeInterfaceBackend::ForceIp(uint64_t mac, uint32_t ip, uint32_t subnet, uint32_t gateway,
                                   const std::vector<uint32_t>& unicast) {
    std::lock_guard<std::mutex> discovery(m_discoveryMutex);
    DiscoverySocket socket(m_host.ip);
    // Besides the broadcast, the command goes to the camera's last known address and the
    // unicast list: a camera on loopback or behind a router sees no broadcast.
    std::vector<uint32_t> targets = BroadcastTargets();
    targets.insert(targets.end(), unicast.begin(), unicast.end());
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (const auto& camera : m_cameras)
            if (camera->Identity().mac == mac)
                targets.push_back(camera->Identity().ip);
    }
    bool acknowledged = false;
    for (int attempt = 0; attempt < kForceIpAttempts && !acknowledged; ++attempt) {
        const uint16_t requestId = NextRequestId();
        const std::vector<uint8_t> command =
            BuildForceIpCommand(requestId, mac, ip, subnet, gateway);
        for (uint32_t target : targets)
            socket.Send(command, target, m_port);
        const auto deadline =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(kForceIpAttemptMs);
        uint8_t datagram[Gev::kGvcpMaxMessage + 64];
        while (size_t size = socket.Receive(datagram, sizeof(datagram), deadline)) {
            std::optional<GvcpAck> ack = ParseAck(datagram, size);
            uint32_t pendingMs = 0;
            if (!ack ||
                ClassifyAck(*ack, Gev::ForceIpAck, requestId, pendingMs) != AckVerdict::Answer)
                continue;
            if (ack->status != Gev::Success)
                throw GenTLError(GvcpStatusError(ack->status),
                                 "The camera " + MacText(mac) +
                                     " refused FORCEIP: " + GvcpStatusText(ack->status));
            acknowledged = true;
            break;
        }
    }
    if (!acknowledged)
        throw GenTLError(GenTL::GC_ERR_TIMEOUT, "No camera with MAC address " + MacText(mac) +
                                                    " acknowledged FORCEIP on " + m_host.name);
    // The camera answers from its new address now; its object learns it by discovery.
    const uint16_t requestId = NextRequestId();
    const std::vector<uint8_t> command = BuildDiscoveryCommand(requestId, false);
    std::vector<uint32_t> again = BroadcastTargets();
    again.insert(again.end(), unicast.begin(), unicast.end());
    again.push_back(ip);
    for (uint32_t target : again)
        socket.Send(command, target, m_port);
    for (const DeviceIdentity& identity : Collect(socket, requestId, kRediscoveryMs))
        Adopt(identity);
}

int32_t GigeInterfaceBackend::AccessStatus(const RemoteDevice& camera) const {
    return camera.QueryAccessStatus();
}

std::vector<std::shared_ptr<RemoteDevice>> GigeInterfaceBackend::KnownCameras() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return {m_cameras.begin(), m_cameras.end()};
}

} // namespace Producer
} // namespace Orvan
