#include <Orvan/InterfaceInfo.h>

#include "AddressText.h"

namespace Orvan {

InterfaceInfo::InterfaceInfo(const GenICam::gcstring& id, uint64_t ipAddress, uint64_t subnetMask,
                             uint64_t macAddress)
    : m_id(id), m_ipAddress(ipAddress), m_subnetMask(subnetMask), m_macAddress(macAddress) {}

GenICam::gcstring InterfaceInfo::IpAddressStr() const {
    return Ipv4Text(m_ipAddress);
}

GenICam::gcstring InterfaceInfo::SubnetMaskStr() const {
    return Ipv4Text(m_subnetMask);
}

GenICam::gcstring InterfaceInfo::MacAddressStr() const {
    return MacText(m_macAddress);
}

} // namespace Orvan
