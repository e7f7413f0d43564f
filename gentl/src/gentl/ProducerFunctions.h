// The entry points of a loaded producer, looked up by name. Discovery and control cannot do
// without the required ones; every other one may be missing, and a call that needs it then
// answers GC_ERR_NOT_IMPLEMENTED.
#ifndef ORVAN_GENTL_GENTL_PRODUCERFUNCTIONS_H
#define ORVAN_GENTL_GENTL_PRODUCERFUNCTIONS_H

#include <GenTL/GenTL.h>
#include <GenTL/GenTLExtensions.h>

#include <string>
#include <vector>

namespace Orvan {
namespace Producer {

#define ORVAN_FOREIGN_REQUIRED(X)                                                                  \
    X(GCGetLastError)                                                                              \
    X(GCInitLib)                                                                                   \
    X(GCCloseLib)                                                                                  \
    X(GCReadPort)                                                                                  \
    X(GCWritePort)                                                                                 \
    X(TLOpen)                                                                                      \
    X(TLClose)                                                                                     \
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
    X(DevGetPort)                                                                                  \
    X(DevGetInfo)                                                                                  \
    X(DevClose)

// What streaming needs, new-buffer events included; without all of them a device has no
// streams.
#define ORVAN_FOREIGN_STREAMING(X)                                                                 \
    X(DevGetNumDataStreams)                                                                        \
    X(DevGetDataStreamID)                                                                          \
    X(DevOpenDataStream)                                                                           \
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
    X(DSGetBufferInfo)                                                                             \
    X(GCRegisterEvent)                                                                             \
    X(GCUnregisterEvent)                                                                           \
    X(EventGetData)                                                                                \
    X(EventKill)

#define ORVAN_FOREIGN_OPTIONAL(X)                                                                  \
    X(GCGetInfo)                                                                                   \
    X(GCGetPortURL)                                                                                \
    X(GCGetPortInfo)                                                                               \
    X(GCGetNumPortURLs)                                                                            \
    X(GCGetPortURLInfo)                                                                            \
    X(GCReadPortStacked)                                                                           \
    X(GCWritePortStacked)                                                                          \
    X(EventGetDataInfo)                                                                            \
    X(EventGetInfo)                                                                                \
    X(EventFlush)                                                                                  \
    X(TLGetInfo)                                                                                   \
    X(DSGetNumFlows)                                                                               \
    X(DSGetFlowInfo)                                                                               \
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

class ProducerFunctions {
public:
#define ORVAN_FOREIGN_MEMBER(name) GenTL::P##name name = nullptr;
    ORVAN_FOREIGN_REQUIRED(ORVAN_FOREIGN_MEMBER)
    ORVAN_FOREIGN_STREAMING(ORVAN_FOREIGN_MEMBER)
    ORVAN_FOREIGN_OPTIONAL(ORVAN_FOREIGN_MEMBER)
#undef ORVAN_FOREIGN_MEMBER

    // Looks every entry point up in the dlopen handle; the names of the required ones that
    // are missing land in missingRequired.
    void Resolve(void* library, std::vector<std::string>& missingRequired);
    bool Streams() const {
        return m_streams;
    }

private:
    bool m_streams = false;
};

} // namespace Producer
} // namespace Orvan

#endif
