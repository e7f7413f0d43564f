// Every exported function of the producer, numbered, so fault injection can find a function's
// slot by index instead of by name on every call.
#ifndef ORVAN_GENTL_ENTRYPOINT_H
#define ORVAN_GENTL_ENTRYPOINT_H

#include <cstddef>
#include <string>

namespace Orvan {
namespace Producer {

#define ORVAN_GENTL_ENTRY_POINTS(X)                                                                \
    X(GCGetInfo)                                                                                   \
    X(GCGetLastError)                                                                              \
    X(GCInitLib)                                                                                   \
    X(GCCloseLib)                                                                                  \
    X(GCReadPort)                                                                                  \
    X(GCWritePort)                                                                                 \
    X(GCGetPortURL)                                                                                \
    X(GCGetPortInfo)                                                                               \
    X(GCGetNumPortURLs)                                                                            \
    X(GCGetPortURLInfo)                                                                            \
    X(GCReadPortStacked)                                                                           \
    X(GCWritePortStacked)                                                                          \
    X(GCRegisterEvent)                                                                             \
    X(GCUnregisterEvent)                                                                           \
    X(EventGetData)                                                                                \
    X(EventGetDataInfo)                                                                            \
    X(EventGetInfo)                                                                                \
    X(EventFlush)                                                                                  \
    X(EventKill)                                                                                   \
    X(TLOpen)                                                                                      \
    X(TLClose)                                                                                     \
    X(TLGetInfo)                                                                                   \
    X(TLGetNumInterfaces)                                                                          \
    X(TLGetInterfaceID)                                                                            \
    X(TLGetInterfaceInfo)                                                                          \
    X(TLOpenInterface)                                                                             \
    X(TLUpdateInterfaceList)                                                                       \
    X(IFClose)                                                                                     \
    X(IFGetInfo)                                                                                   \
    X(IFGetNumDevices)                                                                             \
    X(IFGetDeviceID)                                                                               \
    X(IFUpdateDeviceList)                                                                          \
    X(IFGetDeviceInfo)                                                                             \
    X(IFOpenDevice)                                                                                \
    X(IFGetParentTL)                                                                               \
    X(DevGetPort)                                                                                  \
    X(DevGetNumDataStreams)                                                                        \
    X(DevGetDataStreamID)                                                                          \
    X(DevOpenDataStream)                                                                           \
    X(DevGetInfo)                                                                                  \
    X(DevClose)                                                                                    \
    X(DevGetParentIF)                                                                              \
    X(DSAnnounceBuffer)                                                                            \
    X(DSAllocAndAnnounceBuffer)                                                                    \
    X(DSFlushQueue)                                                                                \
    X(DSStartAcquisition)                                                                          \
    X(DSStopAcquisition)                                                                           \
    X(DSGetInfo)                                                                                   \
    X(DSGetBufferID)                                                                               \
    X(DSClose)                                                                                     \
    X(DSRevokeBuffer)                                                                              \
    X(DSQueueBuffer)                                                                               \
    X(DSGetParentDev)                                                                              \
    X(DSGetNumFlows)                                                                               \
    X(DSGetFlowInfo)                                                                               \
    X(DSGetBufferInfo)                                                                             \
    X(DSGetBufferChunkData)                                                                        \
    X(DSGetNumBufferParts)                                                                         \
    X(DSGetBufferPartInfo)                                                                         \
    X(DSGetBufferInfoStacked)                                                                      \
    X(DSGetBufferPartInfoStacked)                                                                  \
    X(IFForceIp)                                                                                   \
    X(IFAddUnicastDiscoveryDevice)                                                                 \
    X(IFRemoveUnicastDiscoveryDevice)                                                              \
    X(IFGetUnicastDiscoveryDevices)                                                                \
    X(DSWaitForNextLeader)                                                                         \
    X(DSResetWaitForNextLeader)                                                                    \
    X(DSSetupResendRetryParams)                                                                    \
    X(DevSendActionCommand)

enum class EntryPoint : size_t {
#define ORVAN_ENTRY_ENUM(name) name,
    ORVAN_GENTL_ENTRY_POINTS(ORVAN_ENTRY_ENUM)
#undef ORVAN_ENTRY_ENUM
        Count
};

constexpr size_t kEntryPointCount = static_cast<size_t>(EntryPoint::Count);

// The entry point with that exported name; false when there is none.
bool FindEntryPoint(const std::string& name, EntryPoint& entry);

} // namespace Producer
} // namespace Orvan

#endif
