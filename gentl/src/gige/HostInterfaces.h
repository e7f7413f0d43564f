// The host's IPv4 network interfaces as the kernel reports them: what a GigE Vision interface
// module shows and where its discovery goes.
#ifndef ORVAN_GENTL_GIGE_HOSTINTERFACES_H
#define ORVAN_GENTL_GIGE_HOSTINTERFACES_H

#include <cstdint>
#include <string>
#include <vector>

namespace Orvan {
namespace Producer {

struct HostInterface {
    std::string name; // kernel name ("eth0", "lo")
    uint64_t mac = 0; // 48-bit; 0 for loopback
    uint32_t ip = 0;  // host order, as every address below
    uint32_t netmask = 0;
    uint32_t broadcast = 0; // the directed broadcast of the subnet
    uint32_t gateway = 0;   // default route through this interface, or 0
    bool loopback = false;
};

// Every interface that is up and carries an IPv4 address, loopback included, in kernel order.
// An interface with several addresses appears once, with its first one.
std::vector<HostInterface> ListHostInterfaces();

// The name of the interface that holds the address (any 127/8 address is loopback's), or "".
std::string InterfaceHolding(uint32_t ip);

// The default gateways per interface name from a routing table in the /proc/net/route layout.
std::vector<std::pair<std::string, uint32_t>> ParseDefaultGateways(const std::string& table);

} // namespace Producer
} // namespace Orvan

#endif
