// Device-module calls on foreign devices. A producer without the streaming functions serves
// its devices for control only: they report no streams.
#include "ForeignCalls.h"
#include "Forwarding.h"

namespace Orvan {
namespace Producer {
namespace Foreign {

namespace {

void RequireStreams(const ForeignModule& m) {
    if (!m.Functions().Streams())
        throw GenTLError(GC_ERR_NOT_IMPLEMENTED, m.Producer().Name() + " offers no data streams");
}

} // namespace

GC_ERROR DevGetPort(DEV_HANDLE hDevice, PORT_HANDLE* phRemoteDevice) {
    return Forward(
        EntryPoint::DevGetPort, hDevice, kDeviceKind, [&](const ForeignModule& m) -> GC_ERROR {
            return OpenChild(m, hDevice, HandleKind::RemotePort, phRemoteDevice,
                             [&](void** h) { return m.Functions().DevGetPort(m.Foreign(), h); });
        });
}

GC_ERROR DevGetNumDataStreams(DEV_HANDLE hDevice, uint32_t* numDataStreams) {
    return Forward(EntryPoint::DevGetNumDataStreams, hDevice, kDeviceKind,
                   [&](const ForeignModule& m) -> GC_ERROR {
                       RequirePointer(numDataStreams, "numDataStreams");
                       *numDataStreams = 0;
                       if (!m.Functions().Streams())
                           return GC_ERR_SUCCESS;
                       return m.Functions().DevGetNumDataStreams(m.Foreign(), numDataStreams);
                   });
}

GC_ERROR DevGetDataStreamID(DEV_HANDLE hDevice, uint32_t index, char* id, size_t* size) {
    return Forward(EntryPoint::DevGetDataStreamID, hDevice, kDeviceKind,
                   [&](const ForeignModule& m) -> GC_ERROR {
                       RequireStreams(m);
                       return m.Functions().DevGetDataStreamID(m.Foreign(), index, id, size);
                   });
}

GC_ERROR DevOpenDataStream(DEV_HANDLE hDevice, const char* dataStreamId, DS_HANDLE* phDataStream) {
    return Forward(EntryPoint::DevOpenDataStream, hDevice, kDeviceKind,
                   [&](const ForeignModule& m) -> GC_ERROR {
                       RequireStreams(m);
                       return OpenChild(
                           m, hDevice, HandleKind::Stream, phDataStream, [&](void** h) {
                               return m.Functions().DevOpenDataStream(m.Foreign(), dataStreamId, h);
                           });
                   });
}

GC_ERROR DevGetInfo(DEV_HANDLE hDevice, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                    size_t* size) {
    return Forward(EntryPoint::DevGetInfo, hDevice, kDeviceKind,
                   [&](const ForeignModule& m) -> GC_ERROR {
                       m.Producer().RequireCustomId(cmd, DEVICE_INFO_CUSTOM_ID);
                       return m.Functions().DevGetInfo(m.Foreign(), cmd, type, buffer, size);
                   });
}

GC_ERROR DevClose(DEV_HANDLE hDevice) {
    GC_ERROR result = ORVAN_FORWARD(kDeviceKind, DevClose, hDevice);
    if (result == GC_ERR_SUCCESS)
        ForeignHandles::Instance().RemoveTree(hDevice);
    return result;
}

GC_ERROR DevGetParentIF(DEV_HANDLE hDevice, IF_HANDLE* phInterface) {
    return Forward(EntryPoint::DevGetParentIF, hDevice, kDeviceKind,
                   [&](const ForeignModule& m) -> GC_ERROR {
                       RequirePointer(phInterface, "phInterface");
                       *phInterface = m.Parent();
                       return GC_ERR_SUCCESS;
                   });
}

GC_ERROR DevSendActionCommand(DEV_HANDLE hDevice, uint32_t deviceKey, uint32_t groupKey,
                              uint32_t groupMask, uint64_t scheduledTime) {
    return ORVAN_FORWARD(kDeviceKind, DevSendActionCommand, hDevice, deviceKey, groupKey, groupMask,
                         scheduledTime);
}

} // namespace Foreign
} // namespace Producer
} // namespace Orvan
