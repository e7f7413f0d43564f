// 16-bit little-endian samples to the packed 10- and 12-bit layouts. The count is width x height
// x samplesPerPixel; a partial last group is processed whole, so both buffers must hold whole
// groups (4 samples for 10p, 2 for the others).
#ifndef ORVAN_IMAGEPROC_PACKING_H
#define ORVAN_IMAGEPROC_PACKING_H

#include <cstddef>
#include <cstdint>

namespace Orvan {
namespace Packing {

void To10p(const uint8_t* source, uint8_t* destination, size_t width, size_t height,
           size_t samplesPerPixel);
void To10Packed(const uint8_t* source, uint8_t* destination, size_t width, size_t height,
                size_t samplesPerPixel);
void To12p(const uint8_t* source, uint8_t* destination, size_t width, size_t height,
           size_t samplesPerPixel);
void To12Packed(const uint8_t* source, uint8_t* destination, size_t width, size_t height,
                size_t samplesPerPixel);

} // namespace Packing
} // namespace Orvan

#endif
