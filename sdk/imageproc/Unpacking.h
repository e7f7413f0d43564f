// The packed 10- and 12-bit layouts to 16-bit little-endian samples. Same counting and sizing
// rules as Packing. From10Packed rebuilds the first sample of each pair from its high bits only,
// so its two low bits come out as zero.
#ifndef ORVAN_IMAGEPROC_UNPACKING_H
#define ORVAN_IMAGEPROC_UNPACKING_H

#include <cstddef>
#include <cstdint>

namespace Orvan {
namespace Unpacking {

void From10p(const uint8_t* source, uint8_t* destination, size_t width, size_t height,
             size_t samplesPerPixel);
void From10Packed(const uint8_t* source, uint8_t* destination, size_t width, size_t height,
                  size_t samplesPerPixel);
void From12p(const uint8_t* source, uint8_t* destination, size_t width, size_t height,
             size_t samplesPerPixel);
void From12Packed(const uint8_t* source, uint8_t* destination, size_t width, size_t height,
                  size_t samplesPerPixel);

} // namespace Unpacking
} // namespace Orvan

#endif
