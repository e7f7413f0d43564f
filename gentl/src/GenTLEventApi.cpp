// Event entry points: registration on a module and the waits on a registered event.
#include "EntryGuard.h"
#include "gentl/ForeignCalls.h"

#include <GenTL/GenTL.h>

using namespace Orvan::Producer;

namespace GenTL {
extern "C" {

GC_ERROR GCRegisterEvent(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE eventType, EVENT_HANDLE* phEvent) {
    if (Foreign::Is(hEventSrc))
        return Foreign::GCRegisterEvent(hEventSrc, eventType, phEvent);
    return Guarded(EntryPoint::GCRegisterEvent, [&] {
        auto source = ResolveEventSource(hEventSrc);
        RequirePointer(phEvent, "phEvent");
        *phEvent = source->RegisterEvent(eventType);
    });
}

GC_ERROR GCUnregisterEvent(EVENTSRC_HANDLE hEventSrc, EVENT_TYPE eventType) {
    if (Foreign::Is(hEventSrc))
        return Foreign::GCUnregisterEvent(hEventSrc, eventType);
    return Guarded(EntryPoint::GCUnregisterEvent,
                   [&] { ResolveEventSource(hEventSrc)->UnregisterEvent(eventType); });
}

GC_ERROR EventGetData(EVENT_HANDLE hEvent, void* buffer, size_t* size, uint64_t timeout) {
    if (Foreign::Is(hEvent))
        return Foreign::EventGetData(hEvent, buffer, size, timeout);
    return Guarded(EntryPoint::EventGetData, [&] {
        Resolve<Event>(hEvent, HandleKind::Event)->GetData(buffer, size, timeout);
    });
}

GC_ERROR EventGetDataInfo(EVENT_HANDLE hEvent, const void* data, size_t dataSize,
                          EVENT_DATA_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                          size_t* size) {
    if (Foreign::Is(hEvent))
        return Foreign::EventGetDataInfo(hEvent, data, dataSize, cmd, type, buffer, size);
    return Guarded(EntryPoint::EventGetDataInfo, [&] {
        auto event = Resolve<Event>(hEvent, HandleKind::Event);
        event->DataInfo(data, dataSize, cmd).WriteTo(type, buffer, size);
    });
}

GC_ERROR EventGetInfo(EVENT_HANDLE hEvent, EVENT_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                      size_t* size) {
    if (Foreign::Is(hEvent))
        return Foreign::EventGetInfo(hEvent, cmd, type, buffer, size);
    return Guarded(EntryPoint::EventGetInfo, [&] {
        Resolve<Event>(hEvent, HandleKind::Event)->Info(cmd).WriteTo(type, buffer, size);
    });
}

GC_ERROR EventFlush(EVENT_HANDLE hEvent) {
    if (Foreign::Is(hEvent))
        return Foreign::EventFlush(hEvent);
    return Guarded(EntryPoint::EventFlush,
                   [&] { Resolve<Event>(hEvent, HandleKind::Event)->Flush(); });
}

GC_ERROR EventKill(EVENT_HANDLE hEvent) {
    if (Foreign::Is(hEvent))
        return Foreign::EventKill(hEvent);
    return Guarded(EntryPoint::EventKill,
                   [&] { Resolve<Event>(hEvent, HandleKind::Event)->Kill(); });
}

} // extern "C"
} // namespace GenTL
