// What the kernels share, compiled once per instruction set (included inside each kernel file's
// per-target pass, hwy/foreach_target.h): the vector form of the lane operations, the arithmetic
// written over either form, mosaic rows read as pairs of sites, the loops that cover a row with
// vector steps and leave its edges to the reference, and pixels loaded and stored by canvas.
#if defined(ORVAN_IMAGEPROC_SIMDPIXELS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVAN_IMAGEPROC_SIMDPIXELS_INL_H_
#undef ORVAN_IMAGEPROC_SIMDPIXELS_INL_H_
#else
#define ORVAN_IMAGEPROC_SIMDPIXELS_INL_H_
#endif

#include "LaneOps.h"
#include "PixelCanvas.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Orvan {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The vector body of a row loop, inlined into the loop so that its constants stay in registers.
#define ORVAN_INLINE_LAMBDA __attribute__((always_inline))

// The single-lane fallback target (for processors without SSSE3) runs the reference loops; the
// vector loops that need more than one lane are compiled out of it.
#define ORVAN_HAVE_VECTORS (HWY_TARGET != HWY_SCALAR)

// A full vector of the working type; its lanes of T fill a vector part.
template <class T>
using WideTag = hn::ScalableTag<Wide<T>>;

// Shared arithmetic of the kernels, for either lane type. Defined per instruction set like every
// function that takes vectors, so that caller and callee pass them in registers of one width.

// Rounded mean of two values: (a + b + 1) >> 1.
template <class Ops, class V>
V Mean2(const Ops& o, V a, V b) {
    return o.template ShiftRight<1>(o.Add(o.Add(a, b), o.Set(1)));
}

// Rounded quarter of a sum of four values: (sum + 2) >> 2.
template <class Ops, class V>
V Quarter(const Ops& o, V sum) {
    return o.template ShiftRight<2>(o.Add(sum, o.Set(2)));
}

// v limited to [lo, hi].
template <class Ops, class V>
V ClampTo(const Ops& o, V v, V lo, V hi) {
    return o.Min(o.Max(v, lo), hi);
}

// The operations of LaneOps.h on lanes of D.
template <class D>
struct VectorLanes {
    using V = hn::Vec<D>;
    using M = hn::Mask<D>;
    using L = hn::TFromD<D>;
    D d;

    V Load(const L* p) const { return hn::LoadU(d, p); }
    // Narrower samples, widened.
    template <class S>
    V Load(const S* p) const {
        return hn::PromoteTo(d, hn::LoadU(hn::Rebind<S, D>(), p));
    }
    void Store(L* p, V v) const { hn::StoreU(v, d, p); }
    V Set(int32_t k) const { return hn::Set(d, L(k)); }
    V Add(V a, V b) const { return hn::Add(a, b); }
    V Sub(V a, V b) const { return hn::Sub(a, b); }
    V Mul(V a, int32_t k) const { return hn::Mul(a, Set(k)); }
    template <int k>
    V ShiftLeft(V a) const {
        return hn::ShiftLeft<k>(a);
    }
    template <int k>
    V ShiftRight(V a) const {
        return hn::ShiftRight<k>(a);
    }
    V Min(V a, V b) const { return hn::Min(a, b); }
    V Max(V a, V b) const { return hn::Max(a, b); }
    V Abs(V a) const { return hn::Abs(a); }
    M Le(V a, V b) const { return hn::Not(a > b); }
    M Gt(V a, V b) const { return a > b; }
    M And(M a, M b) const { return hn::And(a, b); }
    V IfThenElse(M m, V yes, V no) const { return hn::IfThenElse(m, yes, no); }
    V Count(M m) const { return hn::IfThenElseZero(m, Set(1)); }
    // For 16-bit lanes (not both -32768).
    V MulRound15(V a, int32_t k) const { return hn::MulFixedPoint15(a, Set(k)); }
    // For 16-bit lanes: the products in 32 bits.
    V DotRound14(V a, int32_t ka, V b, int32_t kb) const {
#if HWY_TARGET == HWY_SCALAR
        return Set(ScalarLanes().DotRound14(hn::GetLane(a), ka, hn::GetLane(b), kb));
#else
        const hn::Half<D> half;
        const hn::Rebind<int32_t, decltype(half)> wide;
        const auto part = [&](hn::Vec<decltype(half)> x, hn::Vec<decltype(half)> y) {
            const auto products = hn::Add(hn::Mul(hn::PromoteTo(wide, x), hn::Set(wide, ka)),
                                          hn::Mul(hn::PromoteTo(wide, y), hn::Set(wide, kb)));
            return hn::DemoteTo(half, hn::ShiftRight<14>(hn::Add(products, hn::Set(wide, 8192))));
        };
        return hn::Combine(d, part(hn::UpperHalf(half, a), hn::UpperHalf(half, b)),
                           part(hn::LowerHalf(half, a), hn::LowerHalf(half, b)));
#endif
    }
};

