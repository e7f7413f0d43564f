// Views of pixel memory that the conversion stages read and write: samples of type T (uint8_t or
// uint16_t) at the full range of T, pixels of `pixelStride` samples with a colour at each offset.
#ifndef ORVAN_IMAGEPROC_PIXELCANVAS_H
#define ORVAN_IMAGEPROC_PIXELCANVAS_H

#include "ConversionFormat.h"

#include <cstddef>
#include <cstdint>
#include <limits>

namespace Orvan {

template <class T>
struct PixelCanvas {
    T* data;
    size_t width;
    size_t height;
    size_t rowStride; // samples from one row to the next
    unsigned pixelStride;
    unsigned red, green, blue;
    int alpha; // -1: none

    T* Row(size_t y) const { return data + y * rowStride; }
    bool IsMono() const { return pixelStride == 1; }
};

// A Bayer mosaic inside a border of mirrored samples at least kMosaicBorder wide on every side,
// so that the demosaicing kernels read their neighbourhood without bounds checks.
template <class T>
struct MosaicView {
    const T* origin; // sample (0, 0) of the image
    ptrdiff_t stride;
    size_t width;
    size_t height;
    BayerPattern pattern;

    const T* Row(ptrdiff_t y) const { return origin + y * stride; }
    // The parity of the rows and columns that hold red samples.
    unsigned RedRow() const { return pattern == BayerPattern::GB || pattern == BayerPattern::BG; }
    unsigned RedColumn() const {
        return pattern == BayerPattern::GR || pattern == BayerPattern::BG;
    }
};

constexpr unsigned kMosaicBorder = 6;

// Calls row(samples, nearFirst, pixels, nearAt, farAt) for rows [y0, y1): `near` is the colour
// measured on that row beside green (at its first sample when nearFirst), `far` the one measured
// on the rows above and below; nearAt and farAt are their offsets in an output pixel.
template <class T, class RowFunction>
void ForEachMosaicRow(const MosaicView<T>& mosaic, const PixelCanvas<T>& out, size_t y0, size_t y1,
                      RowFunction row) {
    for (size_t y = y0; y < y1; ++y) {
        const bool redRow = (y & 1) == mosaic.RedRow();
        const bool nearFirst = (mosaic.RedColumn() == 0) == redRow;
        row(mosaic.Row(ptrdiff_t(y)), nearFirst, out.Row(y), redRow ? out.red : out.blue,
            redRow ? out.blue : out.red);
    }
}

template <class T>
constexpr int32_t SampleMax() {
    return std::numeric_limits<T>::max();
}

template <class T>
inline T Clamp(int32_t value) {
    return static_cast<T>(value < 0 ? 0 : value > SampleMax<T>() ? SampleMax<T>() : value);
}

template <class T>
inline void PutRgb(const PixelCanvas<T>& out, T* pixel, T r, T g, T b) {
    pixel[out.red] = r;
    pixel[out.green] = g;
    pixel[out.blue] = b;
}

} // namespace Orvan

#endif
