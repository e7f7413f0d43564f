#include "HostInterfaces.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <netinet/in.h>

#include <fstream>
#include <map>
#include <sstream>

namespace Orvan {
namespace Producer {

namespace {

uint32_t HostOrder(const sockaddr* address) {
    if (!address || address->sa_family != AF_INET)
        return 0;
    return ntohl(reinterpret_cast<const sockaddr_in*>(address)->sin_addr.s_addr);
}

uint64_t MacOf(const sockaddr* address) {
    const auto* link = reinterpret_cast<const sockaddr_ll*>(address);
    if (link->sll_halen != 6)
        return 0;
    uint64_t mac = 0;
    for (int i = 0; i < 6; ++i)
        mac = mac << 8 | link->sll_addr[i];
    return mac;
}

std::string ReadRoutingTable() {
    std::ifstream file("/proc/net/route");
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

} // namespace

std::string InterfaceHolding(uint32_t ip) {
    const bool loopback = (ip >> 24) == 127;
    for (const HostInterface& candidate : ListHostInterfaces())
        if (loopback ? candidate.loopback : candidate.ip == ip)
            return candidate.name;
    return {};
}

std::vector<std::pair<std::string, uint32_t>> ParseDefaultGateways(const std::string& table) {
    std::vector<std::pair<std::string, uint32_t>> gateways;
    std::istringstream lines(table);
    std::string line;
    std::getline(lines, line); // column titles
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        std::string name;
        unsigned long destination = 1, gateway = 0;
        // The table prints addresses as hexadecimal in network byte order read as a native
        // (little-endian on our targets) integer, hence the ntohl below.
        if (!(fields >> name >> std::hex >> destination >> gateway))
            continue;
        if (destination == 0 && gateway != 0)
            gateways.emplace_back(name, ntohl(static_cast<uint32_t>(gateway)));
    }
    return gateways;
}

std::vector<HostInterface> ListHostInterfaces() {
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0)
        return {};
    std::vector<HostInterface> found;
    std::map<std::string, uint64_t> macs;
    for (const ifaddrs* entry = list; entry; entry = entry->ifa_next) {
        if (!entry->ifa_addr || !(entry->ifa_flags & IFF_UP))
            continue;
        if (entry->ifa_addr->sa_family == AF_PACKET) {
            macs[entry->ifa_name] = MacOf(entry->ifa_addr);
            continue;
        }
        if (entry->ifa_addr->sa_family != AF_INET)
            continue;
        bool known = false;
        for (const HostInterface& seen : found)
            known = known || seen.name == entry->ifa_name;
        if (known)
            continue;
        HostInterface host;
        host.name = entry->ifa_name;
        host.ip = HostOrder(entry->ifa_addr);
        host.netmask = HostOrder(entry->ifa_netmask);
        host.loopback = (entry->ifa_flags & IFF_LOOPBACK) != 0;
        // Loopback has no broadcast address of its own; the whole 127/8 net answers there.
        if (entry->ifa_flags & IFF_BROADCAST)
            host.broadcast = HostOrder(entry->ifa_broadaddr);
        if (host.broadcast == 0)
            host.broadcast = host.ip | ~host.netmask;
        found.push_back(host);
    }
    freeifaddrs(list);
    const auto gateways = ParseDefaultGateways(ReadRoutingTable());
    for (HostInterface& host : found) {
        host.mac = macs[host.name];
        for (const auto& gateway : gateways)
            if (gateway.first == host.name && host.gateway == 0)
                host.gateway = gateway.second;
    }
    return found;
}

} // namespace Producer
} // namespace Orvan