// Lanes whose pixel holds the row's `near` colour, for a run that starts at an even column.
template <class D>
HWY_INLINE hn::Mask<D> NearLanes(D d, bool nearFirst) {
    using L = hn::TFromD<D>;
    return hn::Eq(hn::And(hn::Iota(d, 0), hn::Set(d, L{1})), hn::Set(d, L(nearFirst ? 0 : 1)));
}

#if ORVAN_HAVE_VECTORS
// A mosaic row read in pairs of columns: lane j of a vector of the working type holds the
// samples at columns x + 2j (First) and x + 2j + 1 (Second). From a column with the row's near
// colour, the pairs are a near site and the green site after it, so that a kernel computes for
// each site only the colours it misses.
template <class T>
struct SitePairs {
    using D = WideTag<T>;
    using V = hn::Vec<D>;
    static constexpr int kBits = 8 * sizeof(T);
    D d;
    hn::Repartition<T, D> samples;
    hn::RebindToUnsigned<D> u;

    VectorLanes<D> Lanes() const { return {d}; }
    V Load(const T* p) const { return hn::BitCast(d, hn::LoadU(samples, p)); }
    V First(V pair) const { return hn::And(pair, hn::Set(d, Wide<T>(SampleMax<T>()))); }
    V Second(V pair) const { return hn::BitCast(d, hn::ShiftRight<kBits>(hn::BitCast(u, pair))); }
    // Samples in column order from the values of the first and second sites, both in the range
    // of T.
    hn::Vec<decltype(samples)> Join(V first, V second) const {
        return hn::BitCast(
            samples, hn::Or(hn::BitCast(u, first), hn::ShiftLeft<kBits>(hn::BitCast(u, second))));
    }
};
#endif

// Covers a mosaic row of `width` columns: `run(pairs, x)` converts the 2 * Lanes(pairs.d)
// columns from x, a near site, reading up to two columns either side, and `pixels(x0, x1)` (the
// reference loop) the columns at the edges, where reads are mirrored, or the whole row for the
// reference kernels and the single-lane target.
template <class T, class Pixels, class Run>
HWY_INLINE void ForEachRun(size_t width, bool nearFirst, Kernels kernels, const Pixels& pixels,
                           const Run& run) {
    size_t x = 0;
#if ORVAN_HAVE_VECTORS
    const SitePairs<T> pairs{};
    const size_t step = hn::Lanes(pairs.samples);
    if (kernels == Kernels::Fast && width >= step + 5) {
        const size_t first = nearFirst ? 2 : 3;
        pixels(0, first);
        for (x = first; x + step + 2 <= width; x += step)
            run(pairs, x);
        // A last run that overlaps the one before leaves the reference only the edge.
        const size_t last = (width - step - 2 - first) / 2 * 2 + first;
        if (last + step > x) {
            run(pairs, last);
            x = last + step;
        }
    }
#else
    (void)nearFirst, (void)kernels, (void)run;
#endif
    pixels(x, width);
}

