#include "HandleRegistry.h"

#include <mutex>

namespace Orvan {
namespace Producer {

HandleRegistry& HandleRegistry::Instance() {
    static HandleRegistry instance;
    return instance;
}

void* HandleRegistry::NewHandleValue() {
    // Steps of 16 keep handles looking like aligned pointers to consumers that care.
    return reinterpret_cast<void*>(m_next.fetch_add(16));
}

void* HandleRegistry::Add(std::shared_ptr<HandleObject> object, HandleKind kind) {
    void* handle = NewHandleValue();
    std::unique_lock<std::shared_mutex> lock(m_mutex);
    m_entries.emplace(reinterpret_cast<uintptr_t>(handle), Entry{std::move(object), kind});
    return handle;
}

void HandleRegistry::Remove(void* handle) {
    std::shared_ptr<HandleObject> last; // destroyed outside the lock
    std::unique_lock<std::shared_mutex> lock(m_mutex);
    auto it = m_entries.find(reinterpret_cast<uintptr_t>(handle));
    if (it == m_entries.end())
        return;
    last = std::move(it->second.object);
    m_entries.erase(it);
    lock.unlock();
}

std::shared_ptr<HandleObject> HandleRegistry::GetObject(void* handle, const HandleKind* kinds,
                                                        size_t count, HandleKind* found) const {
    std::shared_lock<std::shared_mutex> lock(m_mutex);
    auto it = m_entries.find(reinterpret_cast<uintptr_t>(handle));
    if (it != m_entries.end()) {
        for (size_t i = 0; i < count; ++i) {
            if (it->second.kind == kinds[i]) {
                if (found)
                    *found = kinds[i];
                return it->second.object;
            }
        }
    }
    throw GenTLError(GenTL::GC_ERR_INVALID_HANDLE, handle ? "The handle is not a live handle of "
                                                            "the expected kind"
                                                          : "The handle is null");
}

} // namespace Producer
} // namespace Orvan
