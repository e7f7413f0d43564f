#include "ForeignHandles.h"

#include "../GenTLError.h"

#include <mutex>
#include <vector>

namespace Orvan {
namespace Producer {

ForeignHandles& ForeignHandles::Instance() {
    static ForeignHandles instance;
    return instance;
}

void* ForeignHandles::Add(std::shared_ptr<ForeignModule> module) {
    const Key key{&module->Producer(), module->Foreign()};
    std::unique_lock<std::shared_mutex> lock(m_mutex);
    // A producer may give a closed module's handle value to a new module: only the same
    // module (kind and parent) keeps its handle.
    auto known = m_ours.find(key);
    if (known != m_ours.end()) {
        const ForeignModule& old = *m_modules.at(known->second);
        if (old.Kind() == module->Kind() && old.Parent() == module->Parent())
            return reinterpret_cast<void*>(known->second);
        RemoveLocked(known->second);
    }
    const uintptr_t handle = m_next.fetch_add(16);
    m_modules.emplace(handle, std::move(module));
    m_ours.emplace(key, handle);
    return reinterpret_cast<void*>(handle);
}

std::shared_ptr<ForeignModule> ForeignHandles::Get(const void* handle) const {
    std::shared_lock<std::shared_mutex> lock(m_mutex);
    auto it = m_modules.find(reinterpret_cast<uintptr_t>(handle));
    if (it == m_modules.end())
        throw GenTLError(GenTL::GC_ERR_INVALID_HANDLE, "Unknown or closed handle");
    return it->second;
}

void* ForeignHandles::FindChild(const void* parent,
                                const std::function<bool(const ForeignModule&)>& match) const {
    std::shared_lock<std::shared_mutex> lock(m_mutex);
    for (const auto& [handle, module] : m_modules)
        if (module->Parent() == parent && match(*module))
            return reinterpret_cast<void*>(handle);
    return nullptr;
}

void ForeignHandles::RemoveLocked(uintptr_t handle) {
    auto it = m_modules.find(handle);
    if (it == m_modules.end())
        return;
    std::vector<uintptr_t> children;
    for (const auto& [child, module] : m_modules)
        if (module->Parent() == reinterpret_cast<void*>(handle))
            children.push_back(child);
    m_ours.erase(Key{&it->second->Producer(), it->second->Foreign()});
    m_modules.erase(it);
    for (uintptr_t child : children)
        RemoveLocked(child);
}

void ForeignHandles::RemoveTree(const void* handle) {
    std::unique_lock<std::shared_mutex> lock(m_mutex);
    RemoveLocked(reinterpret_cast<uintptr_t>(handle));
}

void ForeignHandles::RemoveProducer(const ForeignProducer* producer) {
    std::unique_lock<std::shared_mutex> lock(m_mutex);
    for (auto it = m_modules.begin(); it != m_modules.end();) {
        if (&it->second->Producer() == producer) {
            m_ours.erase(Key{producer, it->second->Foreign()});
            it = m_modules.erase(it);
        } else {
            ++it;
        }
    }
}

} // namespace Producer
} // namespace Orvan
