// What every exported function does around its body: the fault-injection check, and turning
// exceptions into a GC_ERROR plus the thread's last-error text. No exception leaves the library.
#ifndef ORVAN_GENTL_ENTRYGUARD_H
#define ORVAN_GENTL_ENTRYGUARD_H

#include "EntryPoint.h"
#include "FaultInjector.h"
#include "GenTLError.h"
#include "HandleRegistry.h"
#include "LastError.h"
#include "Library.h"
#include "Module.h"

#include <new>

namespace Orvan {
namespace Producer {

template <typename Body>
GenTL::GC_ERROR Guarded(EntryPoint entry, Body&& body) noexcept {
    try {
        std::string injectedText;
        if (GenTL::GC_ERROR injected = FaultInjector::Instance().Check(entry, injectedText)) {
            SetLastError(injected, injectedText);
            return injected;
        }
        body();
        return GenTL::GC_ERR_SUCCESS;
    } catch (const GenTLError& error) {
        SetLastError(error.Code(), error.what());
        return error.Code();
    } catch (const std::bad_alloc&) {
        SetLastError(GenTL::GC_ERR_OUT_OF_MEMORY, "Out of memory");
        return GenTL::GC_ERR_OUT_OF_MEMORY;
    } catch (const std::exception& error) {
        SetLastError(GenTL::GC_ERR_ERROR, error.what());
        return GenTL::GC_ERR_ERROR;
    }
}

// Handle lookups for the entry points; each first requires an initialised library.
template <typename T>
std::shared_ptr<T> Resolve(void* handle, HandleKind kind) {
    Library::Instance().RequireInit();
    return HandleRegistry::Instance().Get<T>(handle, kind);
}

// Any handle that has a port: the four modules and the remote device.
std::shared_ptr<Module> ResolvePort(void* handle);
// Any handle that signals events: the four modules.
std::shared_ptr<Module> ResolveEventSource(void* handle);

} // namespace Producer
} // namespace Orvan

#endif
