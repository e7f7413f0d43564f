// The entry points for handles of foreign modules; each exported function of the producer
// passes a foreign handle here. Same signatures as the GenTL functions they serve.
#ifndef ORVAN_GENTL_GENTL_FOREIGNCALLS_H
#define ORVAN_GENTL_GENTL_FOREIGNCALLS_H

#include "ForeignHandles.h"

#include <GenTL/GenTL.h>
#include <GenTL/GenTLExtensions.h>

namespace Orvan {
namespace Producer {
namespace Foreign {

using namespace GenTL;

inline bool Is(const void* handle) {
    return ForeignHandles::IsForeign(handle);
}

GC_ERROR IFClose(IF_HANDLE hInterface);
GC_ERROR IFGetInfo(IF_HANDLE hInterface, INTERFACE_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                   size_t* size);
GC_ERROR IFGetNumDevices(IF_HANDLE hInterface, uint32_t* numDevices);
GC_ERROR IFGetDeviceID(IF_HANDLE hInterface, uint32_t index, char* id, size_t* size);
GC_ERROR IFUpdateDeviceList(IF_HANDLE hInterface, bool8_t* changed, uint64_t timeout);
GC_ERROR IFGetDeviceInfo(IF_HANDLE hInterface, const char* deviceId, DEVICE_INFO_CMD cmd,
                         INFO_DATATYPE* type, void* buffer, size_t* size);
GC_ERROR IFOpenDevice(IF_HANDLE hInterface, const char* deviceId, DEVICE_ACCESS_FLAGS openFlags,
                      DEV_HANDLE* phDevice);
GC_ERROR IFGetParentTL(IF_HANDLE hInterface, TL_HANDLE* phSystem);
GC_ERROR IFForceIp(IF_HANDLE hInterface, uint64_t macAddress, uint32_t ip, uint32_t subnet,
                   uint32_t gateway);
GC_ERROR IFAddUnicastDiscoveryDevice(IF_HANDLE hInterface, uint32_t ip);
GC_ERROR IFRemoveUnicastDiscoveryDevice(IF_HANDLE hInterface, uint32_t ip);
GC_ERROR IFGetUnicastDiscoveryDevices(IF_HANDLE hInterface, uint32_t* ips, uint32_t* count);

GC_ERROR DevGetPort(DEV_HANDLE hDevice, PORT_HANDLE* phRemoteDevice);
GC_ERROR DevGetNumDataStreams(DEV_HANDLE hDevice, uint32_t* numDataStreams);
GC_ERROR DevGetDataStreamID(DEV_HANDLE hDevice, uint32_t index, char* id, size_t* size);
GC_ERROR DevOpenDataStream(DEV_HANDLE hDevice, const char* dataStreamId, DS_HANDLE* phDataStream);
GC_ERROR DevGetInfo(DEV_HANDLE hDevice, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                    size_t* size);
GC_ERROR DevClose(DEV_HANDLE hDevice);
GC_ERROR DevGetParentIF(DEV_HANDLE hDevice, IF_HANDLE* phInterface);
GC_ERROR DevSendActionCommand(DEV_HANDLE hDevice, uint32_t deviceKey, uint32_t groupKey,
                              uint32_t groupMask, uint64_t scheduledTime);

GC_ERROR DSAnnounceBuffer(DS_HANDLE hDataStream, void* memory, size_t size, void* userPointer,
                          BUFFER_HANDLE* phBuffer);
GC_ERROR DSAllocAndAnnounceBuffer(DS_HANDLE hDataStream, size_t size, void* userPointer,
                                  BUFFER_HANDLE* phBuffer);
GC_ERROR DSFlushQueue(DS_HANDLE hDataStream, ACQ_QUEUE_TYPE operation);
GC_ERROR DSStartAcquisition(DS_HANDLE hDataStream, ACQ_START_FLAGS flags, uint64_t numToAcquire);
GC_ERROR DSStopAcquisition(DS_HANDLE hDataStream, ACQ_STOP_FLAGS flags);
GC_ERROR DSGetInfo(DS_HANDLE hDataStream, STREAM_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                   size_t* size);
GC_ERROR DSGetBufferID(DS_HANDLE hDataStream, uint32_t index, BUFFER_HANDLE* phBuffer);
GC_ERROR DSClose(DS_HANDLE hDataStream);
GC_ERROR DSRevokeBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, void** memory,
                        void** userPointer);
GC_ERROR DSQueueBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer);
GC_ERROR DSGetParentDev(DS_HANDLE hDataStream, DEV_HANDLE* phDevice);
GC_ERROR DSGetNumFlows(DS_HANDLE hDataStream, uint32_t* numFlows);
GC_ERROR DSGetFlowInfo(DS_HANDLE hDataStream, uint32_t flowIndex, FLOW_INFO_CMD cmd,
                       INFO_DATATYPE* type, void* buffer, size_t* size);
GC_ERROR DSGetBufferInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, BUFFER_INFO_CMD cmd,
                         INFO_DATATYPE* type, void* buffer, size_t* size);
