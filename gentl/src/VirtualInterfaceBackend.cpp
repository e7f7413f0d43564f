#include "VirtualInterfaceBackend.h"

#include "GenTLError.h"
#include "VirtualNetwork.h"

namespace Orvan {
namespace Producer {

VirtualInterfaceBackend::VirtualInterfaceBackend(uint32_t index,
                                                 std::vector<std::shared_ptr<RemoteDevice>> cameras)
    : m_id(VirtualNetwork::InterfaceId(index)), m_cameras(std::move(cameras)) {
    m_address.mac = VirtualNetwork::InterfaceMac(index);
    m_address.ip = VirtualNetwork::InterfaceIp(index);
    m_address.subnet = VirtualNetwork::kInterfaceSubnet;
}

std::string VirtualInterfaceBackend::DisplayName() const {
    return VirtualNetwork::InterfaceDisplayName(m_id);
}

// Virtual cameras answer at once, so neither the timeout nor the unicast list matters.
std::vector<std::shared_ptr<RemoteDevice>>
VirtualInterfaceBackend::Discover(uint64_t, const std::vector<uint32_t>&) {
    std::vector<std::shared_ptr<RemoteDevice>> found;
    for (const auto& camera : m_cameras)
        if (camera->IsConnected())
            found.push_back(camera);
    return found;
}

void VirtualInterfaceBackend::ForceIp(uint64_t mac, uint32_t ip, uint32_t subnet, uint32_t gateway,
                                      const std::vector<uint32_t>&) {
    for (const auto& camera : m_cameras) {
        if (camera->Identity().mac == mac) {
            GenTL::GC_ERROR status = camera->ForceIp(ip, subnet, gateway);
            if (status != GenTL::GC_ERR_SUCCESS)
                throw GenTLError(status, "The camera refused FORCEIP");
            return;
        }
    }
    throw GenTLError(GenTL::GC_ERR_INVALID_ID,
                     "No camera with that MAC address answers on " + m_id);
}

// Nobody else shares a virtual camera: whatever this producer has not opened is free.
int32_t VirtualInterfaceBackend::AccessStatus(const RemoteDevice&) const {
    return GenTL::DEVICE_ACCESS_STATUS_READWRITE;
}

} // namespace Producer
} // namespace Orvan
