// Interface-module entry points, with the GigE Vision network extensions.
#include "EntryGuard.h"
#include "Interface.h"
#include "gentl/ForeignCalls.h"

#include <GenTL/GenTL.h>
#include <GenTL/GenTLExtensions.h>

using namespace Orvan::Producer;

namespace {

std::shared_ptr<Interface> GetInterface(GenTL::IF_HANDLE handle) {
    return Resolve<Interface>(handle, HandleKind::Interface);
}

} // namespace

namespace GenTL {
extern "C" {

GC_ERROR IFClose(IF_HANDLE hInterface) {
    if (Foreign::Is(hInterface))
        return Foreign::IFClose(hInterface);
    return Guarded(EntryPoint::IFClose, [&] { GetInterface(hInterface)->Close(); });
}

GC_ERROR IFGetInfo(IF_HANDLE hInterface, INTERFACE_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                   size_t* size) {
    if (Foreign::Is(hInterface))
        return Foreign::IFGetInfo(hInterface, cmd, type, buffer, size);
    return Guarded(EntryPoint::IFGetInfo,
                   [&] { GetInterface(hInterface)->Info(cmd).WriteTo(type, buffer, size); });
}

GC_ERROR IFGetNumDevices(IF_HANDLE hInterface, uint32_t* numDevices) {
    if (Foreign::Is(hInterface))
        return Foreign::IFGetNumDevices(hInterface, numDevices);
    return Guarded(EntryPoint::IFGetNumDevices, [&] {
        auto interface = GetInterface(hInterface);
        RequirePointer(numDevices, "numDevices");
        *numDevices = interface->NumDevices();
    });
}

GC_ERROR IFGetDeviceID(IF_HANDLE hInterface, uint32_t index, char* id, size_t* size) {
    if (Foreign::Is(hInterface))
        return Foreign::IFGetDeviceID(hInterface, index, id, size);
    return Guarded(EntryPoint::IFGetDeviceID,
                   [&] { WriteText(GetInterface(hInterface)->DeviceId(index), id, size); });
}

GC_ERROR IFUpdateDeviceList(IF_HANDLE hInterface, bool8_t* changed, uint64_t timeout) {
    if (Foreign::Is(hInterface))
        return Foreign::IFUpdateDeviceList(hInterface, changed, timeout);
    return Guarded(EntryPoint::IFUpdateDeviceList, [&] {
        bool result = GetInterface(hInterface)->UpdateDeviceList(timeout);
        if (changed)
            *changed = result ? 1 : 0;
    });
}

GC_ERROR IFGetDeviceInfo(IF_HANDLE hInterface, const char* deviceId, DEVICE_INFO_CMD cmd,
                         INFO_DATATYPE* type, void* buffer, size_t* size) {
    if (Foreign::Is(hInterface))
        return Foreign::IFGetDeviceInfo(hInterface, deviceId, cmd, type, buffer, size);
    return Guarded(EntryPoint::IFGetDeviceInfo, [&] {
        auto interface = GetInterface(hInterface);
        RequirePointer(deviceId, "deviceId");
        interface->DeviceInfo(deviceId, cmd).WriteTo(type, buffer, size);
    });
}

GC_ERROR IFOpenDevice(IF_HANDLE hInterface, const char* deviceId, DEVICE_ACCESS_FLAGS openFlags,
                      DEV_HANDLE* phDevice) {
    if (Foreign::Is(hInterface))
        return Foreign::IFOpenDevice(hInterface, deviceId, openFlags, phDevice);
    return Guarded(EntryPoint::IFOpenDevice, [&] {
        auto interface = GetInterface(hInterface);
        RequirePointer(deviceId, "deviceId");
        RequirePointer(phDevice, "phDevice");
        *phDevice = interface->OpenDevice(deviceId, openFlags);
    });
}

GC_ERROR IFGetParentTL(IF_HANDLE hInterface, TL_HANDLE* phSystem) {
    if (Foreign::Is(hInterface))
        return Foreign::IFGetParentTL(hInterface, phSystem);
    return Guarded(EntryPoint::IFGetParentTL, [&] {
        auto interface = GetInterface(hInterface);
        RequirePointer(phSystem, "phSystem");
        *phSystem = interface->ParentHandle();
    });
}

GC_ERROR IFForceIp(IF_HANDLE hInterface, uint64_t macAddress, uint32_t ip, uint32_t subnet,
                   uint32_t gateway) {
    if (Foreign::Is(hInterface))
        return Foreign::IFForceIp(hInterface, macAddress, ip, subnet, gateway);
    return Guarded(EntryPoint::IFForceIp,
                   [&] { GetInterface(hInterface)->ForceIp(macAddress, ip, subnet, gateway); });
}

GC_ERROR IFAddUnicastDiscoveryDevice(IF_HANDLE hInterface, uint32_t ip) {
    if (Foreign::Is(hInterface))
        return Foreign::IFAddUnicastDiscoveryDevice(hInterface, ip);
    return Guarded(EntryPoint::IFAddUnicastDiscoveryDevice,
                   [&] { GetInterface(hInterface)->AddUnicastDevice(ip); });
}

GC_ERROR IFRemoveUnicastDiscoveryDevice(IF_HANDLE hInterface, uint32_t ip) {
    if (Foreign::Is(hInterface))
        return Foreign::IFRemoveUnicastDiscoveryDevice(hInterface, ip);
    return Guarded(EntryPoint::IFRemoveUnicastDiscoveryDevice,
                   [&] { GetInterface(hInterface)->RemoveUnicastDevice(ip); });
}

GC_ERROR IFGetUnicastDiscoveryDevices(IF_HANDLE hInterface, uint32_t* ips, uint32_t* count) {
    if (Foreign::Is(hInterface))
        return Foreign::IFGetUnicastDiscoveryDevices(hInterface, ips, count);
    return Guarded(EntryPoint::IFGetUnicastDiscoveryDevices, [&] {
        auto interface = GetInterface(hInterface);
        RequirePointer(count, "count");
        std::vector<uint32_t> list = interface->UnicastDevices();
        const uint32_t capacity = *count;
        *count = static_cast<uint32_t>(list.size());
        if (!ips)
            return;
        if (capacity < list.size())
            throw GenTLError(GC_ERR_BUFFER_TOO_SMALL,
                             "The list holds " + std::to_string(list.size()) + " addresses");
        std::copy(list.begin(), list.end(), ips);
    });
}

} // extern "C"
} // namespace GenTL