GC_ERROR DSGetBufferChunkData(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                              SINGLE_CHUNK_DATA* chunks, size_t* numChunks);
GC_ERROR DSGetNumBufferParts(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t* numParts);
GC_ERROR DSGetBufferPartInfo(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t partIndex,
                             BUFFER_PART_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                             size_t* size);
GC_ERROR DSGetBufferInfoStacked(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                DS_BUFFER_INFO_STACKED* infos, size_t numInfos);
GC_ERROR DSGetBufferPartInfoStacked(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer,
                                    DS_BUFFER_PART_INFO_STACKED* infos, size_t numInfos);
GC_ERROR DSWaitForNextLeader(DS_HANDLE hDataStream, uint64_t timeoutMs);
GC_ERROR DSResetWaitForNextLeader(DS_HANDLE hDataStream);
GC_ERROR DSSetupResendRetryParams(DS_HANDLE hDataStream, uint64_t frameCount, double frameRate,
                                  const char* serialNumber, const char* firmwareVersion,
                                  int32_t width, int32_t height);

GC_ERROR GCReadPort(PORT_HANDLE hPort, uint64_t address, void* buffer, size_t* size);
GC_ERROR GCWritePort(PORT_HANDLE hPort, uint64_t address, const void* buffer, size_t* size);
GC_ERROR GCGetPortURL(PORT_HANDLE hPort, char* url, size_t* size);
GC_ERROR GCGetPortInfo(PORT_HANDLE hPort, PORT_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                       size_t* size);
GC_ERROR GCGetNumPortURLs(PORT_HANDLE hPort, uint32_t* numUrls);
GC_ERROR GCGetPortURLInfo(PORT_HANDLE hPort, uint32_t urlIndex, URL_INFO_CMD cmd,
                          INFO_DATATYPE* type, void* buffer, size_t* size);
GC_ERROR GCReadPortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* entries,
                           size_t* numEntries);
GC_ERROR GCWritePortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* entries,
                            size_t* numEntries);

GC_ERROR GCRegisterEvent(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE eventType, EVENT_HANDLE* phEvent);
GC_ERROR GCUnregisterEvent(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE eventType);
GC_ERROR EventGetData(EVENT_HANDLE hEvent, void* buffer, size_t* size, uint64_t timeout);
GC_ERROR EventGetDataInfo(EVENT_HANDLE hEvent, const void* data, size_t dataSize,
                          EVENT_DATA_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_ERROR EventGetInfo(EVENT_HANDLE hEvent, EVENT_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                      size_t* size);
GC_ERROR EventFlush(EVENT_HANDLE hEvent);
GC_ERROR EventKill(EVENT_HANDLE hEvent);

} // namespace Foreign
} // namespace Producer
} // namespace Orvan

#endif
