#include "TLSystem.h"

namespace Orvan {

int32_t TLSystem::Open() {
    return GenTL::TLOpen(&m_handle);
}

int32_t TLSystem::Close() {
    return GenTL::TLClose(m_handle);
}

int32_t TLSystem::GetInfo(int32_t cmd, int32_t* type, void* buffer, size_t* size) {
    return GenTL::TLGetInfo(m_handle, cmd, type, buffer, size);
}

int32_t TLSystem::GetNumInterfaces(uint32_t* count) {
    return GenTL::TLGetNumInterfaces(m_handle, count);
}

int32_t TLSystem::GetInterfaceID(uint32_t index, char* id, size_t* size) {
    return GenTL::TLGetInterfaceID(m_handle, index, id, size);
}

int32_t TLSystem::GetInterfaceInfo(const char* id, int32_t cmd, int32_t* type, void* buffer,
                                   size_t* size) {
    return GenTL::TLGetInterfaceInfo(m_handle, id, cmd, type, buffer, size);
}

int32_t TLSystem::OpenInterface(const char* id, void** handle) {
    return GenTL::TLOpenInterface(m_handle, id, handle);
}

int32_t TLSystem::UpdateInterfaceList(bool* changed, uint64_t timeout) {
    // The producer writes a one-byte flag that may hold any non-zero value; a bool may not.
    GenTL::bool8_t flag = 0;
    int32_t status = GenTL::TLUpdateInterfaceList(m_handle, changed ? &flag : nullptr, timeout);
    if (changed)
        *changed = flag != 0;
    return status;
}

} // namespace Orvan
