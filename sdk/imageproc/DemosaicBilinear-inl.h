// Bilinear demosaicing: each missing colour is the mean of its nearest measured neighbours.
// Per instruction set (included by Demosaic.cpp's per-target pass): the reference loop and the
// vector loop, which share one definition of the arithmetic.
#if defined(ORVAN_IMAGEPROC_DEMOSAICBILINEAR_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVAN_IMAGEPROC_DEMOSAICBILINEAR_INL_H_
#undef ORVAN_IMAGEPROC_DEMOSAICBILINEAR_INL_H_
#else
#define ORVAN_IMAGEPROC_DEMOSAICBILINEAR_INL_H_
#endif

#include "SimdPixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace Orvan {
namespace HWY_NAMESPACE {

// The means at a pixel from the sums of its measured neighbours: h left and right, v above and
// below, d on the diagonals.
template <class V, class Ops>
struct Means {
    Ops o;
    V centre, h, v;
    V GreenAtColour() const { return Quarter(o, o.Add(h, v)); }
    V OppositeAtColour(V d) const { return Quarter(o, d); }
    V RowNeighbourAtGreen() const { return o.template ShiftRight<1>(o.Add(h, o.Set(1))); }
    V ColumnNeighbourAtGreen() const { return o.template ShiftRight<1>(o.Add(v, o.Set(1))); }
};

// The reference: columns [x0, x1) of one row.
template <class T>
void BilinearPixels(const MosaicRows<T>& m, const PixelCanvas<T>& out, const DemosaicRow<T>& row,
                    size_t x0, size_t x1) {
    for (size_t x = x0; x < x1; ++x) {
        const ptrdiff_t i = ptrdiff_t(x);
        const Means<int32_t, ScalarLanes> k{
            {}, m.At(0, i), m.At(0, i - 1) + m.At(0, i + 1), m.At(-1, i) + m.At(1, i)};
        if (row.AtNear(x)) {
            const int32_t d = m.At(-1, i - 1) + m.At(-1, i + 1) + m.At(1, i - 1) + m.At(1, i + 1);
            PutDemosaiced(out, row, x, k.centre, k.GreenAtColour(), k.OppositeAtColour(d));
        } else {
            PutDemosaiced(out, row, x, k.RowNeighbourAtGreen(), k.centre,
                          k.ColumnNeighbourAtGreen());
        }
    }
}

template <class T>
void BilinearRows(const MosaicView<T>& mosaic, const PixelCanvas<T>& out, size_t y0, size_t y1,
                  Kernels kernels) {
    ForEachMosaicRow(mosaic, out, y0, y1, [&](const MosaicRows<T>& m, const DemosaicRow<T>& row) {
        const T *up = m.Row(-1), *c = m.Row(0), *down = m.Row(1);
        ForEachRun<T>(
            mosaic.width, row.nearFirst, kernels,
            [&](size_t x0, size_t x1) { BilinearPixels(m, out, row, x0, x1); },
            [&](const auto& p, size_t x) ORVAN_INLINE_LAMBDA {
                const auto o = p.Lanes();
                const auto c0 = p.Load(c + x), u0 = p.Load(up + x), d0 = p.Load(down + x);
                const Means<decltype(c0), decltype(o)> atNear{
                    o, p.First(c0), o.Add(p.First(p.Load(c + x - 1)), p.Second(c0)),
                    o.Add(p.First(u0), p.First(d0))};
                const auto diagonal = o.Add(o.Add(p.First(p.Load(up + x - 1)), p.Second(u0)),
                                            o.Add(p.First(p.Load(down + x - 1)), p.Second(d0)));
                const Means<decltype(c0), decltype(o)> atGreen{
                    o, p.Second(c0), o.Add(p.First(c0), p.Second(p.Load(c + x + 1))),
                    o.Add(p.Second(u0), p.Second(d0))};
                StoreDemosaiced(
                    p.samples, out, row, x, p.Join(atNear.centre, atGreen.RowNeighbourAtGreen()),
                    p.Join(atNear.GreenAtColour(), atGreen.centre),
                    p.Join(atNear.OppositeAtColour(diagonal), atGreen.ColumnNeighbourAtGreen()));
            });
    });
}

} // namespace HWY_NAMESPACE
} // namespace Orvan
HWY_AFTER_NAMESPACE();

#endif
