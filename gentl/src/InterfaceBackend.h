// What stands behind an interface module: the network it reaches and how cameras on it are
// found. The virtual interfaces and the host's GigE Vision interfaces are the two kinds.
#ifndef ORVAN_GENTL_INTERFACEBACKEND_H
#define ORVAN_GENTL_INTERFACEBACKEND_H

#include "RemoteDevice.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Orvan {
namespace Producer {

struct InterfaceAddress {
    uint64_t mac = 0;
    uint32_t ip = 0; // host order
    uint32_t subnet = 0;
    uint32_t gateway = 0;
};

// Lives as long as the system module, so that a camera keeps its object across interface
// closes and rediscoveries. Every call is thread-safe.
class InterfaceBackend {
public:
    // Told when a camera's connection changes on its own (heartbeat loss, return).
    using ConnectionListener = std::function<void(const std::string& deviceId, bool connected)>;

    virtual ~InterfaceBackend() = default;

    virtual std::string Id() const = 0;
    virtual std::string DisplayName() const = 0;
    // What the interface is, as its port's model name.
    virtual std::string Model() const = 0;
    virtual InterfaceAddress Address() const = 0;

    // The cameras that answer now, waiting at most timeoutMs for answers; unicast lists
    // addresses (host order) asked directly besides the broadcast.
    virtual std::vector<std::shared_ptr<RemoteDevice>>
    Discover(uint64_t timeoutMs, const std::vector<uint32_t>& unicast) = 0;
    // FORCEIP to the camera with that MAC; throws GenTLError when it does not take it.
    virtual void ForceIp(uint64_t mac, uint32_t ip, uint32_t subnet, uint32_t gateway,
                         const std::vector<uint32_t>& unicast) = 0;
    // DEVICE_ACCESS_STATUS of a camera this producer has not opened.
    virtual int32_t AccessStatus(const RemoteDevice& camera) const = 0;
    // Every camera ever found, whether it answers now or not.
    virtual std::vector<std::shared_ptr<RemoteDevice>> KnownCameras() const = 0;

    // Set once, before the first Discover.
    virtual void SetConnectionListener(ConnectionListener /*listener*/) {}
};

} // namespace Producer
} // namespace Orvan

#endif
