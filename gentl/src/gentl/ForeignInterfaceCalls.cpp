// Interface-module calls on foreign interfaces.
#include "../InfoValue.h"
#include "ForeignCalls.h"
#include "Forwarding.h"

namespace Orvan {
namespace Producer {
namespace Foreign {

GC_ERROR IFClose(IF_HANDLE hInterface) {
    GC_ERROR result = ORVAN_FORWARD(kInterfaceKind, IFClose, hInterface);
    if (result == GC_ERR_SUCCESS)
        ForeignHandles::Instance().RemoveTree(hInterface);
    return result;
}

GC_ERROR IFGetInfo(IF_HANDLE hInterface, INTERFACE_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                   size_t* size) {
    return Forward(EntryPoint::IFGetInfo, hInterface, kInterfaceKind,
                   [&](const ForeignModule& m) -> GC_ERROR {
                       if (cmd == INTERFACE_INFO_ID) {
                           InfoValue::String(m.interfaceId).WriteTo(type, buffer, size);
                           return GC_ERR_SUCCESS;
                       }
                       m.Producer().RequireCustomId(cmd, INTERFACE_INFO_CUSTOM_ID);
                       return m.Functions().IFGetInfo(m.Foreign(), cmd, type, buffer, size);
                   });
}

GC_ERROR IFGetNumDevices(IF_HANDLE hInterface, uint32_t* numDevices) {
    return ORVAN_FORWARD(kInterfaceKind, IFGetNumDevices, hInterface, numDevices);
}

GC_ERROR IFGetDeviceID(IF_HANDLE hInterface, uint32_t index, char* id, size_t* size) {
    return ORVAN_FORWARD(kInterfaceKind, IFGetDeviceID, hInterface, index, id, size);
}

GC_ERROR IFUpdateDeviceList(IF_HANDLE hInterface, bool8_t* changed, uint64_t timeout) {
    return ORVAN_FORWARD(kInterfaceKind, IFUpdateDeviceList, hInterface, changed, timeout);
}

GC_ERROR IFGetDeviceInfo(IF_HANDLE hInterface, const char* deviceId, DEVICE_INFO_CMD cmd,
                         INFO_DATATYPE* type, void* buffer, size_t* size) {
    return Forward(EntryPoint::IFGetDeviceInfo, hInterface, kInterfaceKind,
                   [&](const ForeignModule& m) -> GC_ERROR {
                       m.Producer().RequireCustomId(cmd, DEVICE_INFO_CUSTOM_ID);
                       return m.Functions().IFGetDeviceInfo(m.Foreign(), deviceId, cmd, type,
                                                            buffer, size);
                   });
}

GC_ERROR IFOpenDevice(IF_HANDLE hInterface, const char* deviceId, DEVICE_ACCESS_FLAGS openFlags,
                      DEV_HANDLE* phDevice) {
    return Forward(EntryPoint::IFOpenDevice, hInterface, kInterfaceKind,
                   [&](const ForeignModule& m) -> GC_ERROR {
                       return OpenChild(m, hInterface, HandleKind::Device, phDevice, [&](void** h) {
                           return m.Functions().IFOpenDevice(m.Foreign(), deviceId, openFlags, h);
                       });
                   });
}

GC_ERROR IFGetParentTL(IF_HANDLE hInterface, TL_HANDLE* phSystem) {
    return Forward(EntryPoint::IFGetParentTL, hInterface, kInterfaceKind,
                   [&](const ForeignModule& m) -> GC_ERROR {
                       RequirePointer(phSystem, "phSystem");
                       *phSystem = m.Parent();
                       return GC_ERR_SUCCESS;
                   });
}

GC_ERROR IFForceIp(IF_HANDLE hInterface, uint64_t macAddress, uint32_t ip, uint32_t subnet,
                   uint32_t gateway) {
    return ORVAN_FORWARD(kInterfaceKind, IFForceIp, hInterface, macAddress, ip, subnet, gateway);
}

GC_ERROR IFAddUnicastDiscoveryDevice(IF_HANDLE hInterface, uint32_t ip) {
    return ORVAN_FORWARD(kInterfaceKind, IFAddUnicastDiscoveryDevice, hInterface, ip);
}

GC_ERROR IFRemoveUnicastDiscoveryDevice(IF_HANDLE hInterface, uint32_t ip) {
    return ORVAN_FORWARD(kInterfaceKind, IFRemoveUnicastDiscoveryDevice, hInterface, ip);
}

GC_ERROR IFGetUnicastDiscoveryDevices(IF_HANDLE hInterface, uint32_t* ips, uint32_t* count) {
    return ORVAN_FORWARD(kInterfaceKind, IFGetUnicastDiscoveryDevices, hInterface, ips, count);
}

} // namespace Foreign
} // namespace Producer
} // namespace Orvan
