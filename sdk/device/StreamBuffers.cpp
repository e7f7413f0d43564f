#include "StreamBuffers.h"

#include "core/ErrorTranslation.h"

#include <GenApi/AccessModeHelpers.h>
#include <GenApi/Pointer.h>

namespace Orvan {

void RevokeAnnouncedBuffers(StreamInfo* info, const char* function) {
    GenApi::CIntegerPtr announced = info->GetNodeMap()->GetNode("StreamAnnouncedBufferCount");
    if (!GenApi::IsReadable(announced))
        return;
    TLDataStream* stream = info->GetTLDataStream();
    // The count is read past any cache: each revocation changes it.
    while (announced->GetValue(false, true) > 0) {
        void* buffer = nullptr;
        int32_t status = stream->GetBufferID(0, &buffer);
        if (status != GenTL::GC_ERR_SUCCESS)
            ThrowGenTLError(status, "Unable to get internal buffer ID",
                            ORVAN_SITE("Device", function), "DSGetBufferID");
        status = stream->RevokeBuffer(buffer, nullptr, nullptr);
        if (status != GenTL::GC_ERR_SUCCESS)
            ThrowGenTLError(status, "Unable to revoke internal buffer",
                            ORVAN_SITE("Device", function), "DSRevokeBuffer");
    }
}

void CleanupAnnouncedBuffersOnStartFailure(StreamInfo* info) {
    const char* function = "CleanupAnnouncedBuffersOnStartFailure";
    if (!info || !info->GetNodeMap())
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "Unable to get TLDatastream nodemap, NULL returned", ORVAN_SITE("Device", function));
    int32_t status = info->GetTLDataStream()->FlushQueue(GenTL::ACQ_QUEUE_ALL_DISCARD);
    if (status != GenTL::GC_ERR_SUCCESS)
        ThrowGenTLError(status, "Unable to flush queue", ORVAN_SITE("Device", function),
                        "DSFlushQueue");
    RevokeAnnouncedBuffers(info, function);
}

} // namespace Orvan
