// A host network interface as a GenTL interface: discovery by broadcast and by the unicast
// list, FORCEIP, and the GigE Vision cameras found there, kept for the life of the system module
// so that a camera found again is the same object.
#ifndef ORVAN_GENTL_GIGE_GIGEINTERFACEBACKEND_H
#define ORVAN_GENTL_GIGE_GIGEINTERFACEBACKEND_H

#include "../InterfaceBackend.h"
#include "DiscoverySocket.h"
#include "HostInterfaces.h"

#include <map>
#include <mutex>

namespace Orvan {
namespace Producer {

class GigeCamera;

class GigeInterfaceBackend : public InterfaceBackend {
public:
    GigeInterfaceBackend(const HostInterface& host, uint16_t port);
    ~GigeInterfaceBackend() override;

    // One backend per host interface the settings select, in kernel order.
    static std::vector<std::shared_ptr<InterfaceBackend>> ForHost();

    std::string Id() const override { return "GEV::" + m_host.name; }
    std::string DisplayName() const override;
    std::string Model() const override { return "Orvan GigE Vision interface"; }
    InterfaceAddress Address() const override;
    std::vector<std::shared_ptr<RemoteDevice>>
    Discover(uint64_t timeoutMs, const std::vector<uint32_t>& unicast) override;
    void ForceIp(uint64_t mac, uint32_t ip, uint32_t subnet, uint32_t gateway,
                 const std::vector<uint32_t>& unicast) override;
    int32_t AccessStatus(const RemoteDevice& camera) const override;
    std::vector<std::shared_ptr<RemoteDevice>> KnownCameras() const override;
    void SetConnectionListener(ConnectionListener listener) override;

private:
    // Where a broadcast command goes on this interface: the subnet's broadcast address and,
    // on loopback, the interface's own address (a camera bound to 127.0.0.1 sees no broadcast).
    std::vector<uint32_t> BroadcastTargets() const;
    std::vector<DeviceIdentity> Collect(DiscoverySocket& socket, uint16_t requestId,
                                        uint64_t timeoutMs);
    std::shared_ptr<GigeCamera> Adopt(const DeviceIdentity& identity);
    uint16_t NextRequestId();

    const HostInterface m_host;
    const uint16_t m_port;
    std::mutex m_discoveryMutex; // one discovery or FORCEIP at a time on an interface
    mutable std::mutex m_mutex;
    std::vector<std::shared_ptr<GigeCamera>> m_cameras; // in the order first found
    ConnectionListener m_listener;
    uint16_t m_requestId = 0;
};

} // namespace Producer
} // namespace Orvan

#endif
