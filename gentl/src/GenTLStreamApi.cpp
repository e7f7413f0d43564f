// Data-stream entry points: buffers, acquisition, stream information and the stream extensions.
#include "DataStream.h"
#include "EntryGuard.h"
#include "gentl/ForeignCalls.h"

#include <GenTL/GenTL.h>
#include <GenTL/GenTLExtensions.h>

using namespace Orvan::Producer;

namespace {

std::shared_ptr<DataStream> GetStream(GenTL::DS_HANDLE handle) {
    return Resolve<DataStream>(handle, HandleKind::Stream);
}

void RequireSize(size_t size) {
    if (size == 0)
        throw GenTLError(GenTL::GC_ERR_INVALID_PARAMETER, "A buffer needs at least one byte");
}

} // namespace

namespace GenTL {
extern "C" {

GC_ERROR DSAnnounceBuffer(DS_HANDLE hDataStream, void* memory, size_t size, void* userPointer,
                          BUFFER_HANDLE* phBuffer) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSAnnounceBuffer(hDataStream, memory, size, userPointer, phBuffer);
    return Guarded(EntryPoint::DSAnnounceBuffer, [&] {
        auto stream = GetStream(hDataStream);
        RequirePointer(memory, "memory");
        RequirePointer(phBuffer, "phBuffer");
        RequireSize(size);
        *phBuffer =
            stream->Pool().Announce(static_cast<uint8_t*>(memory), size, userPointer, false);
    });
}

GC_ERROR DSAllocAndAnnounceBuffer(DS_HANDLE hDataStream, size_t size, void* userPointer,
                                  BUFFER_HANDLE* phBuffer) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSAllocAndAnnounceBuffer(hDataStream, size, userPointer, phBuffer);
    return Guarded(EntryPoint::DSAllocAndAnnounceBuffer, [&] {
        auto stream = GetStream(hDataStream);
        RequirePointer(phBuffer, "phBuffer");
        RequireSize(size);
        *phBuffer = stream->AllocAndAnnounce(size, userPointer);
    });
}

GC_ERROR DSFlushQueue(DS_HANDLE hDataStream, ACQ_QUEUE_TYPE operation) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSFlushQueue(hDataStream, operation);
    return Guarded(EntryPoint::DSFlushQueue,
                   [&] { GetStream(hDataStream)->Pool().Flush(operation); });
}

GC_ERROR DSStartAcquisition(DS_HANDLE hDataStream, ACQ_START_FLAGS flags, uint64_t numToAcquire) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSStartAcquisition(hDataStream, flags, numToAcquire);
    return Guarded(EntryPoint::DSStartAcquisition, [&] {
        auto stream = GetStream(hDataStream);
        if (flags != ACQ_START_FLAGS_DEFAULT)
            throw GenTLError(GC_ERR_INVALID_PARAMETER, "Unknown start flags");
        // How many frames a camera sends is its own business (AcquisitionMode and
        // AcquisitionFrameCount). Consumers commonly pass their buffer count here while they
        // mean to stream until they stop, so the count is accepted but never ends acquisition.
        (void)numToAcquire;
        stream->Start(GENTL_INFINITE);
    });
}

GC_ERROR DSStopAcquisition(DS_HANDLE hDataStream, ACQ_STOP_FLAGS flags) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSStopAcquisition(hDataStream, flags);
    return Guarded(EntryPoint::DSStopAcquisition, [&] {
        auto stream = GetStream(hDataStream);
        if (flags != ACQ_STOP_FLAGS_DEFAULT && flags != ACQ_STOP_FLAGS_KILL)
            throw GenTLError(GC_ERR_INVALID_PARAMETER, "Unknown stop flags");
        // A kill and an orderly stop end the same way here: the camera hands back the buffer it
        // is filling and the pool puts it first into the input pool.
        stream->Stop();
    });
}

GC_ERROR DSGetInfo(DS_HANDLE hDataStream, STREAM_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                   size_t* size) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSGetInfo(hDataStream, cmd, type, buffer, size);
    return Guarded(EntryPoint::DSGetInfo,
                   [&] { GetStream(hDataStream)->Info(cmd).WriteTo(type, buffer, size); });
}