// Stores lanes of T as consecutive pixels of a canvas (3 or 4 samples, alpha at the largest
// value). The canvases of the RGB stages keep green at offset 1 and red and blue at 0 and 2
// (either way round).
template <class D, class T>
HWY_INLINE void StoreSamples(D d, const PixelCanvas<T>& canvas, T* pixels, hn::Vec<D> r,
                             hn::Vec<D> g, hn::Vec<D> b) {
    const auto first = canvas.red == 0 ? r : b, third = canvas.red == 0 ? b : r;
    if (canvas.pixelStride == 4)
        hn::StoreInterleaved4(first, g, third, hn::Set(d, T(SampleMax<T>())), d, pixels);
    else
        hn::StoreInterleaved3(first, g, third, d, pixels);
}

// Loads lanes of T from consecutive pixels of a canvas of 1, 3 or 4 samples (as StoreSamples).
template <class D, class T>
HWY_INLINE void LoadSamples(D d, const PixelCanvas<T>& canvas, const T* pixels, hn::Vec<D>& r,
                            hn::Vec<D>& g, hn::Vec<D>& b) {
    hn::Vec<D> first, third, alpha;
    if (canvas.pixelStride == 1) {
        first = g = third = hn::LoadU(d, pixels);
    } else if (canvas.pixelStride == 3) {
        hn::LoadInterleaved3(d, pixels, first, g, third);
    } else {
        hn::LoadInterleaved4(d, pixels, first, g, third, alpha);
    }
    r = canvas.red == 0 ? first : third;
    b = canvas.red == 0 ? third : first;
}

// Stores a demosaiced run of samples: `near` and `far` are red and blue on a red row, blue and
// red else.
template <class D, class T>
HWY_INLINE void StoreDemosaiced(D d, const PixelCanvas<T>& canvas, const DemosaicRow<T>& row,
                                size_t x, hn::Vec<D> near, hn::Vec<D> green, hn::Vec<D> far) {
    T* pixels = row.pixels + x * canvas.pixelStride;
    if (row.redRow)
        StoreSamples(d, canvas, pixels, near, green, far);
    else
        StoreSamples(d, canvas, pixels, far, green, near);
}

// Pixel x (or the lanes from x) of a demosaiced row, for kernels written over either lane type.
template <class T>
HWY_INLINE void PutLanes(const ScalarLanes&, const PixelCanvas<T>& canvas,
                         const DemosaicRow<T>& row, size_t x, int32_t near, int32_t green,
                         int32_t far) {
    PutDemosaiced(canvas, row, x, near, green, far);
}
template <class D, class T>
HWY_INLINE void PutLanes(const VectorLanes<D>&, const PixelCanvas<T>& canvas,
                         const DemosaicRow<T>& row, size_t x, hn::Vec<D> near, hn::Vec<D> green,
                         hn::Vec<D> far) {
    const hn::Rebind<T, D> dt;
    StoreDemosaiced(dt, canvas, row, x, hn::DemoteTo(dt, near), hn::DemoteTo(dt, green),
                    hn::DemoteTo(dt, far));
}

// Runs body(o, x, colourSite) over the columns [0, width) of a row of planes: vector steps of
// Lanes(d) columns (colourSite a mask of the lanes off green), then single columns with
// ScalarLanes (colourSite a bool). The reference runs single columns throughout. The planes
// must let a step read two columns past the row either side.
template <class D, class Body>
HWY_INLINE void ForEachStep(D d, size_t width, bool colourFirst, Kernels kernels,
                            const Body& body) {
    size_t x = 0;
    const size_t lanes = hn::Lanes(d);
    if (kernels == Kernels::Fast && lanes % 2 == 0) {
        const VectorLanes<D> vectors{d};
        const auto sites = NearLanes(d, colourFirst);
        for (; x + lanes <= width; x += lanes)
            body(vectors, x, sites);
        // A last step that overlaps the one before leaves single columns only at the edge.
        const size_t last = x < width && width >= lanes ? (width - lanes) / 2 * 2 : x;
        if (last < x) {
            body(vectors, last, sites);
            x = last + lanes;
        }
    }
    const ScalarLanes scalars;
    for (; x < width; ++x)
        body(scalars, x, ((x & 1) == 0) == colourFirst);
}

} // namespace HWY_NAMESPACE
} // namespace Orvan
HWY_AFTER_NAMESPACE();

#endif
