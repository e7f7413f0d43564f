#include "TLEvent.h"

namespace Orvan {

int32_t TLEvent::GetData(void* buffer, size_t* size, uint64_t timeout) {
    return GenTL::EventGetData(m_handle, buffer, size, timeout);
}

int32_t TLEvent::GetDataInfo(const void* buffer, size_t size, int32_t cmd, int32_t* type, void* out,
                             size_t* outSize) {
    return GenTL::EventGetDataInfo(m_handle, buffer, size, cmd, type, out, outSize);
}

int32_t TLEvent::GetInfo(int32_t cmd, int32_t* type, void* buffer, size_t* size) {
    return GenTL::EventGetInfo(m_handle, cmd, type, buffer, size);
}

int32_t TLEvent::Flush() {
    return GenTL::EventFlush(m_handle);
}

int32_t TLEvent::Kill() {
    return GenTL::EventKill(m_handle);
}

} // namespace Orvan
