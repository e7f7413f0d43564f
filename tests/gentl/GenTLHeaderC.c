/*
 * The producer headers as strict C11 (built with -pedantic and warnings as errors): everything
 * must be declared at global scope, the structures must keep the layout consumers rely on, and
 * each P<function> pointer type must match its entry point. Only compile-time checks: nothing
 * here refers to a symbol at link time.
 */
#include <GenTL/GenTL.h>
#include <GenTL/GenTLExtensions.h>

#include <stddef.h>
#include <stdint.h>

/* Structure layouts shared with consumers built by other compilers. */
_Static_assert(sizeof(bool8_t) == 1, "bool8_t is one byte");
_Static_assert(sizeof(GC_ERROR) == 4 && sizeof(INFO_DATATYPE) == 4, "codes are 32-bit");
_Static_assert(offsetof(struct S_EVENT_NEW_BUFFER, pUserPointer) == sizeof(void*),
               "new-buffer data: handle, then user pointer");
_Static_assert(offsetof(struct S_SINGLE_CHUNK_DATA, ChunkOffset) == 8,
               "chunk offset follows the id");
_Static_assert(offsetof(struct S_PORT_REGISTER_STACK_ENTRY, pBuffer) == 8, "address is 64-bit");
#if UINTPTR_MAX == UINT64_MAX
_Static_assert(sizeof(struct S_EVENT_NEW_BUFFER) == 16, "16-byte new-buffer record");
_Static_assert(sizeof(struct S_SINGLE_CHUNK_DATA) == 24, "24-byte chunk record");
_Static_assert(sizeof(PORT_REGISTER_STACK_ENTRY) == 24, "24-byte stacked register access");
_Static_assert(sizeof(DS_BUFFER_INFO_STACKED) == 32, "32-byte stacked buffer query");
_Static_assert(sizeof(DS_BUFFER_PART_INFO_STACKED) == 32, "32-byte stacked part query");
#endif

/* Enumerators are integer constants of the C enumerations, usable in constant expressions. */
_Static_assert(GC_ERR_CUSTOM_ID == -10000 && INFO_DATATYPE_BOOL8 == 11, "core values");
_Static_assert(EVENT_ORVAN_EVS_TRIGGER == 1001 && DEVICE_INFO_ORVAN_CONNECTED == 1009,
               "extension values");

/* Each pointer type is compatible with the declaration of its entry point. */
#define SAME_SIGNATURE(fn)                                                                         \
    _Static_assert(_Generic(&fn, P##fn : 1, default : 0), "P" #fn " does not match " #fn)

SAME_SIGNATURE(GCGetInfo);
SAME_SIGNATURE(GCGetLastError);
SAME_SIGNATURE(GCInitLib);
SAME_SIGNATURE(GCCloseLib);
SAME_SIGNATURE(GCReadPort);
SAME_SIGNATURE(GCWritePort);
SAME_SIGNATURE(GCGetPortURL);
SAME_SIGNATURE(GCGetPortInfo);
SAME_SIGNATURE(GCGetNumPortURLs);
SAME_SIGNATURE(GCGetPortURLInfo);
SAME_SIGNATURE(GCReadPortStacked);
SAME_SIGNATURE(GCWritePortStacked);
SAME_SIGNATURE(GCRegisterEvent);
SAME_SIGNATURE(GCUnregisterEvent);
SAME_SIGNATURE(EventGetData);
SAME_SIGNATURE(EventGetDataInfo);
SAME_SIGNATURE(EventGetInfo);
SAME_SIGNATURE(EventFlush);
SAME_SIGNATURE(EventKill);
SAME_SIGNATURE(TLOpen);
SAME_SIGNATURE(TLClose);
SAME_SIGNATURE(TLGetInfo);
SAME_SIGNATURE(TLGetNumInterfaces);
SAME_SIGNATURE(TLGetInterfaceID);
SAME_SIGNATURE(TLGetInterfaceInfo);
SAME_SIGNATURE(TLOpenInterface);
SAME_SIGNATURE(TLUpdateInterfaceList);
SAME_SIGNATURE(IFClose);
SAME_SIGNATURE(IFGetInfo);
SAME_SIGNATURE(IFGetNumDevices);
SAME_SIGNATURE(IFGetDeviceID);
SAME_SIGNATURE(IFUpdateDeviceList);
SAME_SIGNATURE(IFGetDeviceInfo);
SAME_SIGNATURE(IFOpenDevice);
SAME_SIGNATURE(IFGetParentTL);
SAME_SIGNATURE(DevGetPort);
SAME_SIGNATURE(DevGetNumDataStreams);
SAME_SIGNATURE(DevGetDataStreamID);
SAME_SIGNATURE(DevOpenDataStream);
SAME_SIGNATURE(DevGetInfo);
SAME_SIGNATURE(DevClose);
SAME_SIGNATURE(DevGetParentIF);
SAME_SIGNATURE(DSAnnounceBuffer);
SAME_SIGNATURE(DSAllocAndAnnounceBuffer);
SAME_SIGNATURE(DSFlushQueue);
SAME_SIGNATURE(DSStartAcquisition);
SAME_SIGNATURE(DSStopAcquisition);
SAME_SIGNATURE(DSGetInfo);
SAME_SIGNATURE(DSGetBufferID);
SAME_SIGNATURE(DSClose);
SAME_SIGNATURE(DSRevokeBuffer);
SAME_SIGNATURE(DSQueueBuffer);
SAME_SIGNATURE(DSGetParentDev);
SAME_SIGNATURE(DSGetNumFlows);
SAME_SIGNATURE(DSGetFlowInfo);
SAME_SIGNATURE(DSGetBufferInfo);
SAME_SIGNATURE(DSGetBufferChunkData);
SAME_SIGNATURE(DSGetNumBufferParts);
SAME_SIGNATURE(DSGetBufferPartInfo);
SAME_SIGNATURE(DSGetBufferInfoStacked);
SAME_SIGNATURE(DSGetBufferPartInfoStacked);
SAME_SIGNATURE(IFForceIp);
SAME_SIGNATURE(IFAddUnicastDiscoveryDevice);
SAME_SIGNATURE(IFRemoveUnicastDiscoveryDevice);
SAME_SIGNATURE(IFGetUnicastDiscoveryDevices);
SAME_SIGNATURE(DSWaitForNextLeader);
SAME_SIGNATURE(DSResetWaitForNextLeader);
SAME_SIGNATURE(DSSetupResendRetryParams);
SAME_SIGNATURE(DevSendActionCommand);
