// Register-port entry points, for every module and the remote device alike.
#include "EntryGuard.h"
#include "gentl/ForeignCalls.h"

#include <GenTL/GenTL.h>

using namespace Orvan::Producer;

namespace GenTL {
extern "C" {

GC_ERROR GCReadPort(PORT_HANDLE hPort, uint64_t address, void* buffer, size_t* size) {
    if (Foreign::Is(hPort))
        return Foreign::GCReadPort(hPort, address, buffer, size);
    return Guarded(EntryPoint::GCReadPort, [&] {
        auto module = ResolvePort(hPort);
        RequirePointer(buffer, "buffer");
        RequirePointer(size, "size");
        module->GetPort().Read(address, buffer, *size);
    });
}

GC_ERROR GCWritePort(PORT_HANDLE hPort, uint64_t address, const void* buffer, size_t* size) {
    if (Foreign::Is(hPort))
        return Foreign::GCWritePort(hPort, address, buffer, size);
    return Guarded(EntryPoint::GCWritePort, [&] {
        auto module = ResolvePort(hPort);
        RequirePointer(buffer, "buffer");
        RequirePointer(size, "size");
        module->GetPort().Write(address, buffer, *size);
    });
}

GC_ERROR GCGetPortURL(PORT_HANDLE hPort, char* url, size_t* size) {
    if (Foreign::Is(hPort))
        return Foreign::GCGetPortURL(hPort, url, size);
    return Guarded(EntryPoint::GCGetPortURL, [&] {
        auto module = ResolvePort(hPort);
        WriteText(module->GetPort().Description().url, url, size);
    });
}

GC_ERROR GCGetPortInfo(PORT_HANDLE hPort, PORT_INFO_CMD cmd, INFO_DATATYPE* type, void* buffer,
                       size_t* size) {
    if (Foreign::Is(hPort))
        return Foreign::GCGetPortInfo(hPort, cmd, type, buffer, size);
    return Guarded(EntryPoint::GCGetPortInfo, [&] {
        auto module = ResolvePort(hPort);
        module->GetPort().Info(cmd).WriteTo(type, buffer, size);
    });
}

GC_ERROR GCGetNumPortURLs(PORT_HANDLE hPort, uint32_t* numUrls) {
    if (Foreign::Is(hPort))
        return Foreign::GCGetNumPortURLs(hPort, numUrls);
    return Guarded(EntryPoint::GCGetNumPortURLs, [&] {
        ResolvePort(hPort);
        RequirePointer(numUrls, "numUrls");
        *numUrls = 1;
    });
}

GC_ERROR GCGetPortURLInfo(PORT_HANDLE hPort, uint32_t urlIndex, URL_INFO_CMD cmd,
                          INFO_DATATYPE* type, void* buffer, size_t* size) {
    if (Foreign::Is(hPort))
        return Foreign::GCGetPortURLInfo(hPort, urlIndex, cmd, type, buffer, size);
    return Guarded(EntryPoint::GCGetPortURLInfo, [&] {
        auto module = ResolvePort(hPort);
        module->GetPort().UrlInfo(urlIndex, cmd).WriteTo(type, buffer, size);
    });
}

// Stacked accesses run in order and stop at the first failure; *numEntries tells how many
// succeeded.
GC_ERROR GCReadPortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* entries,
                           size_t* numEntries) {
    if (Foreign::Is(hPort))
        return Foreign::GCReadPortStacked(hPort, entries, numEntries);
    return Guarded(EntryPoint::GCReadPortStacked, [&] {
        auto module = ResolvePort(hPort);
        RequirePointer(entries, "entries");
        RequirePointer(numEntries, "numEntries");
        const size_t count = *numEntries;
        *numEntries = 0;
        for (size_t i = 0; i < count; ++i) {
            RequirePointer(entries[i].pBuffer, "pBuffer");
            module->GetPort().Read(entries[i].Address, entries[i].pBuffer, entries[i].Size);
            *numEntries = i + 1;
        }
    });
}

GC_ERROR GCWritePortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* entries,
                            size_t* numEntries) {
    if (Foreign::Is(hPort))
        return Foreign::GCWritePortStacked(hPort, entries, numEntries);
    return Guarded(EntryPoint::GCWritePortStacked, [&] {
        auto module = ResolvePort(hPort);
        RequirePointer(entries, "entries");
        RequirePointer(numEntries, "numEntries");
        const size_t count = *numEntries;
        *numEntries = 0;
        for (size_t i = 0; i < count; ++i) {
            RequirePointer(entries[i].pBuffer, "pBuffer");
            module->GetPort().Write(entries[i].Address, entries[i].pBuffer, entries[i].Size);
            *numEntries = i + 1;
        }
    });
}

} // extern "C"
} // namespace GenTL
