// What the system reports about one of its interfaces (a network adapter or another
// transport).
#ifndef ORVAN_INTERFACEINFO_H
#define ORVAN_INTERFACEINFO_H

#include <Base/GCString.h>

#include <cstdint>

namespace Orvan {

class InterfaceInfo {
public:
    InterfaceInfo() = default;
    InterfaceInfo(const GenICam::gcstring& id, uint64_t ipAddress, uint64_t subnetMask,
                  uint64_t macAddress);

    // IPv4 values hold the first octet in the most significant byte of the low 32 bits.
    uint64_t IpAddress() const { return m_ipAddress; }
    GenICam::gcstring IpAddressStr() const;
    uint64_t SubnetMask() const { return m_subnetMask; }
    GenICam::gcstring SubnetMaskStr() const;
    // The low 48 bits, first octet most significant.
    uint64_t MacAddress() const { return m_macAddress; }
    GenICam::gcstring MacAddressStr() const;

    // The producer's identifier of the interface, which UpdateDevices finds it by.
    const GenICam::gcstring& Id() const { return m_id; }

private:
    GenICam::gcstring m_id;
    uint64_t m_ipAddress = 0;
    uint64_t m_subnetMask = 0;
    uint64_t m_macAddress = 0;
};

} // namespace Orvan

#endif
