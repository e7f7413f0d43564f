// Views of pixel memory that the conversion stages read and write: samples of type T (uint8_t or
// uint16_t) at the full range of T, pixels of `pixelStride` samples with a colour at each offset.
#ifndef ORVAN_IMAGEPROC_PIXELCANVAS_H
#define ORVAN_IMAGEPROC_PIXELCANVAS_H

#include "ConversionFormat.h"

#include <cstddef>
#include <cstdint>
#include <limits>

namespace Orvan {

// Which implementation of the per-row kernels a conversion runs: the vectorised one, or the
// plain loops that define what every kernel computes (and that the vectorised ones must match
// bit for bit).
enum class Kernels { Fast, Reference };

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

// Index i of a line of n samples mirrored about its first and last sample, which keeps the
// colour of every Bayer position.
inline ptrdiff_t Mirror(ptrdiff_t i, ptrdiff_t n) {
    if (i >= 0 && i < n)
        return i;
    if (n == 1)
        return 0;
    const ptrdiff_t period = 2 * (n - 1);
    i %= period;
    if (i < 0)
        i += period;
    return i < n ? i : period - i;
}

// A Bayer mosaic read with mirrored rows: Row(y) is valid for any y.
template <class T>
struct MosaicView {
    const T* origin; // sample (0, 0) of the image
    ptrdiff_t stride;
    size_t width;
    size_t height;
    BayerPattern pattern;

    const T* Row(ptrdiff_t y) const { return origin + Mirror(y, ptrdiff_t(height)) * stride; }
    // The parity of the rows and columns that hold red samples.
    unsigned RedRow() const { return pattern == BayerPattern::GB || pattern == BayerPattern::BG; }
    unsigned RedColumn() const {
        return pattern == BayerPattern::GR || pattern == BayerPattern::BG;
    }
    bool IsRedRow(ptrdiff_t y) const { return (size_t(y) & 1) == RedRow(); }
    // Whether the row's first sample is red or blue rather than green.
    bool ColourFirst(ptrdiff_t y) const { return (RedColumn() == 0) == IsRedRow(y); }
};

// Rows y-2 to y+2 of a mosaic around row y, with columns mirrored when read through At.
template <class T>
struct MosaicRows {
    static constexpr int kRadius = 2;
    const T* rows[2 * kRadius + 1];
    ptrdiff_t width;

    MosaicRows(const MosaicView<T>& mosaic, size_t y) : width(ptrdiff_t(mosaic.width)) {
        for (int dy = -kRadius; dy <= kRadius; ++dy)
            rows[kRadius + dy] = mosaic.Row(ptrdiff_t(y) + dy);
    }
    const T* Row(int dy) const { return rows[kRadius + dy]; }
    int32_t At(int dy, ptrdiff_t x) const { return Row(dy)[Mirror(x, width)]; }
};

// One output row of a demosaicing kernel. `near` is the colour measured on the row beside green
// (red on a red row), `far` the one measured on the rows above and below; the row starts with a
// `near` sample when nearFirst.
template <class T>
struct DemosaicRow {
    T* pixels;
    bool redRow;
    bool nearFirst;

    DemosaicRow(const MosaicView<T>& mosaic, const PixelCanvas<T>& out, size_t y)
        : pixels(out.Row(y)), redRow(mosaic.IsRedRow(ptrdiff_t(y))),
          nearFirst(mosaic.ColourFirst(ptrdiff_t(y))) {}
    bool AtNear(size_t x) const { return ((x & 1) == 0) == nearFirst; }
};

// Calls row(rows, demosaicRow) for each output row in [y0, y1).
template <class T, class RowFunction>
void ForEachMosaicRow(const MosaicView<T>& mosaic, const PixelCanvas<T>& out, size_t y0, size_t y1,
                      RowFunction row) {
    for (size_t y = y0; y < y1; ++y)
        row(MosaicRows<T>(mosaic, y), DemosaicRow<T>(mosaic, out, y));
}

template <class T>
constexpr int32_t SampleMax() {
    return std::numeric_limits<T>::max();
}

template <class T>
inline T Clamp(int32_t value) {
    return static_cast<T>(value < 0 ? 0 : value > SampleMax<T>() ? SampleMax<T>() : value);
}

// Writes one pixel, alpha (if the canvas has it) at the largest value.
template <class T>
inline void PutRgb(const PixelCanvas<T>& out, T* pixel, T r, T g, T b) {
    pixel[out.red] = r;
    pixel[out.green] = g;
    pixel[out.blue] = b;
    if (out.alpha >= 0)
        pixel[out.alpha] = static_cast<T>(SampleMax<T>());
}

// Pixel x of a demosaiced row from its near, green and far colours.
template <class T>
inline void PutDemosaiced(const PixelCanvas<T>& out, const DemosaicRow<T>& row, size_t x,
                          int32_t near, int32_t green, int32_t far) {
    const T n = Clamp<T>(near), g = Clamp<T>(green), f = Clamp<T>(far);
    PutRgb(out, row.pixels + x * out.pixelStride, row.redRow ? n : f, g, row.redRow ? f : n);
}

} // namespace Orvan

#endif
