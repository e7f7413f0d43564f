#include "ScratchPools.h"

namespace Orvan {

ScratchLease::ScratchLease() : m_lock(g_factoryMutex, std::try_to_lock) {}

ScratchLease::~ScratchLease() = default;

uint8_t* ScratchLease::Get(size_t index, size_t bytes) {
    if (!m_lock.owns_lock()) {
        m_own[index].reset(new uint8_t[bytes]);
        return m_own[index].get();
    }
    FactoryScratchPool& pool = g_factoryPools[index];
    if (pool.size < bytes) {
        delete[] pool.data;
        pool.data = nullptr;
        pool.size = 0;
        pool.data = new uint8_t[bytes];
        pool.size = bytes;
    }
    return pool.data;
}

} // namespace Orvan
