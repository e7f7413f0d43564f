// The image factory's three scratch pools, lent to one processing operation at a time. A call
// that finds them lent out gets blocks of its own instead of waiting, so that conversions on
// several threads never serialise on the pools.
#ifndef ORVAN_IMAGEPROC_SCRATCHPOOLS_H
#define ORVAN_IMAGEPROC_SCRATCHPOOLS_H

#include "core/Orvan.h"

#include <memory>
#include <mutex>

namespace Orvan {

class ScratchLease {
public:
    ScratchLease();
    ScratchLease(const ScratchLease&) = delete;
    ScratchLease& operator=(const ScratchLease&) = delete;
    ~ScratchLease();

    // A block of at least `bytes` bytes from pool `index` (0 to kFactoryPoolCount - 1), valid
    // until the lease ends or the same pool is asked for again.
    uint8_t* Get(size_t index, size_t bytes);

private:
    std::unique_lock<std::mutex> m_lock;
    std::unique_ptr<uint8_t[]> m_own[kFactoryPoolCount];
};

} // namespace Orvan

#endif