GC_ERROR DSGetBufferID(DS_HANDLE hDataStream, uint32_t index, BUFFER_HANDLE* phBuffer) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSGetBufferID(hDataStream, index, phBuffer);
    return Guarded(EntryPoint::DSGetBufferID, [&] {
        auto stream = GetStream(hDataStream);
        RequirePointer(phBuffer, "phBuffer");
        *phBuffer = stream->Pool().BufferAt(index);
    });
}

GC_ERROR DSClose(DS_HANDLE hDataStream) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSClose(hDataStream);
    return Guarded(EntryPoint::DSClose, [&] { GetStream(hDataStream)->Close(); });
}

GC_ERROR DSRevokeBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, void** memory,
                        void** userPointer) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSRevokeBuffer(hDataStream, hBuffer, memory, userPointer);
    return Guarded(EntryPoint::DSRevokeBuffer,
                   [&] { GetStream(hDataStream)->Pool().Revoke(hBuffer, memory, userPointer); });
}

GC_ERROR DSQueueBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSQueueBuffer(hDataStream, hBuffer);
    return Guarded(EntryPoint::DSQueueBuffer,
                   [&] { GetStream(hDataStream)->Pool().Queue(hBuffer); });
}

GC_ERROR DSGetParentDev(DS_HANDLE hDataStream, DEV_HANDLE* phDevice) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSGetParentDev(hDataStream, phDevice);
    return Guarded(EntryPoint::DSGetParentDev, [&] {
        auto stream = GetStream(hDataStream);
        RequirePointer(phDevice, "phDevice");
        *phDevice = stream->ParentHandle();
    });
}

// Buffers of this producer are single contiguous blocks: there are no flows.
GC_ERROR DSGetNumFlows(DS_HANDLE hDataStream, uint32_t* numFlows) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSGetNumFlows(hDataStream, numFlows);
    return Guarded(EntryPoint::DSGetNumFlows, [&] {
        GetStream(hDataStream);
        RequirePointer(numFlows, "numFlows");
        *numFlows = 0;
    });
}

GC_ERROR DSGetFlowInfo(DS_HANDLE hDataStream, uint32_t flowIndex, FLOW_INFO_CMD cmd,
                       INFO_DATATYPE* type, void* buffer, size_t* size) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSGetFlowInfo(hDataStream, flowIndex, cmd, type, buffer, size);
    return Guarded(EntryPoint::DSGetFlowInfo, [&] {
        GetStream(hDataStream);
        throw GenTLError(GC_ERR_INVALID_INDEX,
                         "The stream has no flows (index " + std::to_string(flowIndex) + ")");
    });
}

GC_ERROR DSWaitForNextLeader(DS_HANDLE hDataStream, uint64_t timeoutMs) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSWaitForNextLeader(hDataStream, timeoutMs);
    return Guarded(EntryPoint::DSWaitForNextLeader,
                   [&] { GetStream(hDataStream)->Pool().WaitLeader(timeoutMs); });
}

GC_ERROR DSResetWaitForNextLeader(DS_HANDLE hDataStream) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSResetWaitForNextLeader(hDataStream);
    return Guarded(EntryPoint::DSResetWaitForNextLeader,
                   [&] { GetStream(hDataStream)->Pool().ResetLeader(); });
}

GC_ERROR DSSetupResendRetryParams(DS_HANDLE hDataStream, uint64_t frameCount, double frameRate,
                                  const char* serialNumber, const char* firmwareVersion,
                                  int32_t width, int32_t height) {
    if (Foreign::Is(hDataStream))
        return Foreign::DSSetupResendRetryParams(hDataStream, frameCount, frameRate, serialNumber,
                                                 firmwareVersion, width, height);
    return Guarded(EntryPoint::DSSetupResendRetryParams, [&] {
        auto stream = GetStream(hDataStream);
        DataStream::ResendParameters parameters;
        parameters.frameCount = frameCount;
        parameters.frameRate = frameRate;
        parameters.serialNumber = serialNumber ? serialNumber : "";
        parameters.firmwareVersion = firmwareVersion ? firmwareVersion : "";
        parameters.width = width;
        parameters.height = height;
        stream->SetResendParameters(parameters);
    });
}

} // extern "C"
} // namespace GenTL
