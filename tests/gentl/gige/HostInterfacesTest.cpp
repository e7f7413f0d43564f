// The host's interfaces as the kernel lists them elsewhere: /sys for link addresses, a routing
// table for gateways.
#include "gige/HostInterfaces.h"

#include <gtest/gtest.h>

#include <fstream>

using Orvan::Producer::HostInterface;
using Orvan::Producer::ListHostInterfaces;
using Orvan::Producer::ParseDefaultGateways;

namespace {

uint64_t SysMac(const std::string& name) {
    std::ifstream file("/sys/class/net/" + name + "/address");
    std::string text;
    file >> text;
    uint64_t mac = 0;
    for (char c : text)
        if (c != ':')
            mac = mac << 4 | uint64_t(std::stoi(std::string(1, c), nullptr, 16));
    return mac;
}

} // namespace

TEST(HostInterfaces, LoopbackIsListedAndLinkAddressesMatchTheKernels) {
    const std::vector<HostInterface> hosts = ListHostInterfaces();
    bool loopback = false;
    for (const HostInterface& host : hosts) {
        SCOPED_TRACE(host.name);
        EXPECT_EQ(host.mac, SysMac(host.name));
        EXPECT_EQ(host.broadcast & host.netmask, host.ip & host.netmask);
        if (host.name == "lo") {
            loopback = host.loopback;
            EXPECT_EQ(host.ip, 0x7F000001u);
            EXPECT_EQ(host.netmask, 0xFF000000u);
            EXPECT_EQ(host.broadcast, 0x7FFFFFFFu);
        }
    }
    EXPECT_TRUE(loopback);
}

TEST(HostInterfaces, OnlyDefaultRoutesGiveGateways) {
    const std::string table = "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\n"
                              "eth0\t00000000\t010200C0\t0003\t0\t0\t0\t00000000\n"
                              "eth0\t000200C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\n"
                              "eth1\t0000A8C0\t0100A8C0\t0003\t0\t0\t0\t00FFFFFF\n"
                              "garbage\n";
    const auto gateways = ParseDefaultGateways(table);
    ASSERT_EQ(gateways.size(), 1u);
    EXPECT_EQ(gateways[0].first, "eth0");
    EXPECT_EQ(gateways[0].second, 0xC0000201u); // 192.0.2.1
}
