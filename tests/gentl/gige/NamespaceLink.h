// A veth pair whose camera end sits in a network namespace of its own, for tests that need a
// real link rather than loopback: another MTU, a driver that runs XDP. Needs root and
// iproute2; Error() says what was missing.
#ifndef ORVAN_TESTS_GENTL_GIGE_NAMESPACELINK_H
#define ORVAN_TESTS_GENTL_GIGE_NAMESPACELINK_H

#include "EmulatedCamera.h"

#include <cstdint>
#include <memory>
#include <string>

namespace GigeTest {

class NamespaceLink {
public:
    explicit NamespaceLink(uint32_t mtu); // both ends
    ~NamespaceLink();                     // takes the pair along
    NamespaceLink(const NamespaceLink&) = delete;
    NamespaceLink& operator=(const NamespaceLink&) = delete;

    bool Ready() const { return m_ready; }
    const std::string& Error() const { return m_error; }
    const std::string& HostInterface() const { return m_hostInterface; }
    uint32_t HostIp() const { return m_hostIp; }
    uint32_t CameraIp() const { return m_cameraIp; }

    // Sockets belong to the namespace of the thread that opens them, and threads started from
    // there stay in it: the camera starts on a thread that entered the namespace, bound to the
    // camera end's address.
    std::unique_ptr<Orvan::Emulator::EmulatedCamera>
    StartCamera(Orvan::Emulator::EmulatorOptions options);

private:
    bool Run(const std::string& command);

    std::string m_namespace;
    std::string m_hostInterface;
    std::string m_error;
    uint32_t m_hostIp = 0;
    uint32_t m_cameraIp = 0;
    bool m_ready = false;
};

} // namespace GigeTest

#endif
