// A data stream module of the producer: buffer announcement, queueing and acquisition.
#ifndef ORVAN_CORE_TLDATASTREAM_H
#define ORVAN_CORE_TLDATASTREAM_H

#include "TLBase.h"

namespace Orvan {

class TLDataStream : public TLBase {
public:
    using TLBase::TLBase;

    virtual int32_t Close();
    virtual int32_t AnnounceBuffer(void* memory, size_t size, void* userData, void** bufferHandle);
    virtual int32_t AllocAndAnnounceBuffer(size_t size, void* userData, void** bufferHandle);
    virtual int32_t QueueBuffer(void* bufferHandle);
    virtual int32_t RevokeBuffer(void* bufferHandle, void** memory, void** userData);
    virtual int32_t FlushQueue(int32_t operation);
    virtual int32_t GetInfo(int32_t cmd, int32_t* type, void* buffer, size_t* size);
    virtual int32_t GetBufferID(uint32_t index, void** bufferHandle);
    virtual int32_t GetBufferInfo(void* bufferHandle, int32_t cmd, int32_t* type, void* buffer,
                                  size_t* size);
    virtual int32_t StartAcquisition(int32_t flags, uint64_t count);
    virtual int32_t StopAcquisition(int32_t flags);
    virtual int32_t GetBufferChunkData(void* bufferHandle, GenTL::S_SINGLE_CHUNK_DATA* chunks,
                                       size_t* count);
    virtual int32_t WaitForNextLeader(uint64_t timeout);
    virtual int32_t ResetWaitForNextLeader();
    virtual int32_t SetupResendRetryParams(uint64_t frameCount, double frameRate,
                                           const char* serialNumber, const char* firmwareVersion,
                                           int32_t width, int32_t height);
};

} // namespace Orvan

#endif
