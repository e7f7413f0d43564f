#include "DemosaicBilinear.h"

namespace Orvan {

namespace {

template <class T>
inline T Mean2(T a, T b) {
    return static_cast<T>((uint32_t{a} + b + 1) >> 1);
}

template <class T>
inline T Mean4(T a, T b, T c, T d) {
    return static_cast<T>((uint32_t{a} + b + c + d + 2) >> 2);
}

// One row whose measured colours are `near` (on the row) and green; `far` is measured on the
// rows above and below. nearFirst: the row starts with a `near` sample.
template <class T>
void Row(const T* c, ptrdiff_t stride, size_t width, bool nearFirst, T* out, unsigned step,
         unsigned nearAt, unsigned greenAt, unsigned farAt) {
    const T* up = c - stride;
    const T* down = c + stride;
    for (size_t x = 0; x < width; ++x, out += step) {
        const bool atNear = ((x & 1) == 0) == nearFirst;
        if (atNear) {
            out[nearAt] = c[x];
            out[greenAt] = Mean4(c[x - 1], c[x + 1], up[x], down[x]);
            out[farAt] = Mean4(up[x - 1], up[x + 1], down[x - 1], down[x + 1]);
        } else {
            out[nearAt] = Mean2(c[x - 1], c[x + 1]);
            out[greenAt] = c[x];
            out[farAt] = Mean2(up[x], down[x]);
        }
    }
}

} // namespace

template <class T>
void DemosaicBilinear(const MosaicView<T>& mosaic, const PixelCanvas<T>& out, size_t y0,
                      size_t y1) {
    ForEachMosaicRow(
        mosaic, out, y0, y1,
        [&](const T* samples, bool nearFirst, T* pixels, unsigned nearAt, unsigned farAt) {
            Row(samples, mosaic.stride, mosaic.width, nearFirst, pixels, out.pixelStride, nearAt,
                out.green, farAt);
        });
}

template void DemosaicBilinear(const MosaicView<uint8_t>&, const PixelCanvas<uint8_t>&, size_t,
                               size_t);
template void DemosaicBilinear(const MosaicView<uint16_t>&, const PixelCanvas<uint16_t>&, size_t,
                               size_t);

} // namespace Orvan
