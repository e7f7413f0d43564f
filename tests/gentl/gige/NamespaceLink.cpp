#include "NamespaceLink.h"

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

namespace GigeTest {

namespace {

uint32_t Ip(const std::string& dotted) {
    unsigned a = 0, b = 0, c = 0, d = 0;
    std::sscanf(dotted.c_str(), "%u.%u.%u.%u", &a, &b, &c, &d);
    return a << 24 | b << 16 | c << 8 | d;
}

} // namespace

// The host end broadcasts to every address: a camera bound to its own address hears only
// those broadcasts, not the subnet's.
NamespaceLink::NamespaceLink(uint32_t mtu) {
    const std::string id = std::to_string(getpid());
    const std::string net = "10.213." + std::to_string(getpid() % 250) + ".";
    m_namespace = "orvan-link-" + id;
    m_hostInterface = "ovh" + id;
    m_hostIp = Ip(net + "1");
    m_cameraIp = Ip(net + "2");
    const std::string camera = "ovc" + id;
    const std::string in = "ip netns exec " + m_namespace + " ";
    m_ready = Run("ip netns add " + m_namespace) &&
              Run("ip link add " + m_hostInterface + " type veth peer name " + camera) &&
              Run("ip link set " + camera + " netns " + m_namespace) &&
              Run("ip addr add " + net + "1/30 broadcast 255.255.255.255 dev " + m_hostInterface) &&
              Run("ip link set " + m_hostInterface + " mtu " + std::to_string(mtu) + " up") &&
              Run(in + "ip addr add " + net + "2/30 dev " + camera) &&
              Run(in + "ip link set " + camera + " mtu " + std::to_string(mtu) + " up");
}

NamespaceLink::~NamespaceLink() {
    Run("ip netns delete " + m_namespace);
}

std::unique_ptr<Orvan::Emulator::EmulatedCamera>
NamespaceLink::StartCamera(Orvan::Emulator::EmulatorOptions options) {
    options.bindIp = m_cameraIp;
    std::unique_ptr<Orvan::Emulator::EmulatedCamera> camera;
    std::thread([&] {
        const int fd = open(("/var/run/netns/" + m_namespace).c_str(), O_RDONLY | O_CLOEXEC);
        if (fd >= 0 && setns(fd, CLONE_NEWNET) == 0) {
            camera = std::make_unique<Orvan::Emulator::EmulatedCamera>(options);
            camera->Start();
        }
        if (fd >= 0)
            close(fd);
    }).join();
    return camera;
}

bool NamespaceLink::Run(const std::string& command) {
    if (std::system((command + " >/dev/null 2>&1").c_str()) == 0)
        return true;
    if (m_error.empty())
        m_error = "'" + command + "' failed";
    return false;
}

} // namespace GigeTest
