#include "DemosaicHighQualityLinear.h"

namespace Orvan {

namespace {

// The kernels in sixteenths, so that every weight is an integer.
template <class T>
struct Neighbourhood {
    const T* c;
    ptrdiff_t s;
    int32_t At(ptrdiff_t dy, ptrdiff_t dx) const { return c[dy * s + dx]; }
    int32_t Cross1() const { return At(-1, 0) + At(1, 0) + At(0, -1) + At(0, 1); }
    int32_t Cross2() const { return At(-2, 0) + At(2, 0) + At(0, -2) + At(0, 2); }
    int32_t Diagonal() const { return At(-1, -1) + At(-1, 1) + At(1, -1) + At(1, 1); }
    int32_t Centre() const { return At(0, 0); }

    // Green at a red or blue sample.
    int32_t GreenAtColour() const { return (8 * Centre() + 4 * Cross1() - 2 * Cross2() + 8) >> 4; }
    // The colour measured left and right of a green sample.
    int32_t RowNeighbourAtGreen() const {
        return (10 * Centre() + 8 * (At(0, -1) + At(0, 1)) - 2 * (At(0, -2) + At(0, 2)) -
                2 * Diagonal() + At(-2, 0) + At(2, 0) + 8) >>
               4;
    }
    // The colour measured above and below a green sample.
    int32_t ColumnNeighbourAtGreen() const {
        return (10 * Centre() + 8 * (At(-1, 0) + At(1, 0)) - 2 * (At(-2, 0) + At(2, 0)) -
                2 * Diagonal() + At(0, -2) + At(0, 2) + 8) >>
               4;
    }
    // Blue at red, or red at blue.
    int32_t OppositeAtColour() const {
        return (12 * Centre() + 4 * Diagonal() - 3 * Cross2() + 8) >> 4;
    }
};

template <class T>
void Row(const T* c, ptrdiff_t stride, size_t width, bool nearFirst, T* out, unsigned step,
         unsigned nearAt, unsigned greenAt, unsigned farAt) {
    for (size_t x = 0; x < width; ++x, out += step) {
        const Neighbourhood<T> n{c + x, stride};
        if (((x & 1) == 0) == nearFirst) {
            out[nearAt] = c[x];
            out[greenAt] = Clamp<T>(n.GreenAtColour());
            out[farAt] = Clamp<T>(n.OppositeAtColour());
        } else {
            out[nearAt] = Clamp<T>(n.RowNeighbourAtGreen());
            out[greenAt] = c[x];
            out[farAt] = Clamp<T>(n.ColumnNeighbourAtGreen());
        }
    }
}

} // namespace

template <class T>
void DemosaicHighQualityLinear(const MosaicView<T>& mosaic, const PixelCanvas<T>& out, size_t y0,
                               size_t y1) {
    ForEachMosaicRow(
        mosaic, out, y0, y1,
        [&](const T* samples, bool nearFirst, T* pixels, unsigned nearAt, unsigned farAt) {
            Row(samples, mosaic.stride, mosaic.width, nearFirst, pixels, out.pixelStride, nearAt,
                out.green, farAt);
        });
}

template void DemosaicHighQualityLinear(const MosaicView<uint8_t>&, const PixelCanvas<uint8_t>&,
                                        size_t, size_t);
template void DemosaicHighQualityLinear(const MosaicView<uint16_t>&, const PixelCanvas<uint16_t>&,
                                        size_t, size_t);

} // namespace Orvan
