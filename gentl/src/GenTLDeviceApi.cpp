// Device-module entry points.
#include "Device.h"
#include "EntryGuard.h"
#include "gentl/ForeignCalls.h"

#include <GenTL/GenTL.h>
#include <GenTL/GenTLExtensions.h>

using namespace Orvan::Producer;

namespace {

std::shared_ptr<Device> GetDevice(GenTL::DEV_HANDLE handle) {
    return Resolve<Device>(handle, HandleKind::Device);
}

} // namespace

namespace GenTL {
extern "C" {

GC_ERROR DevGetPort(DEV_HANDLE hDevice, PORT_HANDLE* phRemoteDevice) {
    if (Foreign::Is(hDevice))
        return Foreign::DevGetPort(hDevice, phRemoteDevice);
    return Guarded(EntryPoint::DevGetPort, [&] {
        auto device = GetDevice(hDevice);
        RequirePointer(phRemoteDevice, "phRemoteDevice");
        *phRemoteDevice = device->RemotePortHandle();
    });
}

GC_ERROR DevGetNumDataStreams(DEV_HANDLE hDevice, uint32_t* numDataStreams) {
    if (Foreign::Is(hDevice))
        return Foreign::DevGetNumDataStreams(hDevice, numDataStreams);
    return Guarded(EntryPoint::DevGetNumDataStreams, [&] {
        auto device = GetDevice(hDevice);
        RequirePointer(numDataStreams, "numDataStreams");
        *numDataStreams = device->NumStreams();
    });
}

GC_ERROR DevGetDataStreamID(DEV_HANDLE hDevice, uint32_t index, char* id, size_t* size) {
    if (Foreign::Is(hDevice))
        return Foreign::DevGetDataStreamID(hDevice, index, id, size);
    return Guarded(EntryPoint::DevGetDataStreamID,
                   [&] { WriteText(GetDevice(hDevice)->StreamId(index), id, size); });
}

GC_ERROR DevOpenDataStream(DEV_HANDLE hDevice, const char* dataStreamId, DS_HANDLE* phDataStream) {
    if (Foreign::Is(hDevice))
        return Foreign::DevOpenDataStream(hDevice, dataStreamId, phDataStream);
    return Guarded(EntryPoint::DevOpenDataStream, [&] {
        auto device = GetDevice(hDevice);
        RequirePointer(dataStreamId, "dataStreamId");
        RequirePointer(phDataStream, "phDataStream");
        *phDataStream = device->OpenStream(dataStreamId);
    });
}

GC_ERROR DevGetInfo(DEV_HANDLE hDevice, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                    size_t* size) {
    if (Foreign::Is(hDevice))
        return Foreign::DevGetInfo(hDevice, cmd, type, buffer, size);
    return Guarded(EntryPoint::DevGetInfo,
                   [&] { GetDevice(hDevice)->Info(cmd).WriteTo(type, buffer, size); });
}

GC_ERROR DevClose(DEV_HANDLE hDevice) {
    if (Foreign::Is(hDevice))
        return Foreign::DevClose(hDevice);
    return Guarded(EntryPoint::DevClose, [&] { GetDevice(hDevice)->Close(); });
}

GC_ERROR DevGetParentIF(DEV_HANDLE hDevice, IF_HANDLE* phInterface) {
    if (Foreign::Is(hDevice))
        return Foreign::DevGetParentIF(hDevice, phInterface);
    return Guarded(EntryPoint::DevGetParentIF, [&] {
        auto device = GetDevice(hDevice);
        RequirePointer(phInterface, "phInterface");
        *phInterface = device->ParentHandle();
    });
}

GC_ERROR DevSendActionCommand(DEV_HANDLE hDevice, uint32_t deviceKey, uint32_t groupKey,
                              uint32_t groupMask, uint64_t scheduledTime) {
    if (Foreign::Is(hDevice))
        return Foreign::DevSendActionCommand(hDevice, deviceKey, groupKey, groupMask,
                                             scheduledTime);
    return Guarded(EntryPoint::DevSendActionCommand, [&] {
        GetDevice(hDevice)->SendActionCommand(deviceKey, groupKey, groupMask, scheduledTime);
    });
}

} // extern "C"
} // namespace GenTL
