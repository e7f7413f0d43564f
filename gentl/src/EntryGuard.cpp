#include "EntryGuard.h"

namespace Orvan {
namespace Producer {

std::shared_ptr<Module> ResolvePort(void* handle) {
    static const HandleKind kinds[] = {HandleKind::System, HandleKind::Interface,
                                       HandleKind::Device, HandleKind::RemotePort,
                                       HandleKind::Stream};
    Library::Instance().RequireInit();
    return std::static_pointer_cast<Module>(
        HandleRegistry::Instance().GetObject(handle, kinds, std::size(kinds)));
}

std::shared_ptr<Module> ResolveEventSource(void* handle) {
    static const HandleKind kinds[] = {HandleKind::System, HandleKind::Interface,
                                       HandleKind::Device, HandleKind::Stream};
    Library::Instance().RequireInit();
    return std::static_pointer_cast<Module>(
        HandleRegistry::Instance().GetObject(handle, kinds, std::size(kinds)));
}

} // namespace Producer
} // namespace Orvan
