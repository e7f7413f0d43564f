// A virtual interface: a fixed set of virtual cameras, of which discovery finds those that are
// plugged in.
#ifndef ORVAN_GENTL_VIRTUALINTERFACEBACKEND_H
#define ORVAN_GENTL_VIRTUALINTERFACEBACKEND_H

#include "InterfaceBackend.h"

namespace Orvan {
namespace Producer {

class VirtualInterfaceBackend : public InterfaceBackend {
public:
    VirtualInterfaceBackend(uint32_t index, std::vector<std::shared_ptr<RemoteDevice>> cameras);

    std::string Id() const override { return m_id; }
    std::string DisplayName() const override;
    std::string Model() const override { return "Orvan virtual interface"; }
    InterfaceAddress Address() const override { return m_address; }
    std::vector<std::shared_ptr<RemoteDevice>>
    Discover(uint64_t timeoutMs, const std::vector<uint32_t>& unicast) override;
    void ForceIp(uint64_t mac, uint32_t ip, uint32_t subnet, uint32_t gateway,
                 const std::vector<uint32_t>& unicast) override;
    int32_t AccessStatus(const RemoteDevice& camera) const override;
    std::vector<std::shared_ptr<RemoteDevice>> KnownCameras() const override { return m_cameras; }

private:
    const std::string m_id;
    InterfaceAddress m_address;
    const std::vector<std::shared_ptr<RemoteDevice>> m_cameras;
};

} // namespace Producer
} // namespace Orvan

#endif
