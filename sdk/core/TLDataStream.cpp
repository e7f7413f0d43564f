#include "TLDataStream.h"

#include <GenTL/GenTLExtensions.h>

namespace Orvan {

int32_t TLDataStream::Close() {
    return GenTL::DSClose(m_handle);
}

int32_t TLDataStream::AnnounceBuffer(void* memory, size_t size, void* userData,
                                     void** bufferHandle) {
    return GenTL::DSAnnounceBuffer(m_handle, memory, size, userData, bufferHandle);
}

int32_t TLDataStream::AllocAndAnnounceBuffer(size_t size, void* userData, void** bufferHandle) {
    return GenTL::DSAllocAndAnnounceBuffer(m_handle, size, userData, bufferHandle);
}

int32_t TLDataStream::QueueBuffer(void* bufferHandle) {
    return GenTL::DSQueueBuffer(m_handle, bufferHandle);
}

int32_t TLDataStream::RevokeBuffer(void* bufferHandle, void** memory, void** userData) {
    return GenTL::DSRevokeBuffer(m_handle, bufferHandle, memory, userData);
}

int32_t TLDataStream::FlushQueue(int32_t operation) {
    return GenTL::DSFlushQueue(m_handle, operation);
}

int32_t TLDataStream::GetInfo(int32_t cmd, int32_t* type, void* buffer, size_t* size) {
    return GenTL::DSGetInfo(m_handle, cmd, type, buffer, size);
}

int32_t TLDataStream::GetBufferID(uint32_t index, void** bufferHandle) {
    return GenTL::DSGetBufferID(m_handle, index, bufferHandle);
}

int32_t TLDataStream::GetBufferInfo(void* bufferHandle, int32_t cmd, int32_t* type, void* buffer,
                                    size_t* size) {
    return GenTL::DSGetBufferInfo(m_handle, bufferHandle, cmd, type, buffer, size);
}

int32_t TLDataStream::StartAcquisition(int32_t flags, uint64_t count) {
    return GenTL::DSStartAcquisition(m_handle, flags, count);
}

int32_t TLDataStream::StopAcquisition(int32_t flags) {
    return GenTL::DSStopAcquisition(m_handle, flags);
}

int32_t TLDataStream::GetBufferChunkData(void* bufferHandle, GenTL::S_SINGLE_CHUNK_DATA* chunks,
                                         size_t* count) {
    return GenTL::DSGetBufferChunkData(m_handle, bufferHandle, chunks, count);
}

int32_t TLDataStream::WaitForNextLeader(uint64_t timeout) {
    return GenTL::DSWaitForNextLeader(m_handle, timeout);
}

int32_t TLDataStream::ResetWaitForNextLeader() {
    return GenTL::DSResetWaitForNextLeader(m_handle);
}

int32_t TLDataStream::SetupResendRetryParams(uint64_t frameCount, double frameRate,
                                             const char* serialNumber, const char* firmwareVersion,
                                             int32_t width, int32_t height) {
    return GenTL::DSSetupResendRetryParams(m_handle, frameCount, frameRate, serialNumber,
                                           firmwareVersion, width, height);
}

} // namespace Orvan
