#include "NewBufferEvent.h"

#include "GenTLError.h"

#include <cstring>

namespace Orvan {
namespace Producer {

void NewBufferEvent::GetData(void* buffer, size_t* size, uint64_t timeoutMs) {
    RequirePointer(buffer, "buffer");
    RequirePointer(size, "size");
    constexpr size_t needed = sizeof(GenTL::EVENT_NEW_BUFFER_DATA);
    if (*size < needed) {
        *size = needed;
        throw GenTLError(GenTL::GC_ERR_BUFFER_TOO_SMALL, "New-buffer event data needs 16 bytes");
    }
    GenTL::EVENT_NEW_BUFFER_DATA record;
    m_pool->WaitDelivered(record, timeoutMs);
    std::memcpy(buffer, &record, needed);
    *size = needed;
}

} // namespace Producer
} // namespace Orvan
