// Data-stream calls on foreign streams. Buffer handles are the producer's own and pass through
// unchanged: only the stream they belong to ever reads them, and a frame costs no lookup more.
#include "ForeignCalls.h"
#include "Forwarding.h"

namespace Orvan {
namespace Producer {
namespace Foreign {

GC_ERROR DSAnnounceBuffer(DS_HANDLE hDataStream, void* memory, size_t size, void* userPointer,
                          BUFFER_HANDLE* phBuffer) {
    return ORVAN_FORWARD(kStreamKind, DSAnnounceBuffer, hDataStream, memory, size, userPointer,
                         phBuffer);
}

GC_ERROR DSAllocAndAnnounceBuffer(DS_HANDLE hDataStream, size_t size, void* userPointer,
                                  BUFFER_HANDLE* phBuffer) {
    return ORVAN_FORWARD(kStreamKind, DSAllocAndAnnounceBuffer, hDataStream, size, userPointer,
                         phBuffer);
}

GC_ERROR DSFlushQueue(DS_HANDLE hDataStream, ACQ_QUEUE_TYPE operation) {
    return ORVAN_FORWARD(kStreamKind, DSFlushQueue, hDataStream, operation);
}

GC_ERROR DSStartAcquisition(DS_HANDLE hDataStream, ACQ_START_FLAGS flags, uint64_t numToAcquire) {
    return ORVAN_FORWARD(kStreamKind, DSStartAcquisition, hDataStream, flags, numToAcquire);
}

GC_ERROR DSStopAcquisition(DS_HANDLE hDataStream, ACQ_STOP_FLAGS flags) {
    return ORVAN_FORWARD(kStreamKind, DSStopAcquisition, hDataStream, flags);
}

GC_ERROR DSGetInfo(DS_HANDLE hDataStream, STREAM_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                   size_t* size) {
    return ORVAN_FORWARD(kStreamKind, DSGetInfo, hDataStream, cmd, type, buffer, size);
}

GC_ERROR DSGetBufferID(DS_HANDLE hDataStream, uint32_t index, BUFFER_HANDLE* phBuffer) {
    return ORVAN_FORWARD(kStreamKind, DSGetBufferID, hDataStream, index, phBuffer);
}

GC_ERROR DSClose(DS_HANDLE hDataStream) {
    GC_ERROR result = ORVAN_FORWARD(kStreamKind, DSClose, hDataStream);
    if (result == GC_ERR_SUCCESS)
        ForeignHandles::Instance().RemoveTree(hDataStream);
    return result;
}

GC_ERROR DSRevokeBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, void** memory,
                        void** userPointer) {
    return ORVAN_FORWARD(kStreamKind, DSRevokeBuffer, hDataStream, hBuffer, memory, userPointer);
}

GC_ERROR DSQueueBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer) {
    return ORVAN_FORWARD(kStreamKind, DSQueueBuffer, hDataStream, hBuffer);
}

GC_ERROR DSGetParentDev(DS_HANDLE hDataStream, DEV_HANDLE* phDevice) {
    return Forward(EntryPoint::DSGetParentDev, hDataStream, kStreamKind,
                   [&](const ForeignModule& m) -> GC_ERROR {
                       RequirePointer(phDevice, "phDevice");
                       *phDevice = m.Parent();
                       return GC_ERR_SUCCESS;
                   });
}

GC_ERROR DSGetNumFlows(DS_HANDLE hDataStream, uint32_t* numFlows) {
    return ORVAN_FORWARD(kStreamKind, DSGetNumFlows, hDataStream, numFlows);
}

GC_ERROR DSGetFlowInfo(DS_HANDLE hDataStream, uint32_t flowIndex, FLOW_INFO_CMD cmd,
                       INFO_DATATYPE* type, void* buffer, size_t* size) {
    return ORVAN_FORWARD(kStreamKind, DSGetFlowInfo, hDataStream, flowIndex, cmd, type, buffer,
                         size);
}

GC_ERROR DSGetBufferInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, BUFFER_INFO_CMD cmd,
                         INFO_DATATYPE* type, void* buffer, size_t* size) {
    return ORVAN_FORWARD(kStreamKind, DSGetBufferInfo, hDataStream, hBuffer, cmd, type, buffer,
                         size);
}

GC_ERROR DSGetBufferChunkData(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                              SINGLE_CHUNK_DATA* chunks, size_t* numChunks) {
    return ORVAN_FORWARD(kStreamKind, DSGetBufferChunkData, hDataStream, hBuffer, chunks,
                         numChunks);
}

GC_ERROR DSGetNumBufferParts(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t* numParts) {
    return ORVAN_FORWARD(kStreamKind, DSGetNumBufferParts, hDataStream, hBuffer, numParts);
}

GC_ERROR DSGetBufferPartInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t partIndex,
                             BUFFER_PART_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                             size_t* size) {
    return ORVAN_FORWARD(kStreamKind, DSGetBufferPartInfo, hDataStream, hBuffer, partIndex, cmd,
                         type, buffer, size);
}

GC_ERROR DSGetBufferInfoStacked(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                DS_BUFFER_INFO_STACKED* infos, size_t numInfos) {
    return ORVAN_FORWARD(kStreamKind, DSGetBufferInfoStacked, hDataStream, hBuffer, infos,
                         numInfos);
}

GC_ERROR DSGetBufferPartInfoStacked(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                    DS_BUFFER_PART_INFO_STACKED* infos, size_t numInfos) {
    return ORVAN_FORWARD(kStreamKind, DSGetBufferPartInfoStacked, hDataStream, hBuffer, infos,
                         numInfos);
}

GC_ERROR DSWaitForNextLeader(DS_HANDLE hDataStream, uint64_t timeoutMs) {
    return ORVAN_FORWARD(kStreamKind, DSWaitForNextLeader, hDataStream, timeoutMs);
}

GC_ERROR DSResetWaitForNextLeader(DS_HANDLE hDataStream) {
    return ORVAN_FORWARD(kStreamKind, DSResetWaitForNextLeader, hDataStream);
}

GC_ERROR DSSetupResendRetryParams(DS_HANDLE hDataStream, uint64_t frameCount, double frameRate,
                                  const char* serialNumber, const char* firmwareVersion,
                                  int32_t width, int32_t height) {
    return ORVAN_FORWARD(kStreamKind, DSSetupResendRetryParams, hDataStream, frameCount, frameRate,
                         serialNumber, firmwareVersion, width, height);
}

} // namespace Foreign
} // namespace Producer
} // namespace Orvan
