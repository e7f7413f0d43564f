// The first stage of a conversion: the source's samples at the full range of the working sample
// type T, in the source's own layout, or YUV turned to RGB.
#ifndef ORVAN_IMAGEPROC_COLOURDECODING_H
#define ORVAN_IMAGEPROC_COLOURDECODING_H

#include "PixelCanvas.h"
#include "ScratchPools.h"

namespace Orvan {

// A source block of `bytes` bytes: rows of the format's samples, each followed by paddingX
// bytes. Without padding, rows follow one another even within a byte (packed formats of odd
// widths).
struct SourceBlock {
    const uint8_t* data;
    size_t bytes;
    size_t width;
    size_t height;
    size_t paddingX;
};

// A sample of `bits` bits at the full range of T: deeper samples keep their most significant
// bits, shallower ones repeat their bits downwards (so that the largest value stays largest).
template <class T>
inline T ScaleSample(uint32_t value, unsigned bits) {
    constexpr unsigned kBits = 8 * sizeof(T);
    if (bits >= kBits)
        return static_cast<T>(value >> (bits - kBits));
    uint32_t scaled = value << (kBits - bits);
    for (unsigned filled = bits; filled < kBits; filled += bits)
        scaled |= value << (kBits - bits) >> filled;
    return static_cast<T>(scaled);
}

// The source's samples as a canvas of the source's pixel layout (Mono, Bayer or Rgb): a view of
// the source itself when its samples are already T at full range in aligned rows, else a copy in
// pool 0.
template <class T>
PixelCanvas<T> SourceCanvas(const SourceBlock& source, const ConversionFormat& format,
                            ScratchLease& scratch);

// Rows [y0, y1) of a YUV source (full-range BT.601) as RGB.
void YuvToRgb(const SourceBlock& source, const YuvGroup& group, const PixelCanvas<uint8_t>& out,
              size_t y0, size_t y1, Kernels kernels);
void YuvToRgb(const SourceBlock& source, const YuvGroup& group, const PixelCanvas<uint16_t>& out,
              size_t y0, size_t y1, Kernels kernels);

} // namespace Orvan

#endif
