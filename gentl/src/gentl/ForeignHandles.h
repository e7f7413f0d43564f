// Our handles of foreign modules, mapped both ways. They come from a number range of their own,
// so an entry point tells a foreign handle from one of ours without a lookup, and our own
// modules pay nothing for the foreign ones.
#ifndef ORVAN_GENTL_GENTL_FOREIGNHANDLES_H
#define ORVAN_GENTL_GENTL_FOREIGNHANDLES_H

#include "ForeignModule.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <shared_mutex>
#include <unordered_map>

namespace Orvan {
namespace Producer {

class ForeignHandles {
public:
    static constexpr uintptr_t kTag = uintptr_t(0x4F46) << 48;

    static ForeignHandles& Instance();
    static bool IsForeign(const void* handle) {
        return (reinterpret_cast<uintptr_t>(handle) >> 48) == (kTag >> 48);
    }

    // Our handle for the module; the same handle again when that foreign handle of that
    // producer already has one.
    void* Add(std::shared_ptr<ForeignModule> module);
    // The module, or GC_ERR_INVALID_HANDLE (thrown).
    std::shared_ptr<ForeignModule> Get(const void* handle) const;
    // Our handle of a child of parent that matches, or null.
    void* FindChild(const void* parent,
                    const std::function<bool(const ForeignModule&)>& match) const;
    // Forgets the handle and every handle below it (a closed module's children are closed).
    void RemoveTree(const void* handle);
    // Forgets every handle of the producer.
    void RemoveProducer(const ForeignProducer* producer);

private:
    using Key = std::pair<const ForeignProducer*, const void*>;

    void RemoveLocked(uintptr_t handle);

    mutable std::shared_mutex m_mutex;
    std::unordered_map<uintptr_t, std::shared_ptr<ForeignModule>> m_modules;
    std::map<Key, uintptr_t> m_ours;
    std::atomic<uintptr_t> m_next{kTag + 0x10};
};

} // namespace Producer
} // namespace Orvan

#endif
