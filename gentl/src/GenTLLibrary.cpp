// Library and system-module entry points: initialisation, last errors, library information and
// the interface list.
#include "EntryGuard.h"
#include "Interface.h"
#include "System.h"

#include <GenTL/GenTL.h>

#include <algorithm>
#include <cstring>

using namespace Orvan::Producer;

namespace {

// Consumers commonly ask with a fixed buffer, and what they need then is the explanation of
// their failure, not a second failure: a text that does not fit is cut at the end of the buffer
// and terminated, and the size reports what was written. Asking without a buffer gives the full
// size. Only a buffer too small for the terminator itself is refused.
GenTL::GC_ERROR CopyLastErrorText(char* text, size_t* size) {
    const std::string& message = LastErrorText();
    const size_t capacity = *size;
    *size = message.size() + 1;
    if (!text)
        return GenTL::GC_ERR_SUCCESS;
    if (capacity == 0)
        return GenTL::GC_ERR_BUFFER_TOO_SMALL;
    const size_t length = std::min(message.size(), capacity - 1);
    std::memcpy(text, message.data(), length);
    text[length] = '\0';
    *size = length + 1;
    return GenTL::GC_ERR_SUCCESS;
}

} // namespace

namespace GenTL {
extern "C" {

GC_ERROR GCGetInfo(TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer, size_t* size) {
    // Allowed before GCInitLib, so a consumer can identify the producer before using it.
    return Guarded(EntryPoint::GCGetInfo,
                   [&] { System::LibraryInfo(cmd).WriteTo(type, buffer, size); });
}

GC_ERROR GCGetLastError(GC_ERROR* errorCode, char* text, size_t* size) {
    // Reports but never records an error: asking must not change the answer.
    std::string injectedText;
    if (GC_ERROR injected =
            FaultInjector::Instance().Check(EntryPoint::GCGetLastError, injectedText))
        return injected;
    if (!errorCode || !size)
        return GC_ERR_INVALID_PARAMETER;
    *errorCode = LastErrorCode();
    return CopyLastErrorText(text, size);
}

GC_ERROR GCInitLib() {
    return Guarded(EntryPoint::GCInitLib, [] { Library::Instance().Init(); });
}

GC_ERROR GCCloseLib() {
    return Guarded(EntryPoint::GCCloseLib, [] { Library::Instance().Close(); });
}

GC_ERROR TLOpen(TL_HANDLE* phSystem) {
    return Guarded(EntryPoint::TLOpen, [&] {
        Library::Instance().RequireInit();
        RequirePointer(phSystem, "phSystem");
        *phSystem = Library::Instance().OpenSystem();
    });
}

GC_ERROR TLClose(TL_HANDLE hSystem) {
    return Guarded(EntryPoint::TLClose, [&] { Library::Instance().CloseSystem(hSystem); });
}

GC_ERROR TLGetInfo(TL_HANDLE hSystem, TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                   size_t* size) {
    return Guarded(EntryPoint::TLGetInfo, [&] {
        Resolve<System>(hSystem, HandleKind::System);
        System::LibraryInfo(cmd).WriteTo(type, buffer, size);
    });
}

GC_ERROR TLGetNumInterfaces(TL_HANDLE hSystem, uint32_t* numInterfaces) {
    return Guarded(EntryPoint::TLGetNumInterfaces, [&] {
        auto system = Resolve<System>(hSystem, HandleKind::System);
        RequirePointer(numInterfaces, "numInterfaces");
        *numInterfaces = system->NumInterfaces();
    });
}

GC_ERROR TLGetInterfaceID(TL_HANDLE hSystem, uint32_t index, char* id, size_t* size) {
    return Guarded(EntryPoint::TLGetInterfaceID, [&] {
        auto system = Resolve<System>(hSystem, HandleKind::System);
        WriteText(system->InterfaceId(index), id, size);
    });
}

GC_ERROR TLGetInterfaceInfo(TL_HANDLE hSystem, const char* interfaceId, INTERFACE_INFO_CMD cmd,
                            INFO_DATATYPE* type, void* buffer, size_t* size) {
    return Guarded(EntryPoint::TLGetInterfaceInfo, [&] {
        auto system = Resolve<System>(hSystem, HandleKind::System);
        RequirePointer(interfaceId, "interfaceId");
        if (system->Foreign().Knows(interfaceId))
            return system->Foreign().Info(interfaceId, cmd, type, buffer, size);
        system->InterfaceInfo(interfaceId, cmd).WriteTo(type, buffer, size);
    });
}

GC_ERROR TLOpenInterface(TL_HANDLE hSystem, const char* interfaceId, IF_HANDLE* phInterface) {
    return Guarded(EntryPoint::TLOpenInterface, [&] {
        auto system = Resolve<System>(hSystem, HandleKind::System);
        RequirePointer(interfaceId, "interfaceId");
        RequirePointer(phInterface, "phInterface");
        *phInterface = system->OpenInterface(interfaceId);
    });
}

GC_ERROR TLUpdateInterfaceList(TL_HANDLE hSystem, bool8_t* changed, uint64_t) {
    return Guarded(EntryPoint::TLUpdateInterfaceList, [&] {
        auto system = Resolve<System>(hSystem, HandleKind::System);
        bool result = system->UpdateInterfaceList();
        if (changed)
            *changed = result ? 1 : 0;
    });
}

} // extern "C"
} // namespace GenTL
