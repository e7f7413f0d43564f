#include <Orvan/Crc32.h>

#include "core/ErrorTranslation.h"

#include <isa-l/crc.h>

namespace Orvan {

// Messages name the buffer module, where CRC verification lives.
uint32_t CalculateCRC32(const uint8_t* pData, size_t nBytes) {
    if (pData == nullptr)
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "pData is nullptr.", ORVAN_SITE("Buffer", "CalculateCRC32"));
    if (nBytes == 0)
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "nBytes must be > 0.", ORVAN_SITE("Buffer", "CalculateCRC32"));
    // The gzip variant is the reflected IEEE CRC with the initial value and final XOR applied
    // inside; a zero seed starts a fresh checksum.
    return crc32_gzip_refl(0, pData, nBytes);
}

} // namespace Orvan
