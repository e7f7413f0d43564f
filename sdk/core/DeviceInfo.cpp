#include <Orvan/DeviceInfo.h>

#include "AddressText.h"

namespace Orvan {

GenICam::gcstring DeviceInfo::IpAddressStr() const {
    return Ipv4Text(m_ipAddress);
}

GenICam::gcstring DeviceInfo::MacAddressStr() const {
    return MacText(m_macAddress);
}

GenICam::gcstring DeviceInfo::SubnetMaskStr() const {
    return Ipv4Text(m_subnetMask);
}

GenICam::gcstring DeviceInfo::DefaultGatewayStr() const {
    return Ipv4Text(m_defaultGateway);
}

} // namespace Orvan
