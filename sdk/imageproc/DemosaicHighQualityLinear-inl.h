// Gradient-corrected linear demosaicing (5x5 kernels): the bilinear estimate of a missing colour
// is corrected by the Laplacian of the colour measured at the pixel, which follows edges that
// the mean smears.
// Per instruction set (included by Demosaic.cpp's per-target pass): the reference loop and the
// vector loop, which share one definition of the arithmetic.
#if defined(ORVAN_IMAGEPROC_DEMOSAICHIGHQUALITYLINEAR_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVAN_IMAGEPROC_DEMOSAICHIGHQUALITYLINEAR_INL_H_
#undef ORVAN_IMAGEPROC_DEMOSAICHIGHQUALITYLINEAR_INL_H_
#else
#define ORVAN_IMAGEPROC_DEMOSAICHIGHQUALITYLINEAR_INL_H_
#endif

#include "SimdPixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace Orvan {
namespace HWY_NAMESPACE {

// The sums of a 5x5 neighbourhood that the kernels weigh; the kernels are in sixteenths, so that
// every weight is an integer, and written as shifts and sums, which issue faster than multiplies. V
// is int32_t in the reference and a vector of lanes otherwise.
template <class V>
struct Neighbourhood {
    V centre;
    V row1, row2;       // the samples one and two columns left and right
    V column1, column2; // one and two rows up and down
    V diagonal;
};

// The kernels, in sixteenths so that every weight is an integer, written as shifts and sums,
// which issue faster than multiplies.
template <class V, class Ops>
struct Kernels5x5 {
    const Neighbourhood<V>& n;
    Ops o;
    // Green at a red or blue sample: (8 centre + 4 (row1 + column1) - 2 (row2 + column2)) / 16,
    // every weight even, hence in eighths.
    V GreenAtColour() const {
        const V inner = o.Add(Twice(n.centre), o.Add(n.row1, n.column1));
        return Round<3>(o.Sub(Twice(inner), o.Add(n.row2, n.column2)));
    }
    // The colour measured left and right of a green sample (`along` its row), or above and
    // below it (`along` its column): (10 centre + 8 along1 - 2 (along2 + diagonal) + across2) / 16.
    V NeighbourAtGreen(V along1, V along2, V across2) const {
        const V fivefold = o.Add(n.centre, o.template ShiftLeft<2>(o.Add(n.centre, along1)));
        return Round<4>(o.Add(Twice(o.Sub(fivefold, o.Add(along2, n.diagonal))), across2));
    }
    // Blue at red, or red at blue: (12 centre + 4 diagonal - 3 (row2 + column2)) / 16.
    V OppositeAtColour() const {
        const V threefold = o.Add(n.centre, Twice(n.centre));
        const V cross2 = o.Add(n.row2, n.column2);
        return Round<4>(o.Sub(o.template ShiftLeft<2>(o.Add(threefold, n.diagonal)),
                              o.Add(cross2, Twice(cross2))));
    }
    V Twice(V v) const { return o.Add(v, v); }
    // v / 2^k, rounded.
    template <int k>
    V Round(V v) const {
        return o.template ShiftRight<k>(o.Add(v, o.Set(1 << (k - 1))));
    }
};

// The reference: columns [x0, x1) of one row.
template <class T>
void HighQualityPixels(const MosaicRows<T>& m, const PixelCanvas<T>& out, const DemosaicRow<T>& row,
                       size_t x0, size_t x1) {
    for (size_t x = x0; x < x1; ++x) {
        const ptrdiff_t i = ptrdiff_t(x);
        const Neighbourhood<int32_t> n{m.At(0, i),
                                       m.At(0, i - 1) + m.At(0, i + 1),
                                       m.At(0, i - 2) + m.At(0, i + 2),
                                       m.At(-1, i) + m.At(1, i),
                                       m.At(-2, i) + m.At(2, i),
                                       m.At(-1, i - 1) + m.At(-1, i + 1) + m.At(1, i - 1) +
                                           m.At(1, i + 1)};
        const Kernels5x5<int32_t, ScalarLanes> k{n, {}};
        if (row.AtNear(x))
            PutDemosaiced(out, row, x, n.centre, k.GreenAtColour(), k.OppositeAtColour());
        else
            PutDemosaiced(out, row, x, k.NeighbourAtGreen(n.row1, n.row2, n.column2), n.centre,
                          k.NeighbourAtGreen(n.column1, n.column2, n.row2));
    }
}

template <class T>
void HighQualityRows(const MosaicView<T>& mosaic, const PixelCanvas<T>& out, size_t y0, size_t y1,
                     Kernels kernels) {
    ForEachMosaicRow(mosaic, out, y0, y1, [&](const MosaicRows<T>& m, const DemosaicRow<T>& row) {
        const T *up2 = m.Row(-2), *up = m.Row(-1), *c = m.Row(0), *down = m.Row(1),
                *down2 = m.Row(2);
        ForEachRun<T>(
            mosaic.width, row.nearFirst, kernels,
            [&](size_t x0, size_t x1) { HighQualityPixels(m, out, row, x0, x1); },
            [&](const auto& p, size_t x) ORVAN_INLINE_LAMBDA {
                const auto o = p.Lanes();
                using V = decltype(p.Load(c));
                const auto clamp = [&](V v) {
                    return ClampTo(o, v, o.Set(0), o.Set(SampleMax<T>()));
                };
                const V c0 = p.Load(c + x), cLeft = p.Load(c + x - 1), cRight2 = p.Load(c + x + 2);
                const V u0 = p.Load(up + x), d0 = p.Load(down + x);
                const V uu0 = p.Load(up2 + x), dd0 = p.Load(down2 + x);
                const Neighbourhood<V> atNear{
                    p.First(c0),
                    o.Add(p.First(cLeft), p.Second(c0)),
                    o.Add(p.First(p.Load(c + x - 2)), p.First(cRight2)),
                    o.Add(p.First(u0), p.First(d0)),
                    o.Add(p.First(uu0), p.First(dd0)),
                    o.Add(o.Add(p.First(p.Load(up + x - 1)), p.Second(u0)),
                          o.Add(p.First(p.Load(down + x - 1)), p.Second(d0)))};
                const Neighbourhood<V> atGreen{
                    p.Second(c0),
                    o.Add(p.First(c0), p.First(cRight2)),
                    o.Add(p.First(cLeft), p.Second(cRight2)),
                    o.Add(p.Second(u0), p.Second(d0)),
                    o.Add(p.Second(uu0), p.Second(dd0)),
                    o.Add(o.Add(p.First(u0), p.First(p.Load(up + x + 2))),
                          o.Add(p.First(d0), p.First(p.Load(down + x + 2))))};
                const Kernels5x5<V, decltype(o)> near{atNear, o}, green{atGreen, o};
                StoreDemosaiced(
                    p.samples, out, row, x,
                    p.Join(atNear.centre, clamp(green.NeighbourAtGreen(atGreen.row1, atGreen.row2,
                                                                       atGreen.column2))),
                    p.Join(clamp(near.GreenAtColour()), atGreen.centre),
                    p.Join(clamp(near.OppositeAtColour()),
                           clamp(green.NeighbourAtGreen(atGreen.column1, atGreen.column2,
                                                        atGreen.row2))));
            });
    });
}

} // namespace HWY_NAMESPACE
} // namespace Orvan
HWY_AFTER_NAMESPACE();

#endif
