#include <Orvan/CalculateMaximumNumberOfBuffers.h>

#include "core/ErrorTranslation.h"

#include <sys/sysinfo.h>

namespace Orvan {

size_t CalculateMaximumNumberOfBuffers(size_t bufferSize) {
    const ErrorSite site = ORVAN_SITE("Orvan", "CalculateMaximumNumberOfBuffers");
    if (bufferSize == 0)
        ThrowLibraryError<GenICam::RuntimeException>(
            "Cannot calculate maximum number of buffers with a packet size of 0", site);
    struct sysinfo info = {};
    sysinfo(&info);
    // The RAM figure is taken in the kernel's memory units as they stand, as the established
    // figures of this function are.
    const uint64_t usable = static_cast<uint64_t>(info.totalram) * 4 / 5;
    if (usable < bufferSize)
        ThrowLibraryError<GenICam::BadAllocException>(
            "Insufficient memory found while calculating maximum number of buffers (maximum "
            "number of buffers is 0)",
            site);
    return static_cast<size_t>(usable / bufferSize);
}

} // namespace Orvan
