// Port and event calls on foreign handles. Ports carry the foreign modules' own descriptions;
// event data (new-buffer records included) come straight from the producer's wait.
#include "ForeignCalls.h"
#include "Forwarding.h"

namespace Orvan {
namespace Producer {
namespace Foreign {

GC_ERROR GCReadPort(PORT_HANDLE hPort, uint64_t address, void* buffer, size_t* size) {
    return ORVAN_FORWARD(kPortKinds, GCReadPort, hPort, address, buffer, size);
}

GC_ERROR GCWritePort(PORT_HANDLE hPort, uint64_t address, const void* buffer, size_t* size) {
    return ORVAN_FORWARD(kPortKinds, GCWritePort, hPort, address, buffer, size);
}

GC_ERROR GCGetPortURL(PORT_HANDLE hPort, char* url, size_t* size) {
    return ORVAN_FORWARD(kPortKinds, GCGetPortURL, hPort, url, size);
}

GC_ERROR GCGetPortInfo(PORT_HANDLE hPort, PORT_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                       size_t* size) {
    return ORVAN_FORWARD(kPortKinds, GCGetPortInfo, hPort, cmd, type, buffer, size);
}

GC_ERROR GCGetNumPortURLs(PORT_HANDLE hPort, uint32_t* numUrls) {
    return ORVAN_FORWARD(kPortKinds, GCGetNumPortURLs, hPort, numUrls);
}

GC_ERROR GCGetPortURLInfo(PORT_HANDLE hPort, uint32_t urlIndex, URL_INFO_CMD cmd,
                          INFO_DATATYPE* type, void* buffer, size_t* size) {
    return ORVAN_FORWARD(kPortKinds, GCGetPortURLInfo, hPort, urlIndex, cmd, type, buffer, size);
}

GC_ERROR GCReadPortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* entries,
                           size_t* numEntries) {
    return ORVAN_FORWARD(kPortKinds, GCReadPortStacked, hPort, entries, numEntries);
}

GC_ERROR GCWritePortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* entries,
                            size_t* numEntries) {
    return ORVAN_FORWARD(kPortKinds, GCWritePortStacked, hPort, entries, numEntries);
}

GC_ERROR GCRegisterEvent(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE eventType, EVENT_HANDLE* phEvent) {
    return Forward(EntryPoint::GCRegisterEvent, hEventSrc, kEventSourceKinds,
                   [&](const ForeignModule& m) -> GC_ERROR {
                       auto registerEvent =
                           Need(m, m.Functions().GCRegisterEvent, "GCRegisterEvent");
                       GC_ERROR result =
                           OpenChild(m, hEventSrc, HandleKind::Event, phEvent, [&](void** h) {
                               return registerEvent(m.Foreign(), eventType, h);
                           });
                       if (result == GC_ERR_SUCCESS)
                           ForeignHandles::Instance().Get(*phEvent)->eventType = eventType;
                       return result;
                   });
}

GC_ERROR GCUnregisterEvent(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE eventType) {
    GC_ERROR result = ORVAN_FORWARD(kEventSourceKinds, GCUnregisterEvent, hEventSrc, eventType);
    if (result == GC_ERR_SUCCESS) {
        ForeignHandles& handles = ForeignHandles::Instance();
        handles.RemoveTree(handles.FindChild(hEventSrc, [&](const ForeignModule& m) -> GC_ERROR {
            return m.Kind() == HandleKind::Event && m.eventType == eventType;
        }));
    }
    return result;
}

GC_ERROR EventGetData(EVENT_HANDLE hEvent, void* buffer, size_t* size, uint64_t timeout) {
    return ORVAN_FORWARD(kEventKind, EventGetData, hEvent, buffer, size, timeout);
}

GC_ERROR EventGetDataInfo(EVENT_HANDLE hEvent, const void* data, size_t dataSize,
                          EVENT_DATA_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                          size_t* size) {
    return ORVAN_FORWARD(kEventKind, EventGetDataInfo, hEvent, data, dataSize, cmd, type, buffer,
                         size);
}

GC_ERROR EventGetInfo(EVENT_HANDLE hEvent, EVENT_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                      size_t* size) {
    return ORVAN_FORWARD(kEventKind, EventGetInfo, hEvent, cmd, type, buffer, size);
}

GC_ERROR EventFlush(EVENT_HANDLE hEvent) {
    return ORVAN_FORWARD(kEventKind, EventFlush, hEvent);
}

GC_ERROR EventKill(EVENT_HANDLE hEvent) {
    return ORVAN_FORWARD(kEventKind, EventKill, hEvent);
}

} // namespace Foreign
} // namespace Producer
} // namespace Orvan
