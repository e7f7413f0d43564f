// How an entry point hands a call on a foreign handle to its producer: the same fault
// injection and exception guard as every entry point, the handle's kind checked, and a failed
// call's code and text passed up unchanged.
#ifndef ORVAN_GENTL_GENTL_FORWARDING_H
#define ORVAN_GENTL_GENTL_FORWARDING_H

#include "../EntryGuard.h"
#include "ForeignHandles.h"

#include <string>

namespace Orvan {
namespace Producer {

using KindSet = unsigned;

constexpr KindSet Kinds(HandleKind kind) {
    return 1u << static_cast<unsigned>(kind);
}
constexpr KindSet kInterfaceKind = Kinds(HandleKind::Interface);
constexpr KindSet kDeviceKind = Kinds(HandleKind::Device);
constexpr KindSet kStreamKind = Kinds(HandleKind::Stream);
constexpr KindSet kEventKind = Kinds(HandleKind::Event);
constexpr KindSet kEventSourceKinds = kInterfaceKind | kDeviceKind | kStreamKind;
constexpr KindSet kPortKinds = kEventSourceKinds | Kinds(HandleKind::RemotePort);

// The producer's entry point, or GC_ERR_NOT_IMPLEMENTED (thrown) when it has none.
template <typename Function>
Function Need(const ForeignModule& module, Function function, const char* name) {
    if (!function)
        throw GenTLError(GenTL::GC_ERR_NOT_IMPLEMENTED,
                         module.Producer().Name() + " does not offer " + name);
    return function;
}

template <typename Call>
GenTL::GC_ERROR Forward(EntryPoint entry, const void* handle, KindSet kinds, Call&& call) noexcept {
    GenTL::GC_ERROR result = GenTL::GC_ERR_SUCCESS;
    const GenTL::GC_ERROR guard = Guarded(entry, [&] {
        Library::Instance().RequireInit();
        std::shared_ptr<ForeignModule> module = ForeignHandles::Instance().Get(handle);
        if (!(kinds & Kinds(module->Kind())))
            throw GenTLError(GenTL::GC_ERR_INVALID_HANDLE, "The handle is of another kind");
        result = call(*module);
        if (result != GenTL::GC_ERR_SUCCESS)
            module->Producer().PassUpError(result);
    });
    return guard != GenTL::GC_ERR_SUCCESS ? guard : result;
}

// The plain case: the same call with the producer's handle in place of ours.
template <typename Function, typename... Args>
GenTL::GC_ERROR ForwardPlain(EntryPoint entry, KindSet kinds, Function ProducerFunctions::*member,
                             const char* name, const void* handle, Args... args) noexcept {
    return Forward(entry, handle, kinds, [&](const ForeignModule& module) {
        return Need(module, module.Functions().*member, name)(module.Foreign(), args...);
    });
}

// ORVAN_FORWARD(kinds, Function, handle, other arguments...)
#define ORVAN_FORWARD(kinds, name, ...)                                                            \
    ForwardPlain(EntryPoint::name, kinds, &ProducerFunctions::name, #name, __VA_ARGS__)

// A call that opens a child module of parent (call(&foreignHandle)): the child's handle is
// wrapped in one of ours, written to *out.
template <typename Call>
GenTL::GC_ERROR OpenChild(const ForeignModule& parent, void* parentHandle, HandleKind kind,
                          void** out, Call&& call) {
    RequirePointer(out, "handle");
    void* foreign = nullptr;
    const GenTL::GC_ERROR result = call(&foreign);
    if (result == GenTL::GC_ERR_SUCCESS)
        *out = ForeignHandles::Instance().Add(
            std::make_shared<ForeignModule>(parent.SharedProducer(), kind, foreign, parentHandle));
    return result;
}

} // namespace Producer
} // namespace Orvan

#endif
