// Every live GenTL handle. Handles are numbers that are never reused, not addresses, so a stale
// or foreign handle is simply not found and no unknown pointer is ever dereferenced.
#ifndef ORVAN_GENTL_HANDLEREGISTRY_H
#define ORVAN_GENTL_HANDLEREGISTRY_H

#include "GenTLError.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <shared_mutex>
#include <unordered_map>

namespace Orvan {
namespace Producer {

enum class HandleKind : uint8_t { System, Interface, Device, RemotePort, Stream, Event };

// Base of every object a handle can name. Children keep weak references to their parents
// through shared_from_this, so a parent closed by another thread is never touched again.
class HandleObject : public std::enable_shared_from_this<HandleObject> {
public:
    virtual ~HandleObject() = default;
};

class HandleRegistry {
public:
    static HandleRegistry& Instance();

    // A fresh handle value that no registered object will ever have (buffers use these too).
    void* NewHandleValue();

    void* Add(std::shared_ptr<HandleObject> object, HandleKind kind);
    void Remove(void* handle);

    // The object of that kind, or GC_ERR_INVALID_HANDLE (thrown).
    template <typename T>
    std::shared_ptr<T> Get(void* handle, HandleKind kind) const {
        return std::static_pointer_cast<T>(GetObject(handle, &kind, 1));
    }
    // The object when its kind is one of those listed; its kind in *found.
    std::shared_ptr<HandleObject> GetObject(void* handle, const HandleKind* kinds, size_t count,
                                            HandleKind* found = nullptr) const;

private:
    struct Entry {
        std::shared_ptr<HandleObject> object;
        HandleKind kind;
    };

    mutable std::shared_mutex m_mutex;
    std::unordered_map<uintptr_t, Entry> m_entries;
    std::atomic<uintptr_t> m_next{0x4F520000};
};

} // namespace Producer
} // namespace Orvan

#endif
