#include "TLDevice.h"

#include <GenTL/GenTLExtensions.h>

namespace Orvan {

int32_t TLDevice::Close() {
    return GenTL::DevClose(m_handle);
}

int32_t TLDevice::GetInfo(int32_t cmd, int32_t* type, void* buffer, size_t* size) {
    return GenTL::DevGetInfo(m_handle, cmd, type, buffer, size);
}

int32_t TLDevice::GetPort(void** portHandle) {
    return GenTL::DevGetPort(m_handle, portHandle);
}

int32_t TLDevice::GetNumDataStreams(uint32_t* count) {
    return GenTL::DevGetNumDataStreams(m_handle, count);
}

int32_t TLDevice::GetDataStreamID(uint32_t index, char* id, size_t* size) {
    return GenTL::DevGetDataStreamID(m_handle, index, id, size);
}

int32_t TLDevice::OpenDataStream(const char* id, void** handle) {
    return GenTL::DevOpenDataStream(m_handle, id, handle);
}

int32_t TLDevice::SendActionCommand(uint32_t deviceKey, uint32_t groupKey, uint32_t groupMask,
                                    uint64_t scheduledTime) {
    return GenTL::DevSendActionCommand(m_handle, deviceKey, groupKey, groupMask, scheduledTime);
}

} // namespace Orvan
