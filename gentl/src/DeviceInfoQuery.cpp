#include "DeviceInfoQuery.h"

#include "GenTLError.h"

#include <GenTL/GenTLExtensions.h>

namespace Orvan {
namespace Producer {

std::string DeviceDisplayName(const DeviceIdentity& identity) {
    return identity.vendor + " " + identity.model + " (" + identity.serialNumber + ")";
}

InfoValue QueryDeviceInfo(const RemoteDevice& camera, int32_t accessStatus,
                          GenTL::DEVICE_INFO_CMD cmd) {
    const DeviceIdentity& identity = camera.Identity();
    switch (cmd) {
    case GenTL::DEVICE_INFO_ID:
        return InfoValue::String(identity.id);
    case GenTL::DEVICE_INFO_VENDOR:
        return InfoValue::String(identity.vendor);
    case GenTL::DEVICE_INFO_MODEL:
        return InfoValue::String(identity.model);
    case GenTL::DEVICE_INFO_TLTYPE:
        return InfoValue::String(identity.tlType);
    case GenTL::DEVICE_INFO_DISPLAYNAME:
        return InfoValue::String(DeviceDisplayName(identity));
    case GenTL::DEVICE_INFO_ACCESS_STATUS:
        return InfoValue::Int32(accessStatus);
    case GenTL::DEVICE_INFO_USER_DEFINED_NAME:
        return InfoValue::String(identity.userDefinedName);
    case GenTL::DEVICE_INFO_SERIAL_NUMBER:
        return InfoValue::String(identity.serialNumber);
    case GenTL::DEVICE_INFO_VERSION:
        return InfoValue::String(identity.version);
    case GenTL::DEVICE_INFO_TIMESTAMP_FREQUENCY:
        return InfoValue::UInt64(camera.TimestampFrequency());
    case GenTL::DEVICE_INFO_ORVAN_GEV_MAC_ADDRESS:
        return InfoValue::Int64(static_cast<int64_t>(identity.mac));
    case GenTL::DEVICE_INFO_ORVAN_GEV_IP_ADDRESS:
        return InfoValue::UInt32(identity.ip);
    case GenTL::DEVICE_INFO_ORVAN_GEV_SUBNET_MASK:
        return InfoValue::UInt32(identity.subnet);
    case GenTL::DEVICE_INFO_ORVAN_GEV_DEFAULT_GATEWAY:
        return InfoValue::UInt32(identity.gateway);
    case GenTL::DEVICE_INFO_ORVAN_GEV_DHCP_ENABLED:
        return InfoValue::Bool8(identity.dhcp);
    case GenTL::DEVICE_INFO_ORVAN_GEV_PERSISTENT_IP_ENABLED:
        return InfoValue::Bool8(identity.persistentIp);
    case GenTL::DEVICE_INFO_ORVAN_GEV_LLA_ENABLED:
        return InfoValue::Bool8(identity.lla);
    case GenTL::DEVICE_INFO_ORVAN_RESERVED_1004:
        throw GenTLError(GenTL::GC_ERR_NOT_IMPLEMENTED, "Device info 1004 is reserved");
    default:
        throw GenTLError(GenTL::GC_ERR_INVALID_PARAMETER,
                         "Unknown device info command " + std::to_string(cmd));
    }
}

} // namespace Producer
} // namespace Orvan
