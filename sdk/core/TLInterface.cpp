#include "TLInterface.h"

#include <GenTL/GenTLExtensions.h>

namespace Orvan {

int32_t TLInterface::Close() {
    return GenTL::IFClose(m_handle);
}

int32_t TLInterface::UpdateDeviceList(bool* changed, uint64_t timeout) {
    // The producer writes a one-byte flag that may hold any non-zero value; a bool may not.
    GenTL::bool8_t flag = 0;
    int32_t status = GenTL::IFUpdateDeviceList(m_handle, changed ? &flag : nullptr, timeout);
    if (changed)
        *changed = flag != 0;
    return status;
}

int32_t TLInterface::GetInfo(int32_t cmd, int32_t* type, void* buffer, size_t* size) {
    return GenTL::IFGetInfo(m_handle, cmd, type, buffer, size);
}

int32_t TLInterface::GetNumDevices(uint32_t* count) {
    return GenTL::IFGetNumDevices(m_handle, count);
}

int32_t TLInterface::GetDeviceID(uint32_t index, char* id, size_t* size) {
    return GenTL::IFGetDeviceID(m_handle, index, id, size);
}

int32_t TLInterface::GetDeviceInfo(const char* id, int32_t cmd, int32_t* type, void* buffer,
                                   size_t* size) {
    return GenTL::IFGetDeviceInfo(m_handle, id, cmd, type, buffer, size);
}

int32_t TLInterface::OpenDevice(const char* id, int32_t accessFlags, void** handle) {
    return GenTL::IFOpenDevice(m_handle, id, accessFlags, handle);
}

int32_t TLInterface::ForceIp(uint64_t mac, uint32_t ip, uint32_t subnet, uint32_t gateway) {
    return GenTL::IFForceIp(m_handle, mac, ip, subnet, gateway);
}

int32_t TLInterface::AddUnicastDiscoveryDevice(uint32_t ip) {
    return GenTL::IFAddUnicastDiscoveryDevice(m_handle, ip);
}

int32_t TLInterface::RemoveUnicastDiscoveryDevice(uint32_t ip) {
    return GenTL::IFRemoveUnicastDiscoveryDevice(m_handle, ip);
}

int32_t TLInterface::GetUnicastDiscoveryDevices(uint32_t* ips, uint32_t* count) {
    return GenTL::IFGetUnicastDiscoveryDevices(m_handle, ips, count);
}

} // namespace Orvan
