#include "Crc32.h"

#include <isa-l/crc.h>

namespace Orvan {
namespace Producer {

// crc32_gzip_refl applies the initial and final inversion itself: a fresh CRC starts from 0.
uint32_t Crc32(const void* data, size_t size) {
    return crc32_gzip_refl(0, static_cast<const unsigned char*>(data), size);
}

} // namespace Producer
} // namespace Orvan
