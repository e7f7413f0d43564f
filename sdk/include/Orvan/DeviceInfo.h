// What the system reports about one camera found on an interface; given back to CreateDevice
// to open it.
#ifndef ORVAN_DEVICEINFO_H
#define ORVAN_DEVICEINFO_H

#include <Base/GCString.h>

#include <cstdint>

namespace Orvan {

class DeviceInfo {
public:
    GenICam::gcstring ModelName() const { return m_modelName; }
    GenICam::gcstring VendorName() const { return m_vendorName; }
    GenICam::gcstring SerialNumber() const { return m_serialNumber; }
    // IPv4 values hold the first octet in the most significant byte of the low 32 bits.
    uint64_t IpAddress() const { return m_ipAddress; }
    GenICam::gcstring IpAddressStr() const;
    // The low 48 bits, first octet most significant; written "02:00:5e:0a:12:ab".
    uint64_t MacAddress() const { return m_macAddress; }
    GenICam::gcstring MacAddressStr() const;
    uint64_t SubnetMask() const { return m_subnetMask; }
    GenICam::gcstring SubnetMaskStr() const;
    uint64_t DefaultGateway() const { return m_defaultGateway; }
    GenICam::gcstring DefaultGatewayStr() const;
    bool IsDHCPConfigurationEnabled() const { return m_dhcpEnabled; }
    bool IsPersistentIpConfigurationEnabled() const { return m_persistentIpEnabled; }
    bool IsLLAConfigurationEnabled() const { return m_llaEnabled; }
    GenICam::gcstring UserDefinedName() const { return m_userDefinedName; }
    GenICam::gcstring DeviceVersion() const { return m_deviceVersion; }

    // Where the camera was found: the producer's device identifier and the MAC and IPv4
    // address of the interface that reported it.
    GenICam::gcstring DeviceId() const { return m_deviceId; }
    uint64_t InterfaceMacAddress() const { return m_interfaceMacAddress; }
    uint64_t InterfaceIpAddress() const { return m_interfaceIpAddress; }
    // The id of that interface; another producer's interfaces carry its name in front
    // ("<producer>::<its own id>").
    GenICam::gcstring InterfaceId() const { return m_interfaceId; }

private:
    friend class System;

    GenICam::gcstring m_modelName;
    GenICam::gcstring m_vendorName;
    GenICam::gcstring m_serialNumber;
    uint64_t m_ipAddress = 0;
    uint64_t m_macAddress = 0;
    uint64_t m_subnetMask = 0;
    GenICam::gcstring m_userDefinedName;
    uint64_t m_defaultGateway = 0;
    bool m_dhcpEnabled = false;
    bool m_persistentIpEnabled = false;
    bool m_llaEnabled = false;
    uint64_t m_interfaceMacAddress = 0;
    uint64_t m_interfaceIpAddress = 0;
    GenICam::gcstring m_deviceVersion;
    GenICam::gcstring m_deviceId;
    GenICam::gcstring m_interfaceId;
};

} // namespace Orvan

#endif
