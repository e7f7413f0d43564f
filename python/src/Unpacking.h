// Packed pixels spread into one array element per sample (uint8 up to 8 bits, uint16 above).
#ifndef ORVAN_PYTHON_UNPACKING_H
#define ORVAN_PYTHON_UNPACKING_H

#include "PixelLayout.h"

#include <cstddef>
#include <cstdint>

namespace OrvanPy {

// Reads `count` samples from src (srcBytes long) into dst, whose elements are sampleBytes
// (1 or 2) wide. Throws orvan.InvalidArgumentException when src is too short.
void UnpackSamples(const PixelLayout& layout, const uint8_t* src, size_t srcBytes, void* dst,
                   size_t count);

} // namespace OrvanPy

#endif
