// Names and addresses of the virtual interfaces. The first one claims the loopback address, so
// a route lookup for a camera on 127.0.0.0/8 finds it.
#ifndef ORVAN_GENTL_VIRTUALNETWORK_H
#define ORVAN_GENTL_VIRTUALNETWORK_H

#include <cstdint>
#include <string>

namespace Orvan {
namespace Producer {
namespace VirtualNetwork {

constexpr uint32_t kInterfaceSubnet = 0xFF000000; // 255.0.0.0

std::string InterfaceId(uint32_t index);
std::string InterfaceDisplayName(const std::string& id);
// Locally administered MAC addresses 02:4F:52:56:00:<index>.
uint64_t InterfaceMac(uint32_t index);
// 127.0.0.1, 127.0.1.1, 127.0.2.1, ...
uint32_t InterfaceIp(uint32_t index);

} // namespace VirtualNetwork
} // namespace Producer
} // namespace Orvan

#endif
