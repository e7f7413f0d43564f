// Adaptive homogeneity-directed demosaicing: green is interpolated once along rows and once
// along columns, red and blue follow from colour differences, each pixel takes the direction
// whose neighbourhood stays most uniform in luminance and colour, and a median of the colour
// differences removes the false colour left. Edges keep their colour without zipper artefacts.
// Per instruction set (included by Demosaic.cpp's per-target pass): the reference loop and the
// vector loop, which share one definition of the arithmetic.
#if defined(ORVAN_IMAGEPROC_DEMOSAICADAPTIVEHOMOGENEITY_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVAN_IMAGEPROC_DEMOSAICADAPTIVEHOMOGENEITY_INL_H_
#undef ORVAN_IMAGEPROC_DEMOSAICADAPTIVEHOMOGENEITY_INL_H_
#else
#define ORVAN_IMAGEPROC_DEMOSAICADAPTIVEHOMOGENEITY_INL_H_
#endif

#include "SimdPixels-inl.h"

#include <vector>

HWY_BEFORE_NAMESPACE();
namespace Orvan {
namespace HWY_NAMESPACE {

// Every stage reads at most two columns beyond the row.
constexpr ptrdiff_t kMargin = 2;

// The latest rows of one plane of working values: a ring of `rows` rows (a power of two),
// addressed by image row, each with kMargin mirrored columns either side.
template <class W>
class RingPlane {
public:
    void Reset(size_t width, size_t rows) {
        m_width = ptrdiff_t(width);
        m_stride = width + 2 * kMargin;
        m_mask = rows - 1;
        m_values.assign(rows * m_stride, 0);
    }
    W* Row(ptrdiff_t y) { return m_values.data() + (size_t(y) & m_mask) * m_stride + kMargin; }
    // Fills the margins of row y, once its columns are written.
    void Mirror(ptrdiff_t y) {
        W* row = Row(y);
        for (ptrdiff_t k = 1; k <= kMargin; ++k) {
            row[-k] = row[Orvan::Mirror(-k, m_width)];
            row[m_width - 1 + k] = row[Orvan::Mirror(m_width - 1 + k, m_width)];
        }
    }

private:
    ptrdiff_t m_width = 0;
    size_t m_stride = 0, m_mask = 0;
    std::vector<W> m_values;
};

// What each direction keeps: its green, and the luminance (red + 2 green + blue) and the two
// colour differences (red - green, blue - green) of its full colour, from which homogeneity is
// judged and the colour chosen.
template <class W>
struct DirectionPlanes {
    RingPlane<W> green, luma, red, blue, homogeneity;
};

// Green along one direction at a red or blue sample c, from the greens a and b one step either
// side and the samples l and r of c's colour two steps away; kept within a and b so that an
// edge cannot ring.
template <class Ops, class V>
V DirectionalGreen(const Ops& o, V c, V a, V b, V l, V r) {
    const V twice = o.Sub(o.Mul(o.Add(o.Add(a, b), c), 2), o.Add(l, r));
    return ClampTo(o, o.template ShiftRight<2>(o.Add(twice, o.Set(2))), o.Min(a, b), o.Max(a, b));
}

// The median of a 3x3 neighbourhood given as three columns: each column sorted, the median is
// the median of the largest minimum, the median of the medians and the smallest maximum.
template <class Ops, class V>
V Median3(const Ops& o, V a, V b, V c) {
    return o.Max(o.Min(a, b), o.Min(o.Max(a, b), c));
}
template <class Ops, class V>
V Median9(const Ops& o, const V (&column)[3][3]) {
    V low[3], middle[3], high[3];
    for (int i = 0; i < 3; ++i) {
        const V a = column[i][0], b = column[i][1], c = column[i][2];
        low[i] = o.Min(o.Min(a, b), c);
        high[i] = o.Max(o.Max(a, b), c);
        middle[i] = Median3(o, a, b, c);
    }
    return Median3(o, o.Max(o.Max(low[0], low[1]), low[2]),
                   Median3(o, middle[0], middle[1], middle[2]),
                   o.Min(o.Min(high[0], high[1]), high[2]));
}

// One direction's differences from a pixel to its four neighbours (left, right, up, down), in
// luminance and in colour (the sum of both colour differences' changes).
template <class V>
struct Distances {
    V luma[4], chroma[4];
};

template <class T>
class Band {
public:
    using W = Wide<T>;

    Band(const MosaicView<T>& mosaic, const PixelCanvas<T>& out, Kernels kernels)
        : m_mosaic(mosaic), m_out(out), m_kernels(kernels), m_width(mosaic.width) {
        m_raw.Reset(m_width, 8);
        for (DirectionPlanes<W>& p : m_directions)
            for (RingPlane<W>* plane : {&p.green, &p.luma, &p.red, &p.blue, &p.homogeneity})
                plane->Reset(m_width, 4);
        m_chosenRed.Reset(m_width, 4);
        m_chosenBlue.Reset(m_width, 4);
    }

    // Each stage works on one row and reads the stage before it one row either side (the greens
    // read the samples two rows either side): row t of the samples completes row t - 6 of the
    // output. The planes keep only the rows still to be read.
    void Run(ptrdiff_t y0, ptrdiff_t y1) {
        for (ptrdiff_t t = y0 - 6; t < y1 + 6; ++t) {
            Samples(t);
            if (t >= y0 - 2)
                Greens(t - 2);
            if (t >= y0)
                for (DirectionPlanes<W>& p : m_directions)
                    Colours(p, t - 3);
            if (t >= y0 + 2)
                Homogeneity(t - 4);
            if (t >= y0 + 4)
                Choose(t - 5);
            if (t >= y0 + 6)
                Output(t - 6);
        }
    }

private:
    template <class Body>
    void ForEachColumn(ptrdiff_t y, const Body& body) {
        ForEachStep(WideTag<T>(), m_width, m_mosaic.ColourFirst(y), m_kernels, body);
    }

    void Samples(ptrdiff_t y) {
        const T* in = m_mosaic.Row(y);
        W* out = m_raw.Row(y);
        ForEachColumn(y, [&](const auto& o, size_t x, auto)
                             ORVAN_INLINE_LAMBDA { o.Store(out + x, o.Load(in + x)); });
        m_raw.Mirror(y);
    }

    void Greens(ptrdiff_t y) {
        const W *up2 = m_raw.Row(y - 2), *up = m_raw.Row(y - 1), *c = m_raw.Row(y),
                *down = m_raw.Row(y + 1), *down2 = m_raw.Row(y + 2);
        W* rows = m_directions[0].green.Row(y);
        W* columns = m_directions[1].green.Row(y);
        ForEachColumn(y, [&](const auto& o, size_t x, auto site) ORVAN_INLINE_LAMBDA {
            const auto centre = o.Load(c + x);
            const auto alongRow = DirectionalGreen(o, centre, o.Load(c + x - 1), o.Load(c + x + 1),
                                                   o.Load(c + x - 2), o.Load(c + x + 2));
            const auto alongColumn = DirectionalGreen(o, centre, o.Load(up + x), o.Load(down + x),
                                                      o.Load(up2 + x), o.Load(down2 + x));
            o.Store(rows + x, o.IfThenElse(site, alongRow, centre));
            o.Store(columns + x, o.IfThenElse(site, alongColumn, centre));
        });
        m_directions[0].green.Mirror(y);
        m_directions[1].green.Mirror(y);
    }

    // Red and blue from the colour differences (sample - green) around each pixel, with this
    // direction's green.
    void Colours(DirectionPlanes<W>& p, ptrdiff_t y) {
        const W *cu = m_raw.Row(y - 1), *c = m_raw.Row(y), *cd = m_raw.Row(y + 1);
        const W *gu = p.green.Row(y - 1), *g = p.green.Row(y), *gd = p.green.Row(y + 1);
        const bool redRow = m_mosaic.IsRedRow(y);
        W* luma = p.luma.Row(y);
        W* nearOut = redRow ? p.red.Row(y) : p.blue.Row(y);
        W* farOut = redRow ? p.blue.Row(y) : p.red.Row(y);
        ForEachColumn(y, [&](const auto& o, size_t x, auto site) ORVAN_INLINE_LAMBDA {
            const auto difference = [&](const W* samples, const W* greens, ptrdiff_t dx) {
                return o.Sub(o.Load(samples + x + dx), o.Load(greens + x + dx));
            };
            const auto green = o.Load(g + x);
            const auto nearAtGreen = o.Add(
                green, o.template ShiftRight<1>(o.Add(difference(c, g, -1), difference(c, g, 1))));
            const auto farAtGreen = o.Add(
                green,
                o.template ShiftRight<1>(o.Add(difference(cu, gu, 0), difference(cd, gd, 0))));
            const auto farAtColour =
                o.Add(green, o.template ShiftRight<2>(
                                 o.Add(o.Add(difference(cu, gu, -1), difference(cu, gu, 1)),
                                       o.Add(difference(cd, gd, -1), difference(cd, gd, 1)))));
            const auto zero = o.Set(0), top = o.Set(SampleMax<T>());
            const auto near = ClampTo(o, o.IfThenElse(site, o.Load(c + x), nearAtGreen), zero, top);
            const auto far = ClampTo(o, o.IfThenElse(site, farAtColour, farAtGreen), zero, top);
            o.Store(luma + x, o.Add(o.Add(near, far), o.Add(green, green)));
            o.Store(nearOut + x, o.Sub(near, green));
            o.Store(farOut + x, o.Sub(far, green));
        });
        p.luma.Mirror(y);
        p.red.Mirror(y);
        p.blue.Mirror(y);
    }

    template <class Ops>
    static Distances<typename Ops::V> NeighbourDistances(const Ops& o, DirectionPlanes<W>& p,
                                                         ptrdiff_t y, size_t x) {
        const ptrdiff_t offsets[4][2] = {{0, -1}, {0, 1}, {-1, 0}, {1, 0}};
        const auto luma = o.Load(p.luma.Row(y) + x), red = o.Load(p.red.Row(y) + x),
                   blue = o.Load(p.blue.Row(y) + x);
        Distances<typename Ops::V> d;
        for (int i = 0; i < 4; ++i) {
            const ptrdiff_t ny = y + offsets[i][0], nx = ptrdiff_t(x) + offsets[i][1];
            d.luma[i] = o.Abs(o.Sub(luma, o.Load(p.luma.Row(ny) + nx)));
            d.chroma[i] = o.Add(o.Abs(o.Sub(red, o.Load(p.red.Row(ny) + nx))),
                                o.Abs(o.Sub(blue, o.Load(p.blue.Row(ny) + nx))));
        }
        return d;
    }

    // For each pixel and direction: how many of its four neighbours lie within the tolerance,
    // which is the smaller of the two directions' largest differences along their own direction.
    void Homogeneity(ptrdiff_t y) {
        DirectionPlanes<W>& rows = m_directions[0];
        DirectionPlanes<W>& columns = m_directions[1];
        W* countsOut[2] = {rows.homogeneity.Row(y), columns.homogeneity.Row(y)};
        ForEachColumn(y, [&](const auto& o, size_t x, auto) ORVAN_INLINE_LAMBDA {
            const auto h = NeighbourDistances(o, rows, y, x);
            const auto v = NeighbourDistances(o, columns, y, x);
            const auto lumaLimit = o.Min(o.Max(h.luma[0], h.luma[1]), o.Max(v.luma[2], v.luma[3]));
            const auto chromaLimit =
                o.Min(o.Max(h.chroma[0], h.chroma[1]), o.Max(v.chroma[2], v.chroma[3]));
            const decltype(h)* both[2] = {&h, &v};
            for (int k = 0; k < 2; ++k) {
                auto count = o.Set(0);
                for (int i = 0; i < 4; ++i)
                    count = o.Add(count, o.Count(o.And(o.Le(both[k]->luma[i], lumaLimit),
                                                       o.Le(both[k]->chroma[i], chromaLimit))));
                o.Store(countsOut[k] + x, count);
            }
        });
        rows.homogeneity.Mirror(y);
        columns.homogeneity.Mirror(y);
    }

    template <class Ops>
    static typename Ops::V Sum3x3(const Ops& o, RingPlane<W>& plane, ptrdiff_t y, size_t x) {
        auto sum = o.Set(0);
        for (ptrdiff_t dy = -1; dy <= 1; ++dy) {
            const W* row = plane.Row(y + dy) + x;
            sum = o.Add(sum, o.Add(o.Add(o.Load(row - 1), o.Load(row)), o.Load(row + 1)));
        }
        return sum;
    }

    // Each pixel takes the colour differences of the direction more homogeneous around it, or
    // the mean of both when they are equally so.
    void Choose(ptrdiff_t y) {
        DirectionPlanes<W>& rows = m_directions[0];
        DirectionPlanes<W>& columns = m_directions[1];
        W *redOut = m_chosenRed.Row(y), *blueOut = m_chosenBlue.Row(y);
        ForEachColumn(y, [&](const auto& o, size_t x, auto) ORVAN_INLINE_LAMBDA {
            const auto h = Sum3x3(o, rows.homogeneity, y, x);
            const auto v = Sum3x3(o, columns.homogeneity, y, x);
            const auto pick = [&](RingPlane<W>& a, RingPlane<W>& b) {
                const auto fromRows = o.Load(a.Row(y) + x), fromColumns = o.Load(b.Row(y) + x);
                return o.IfThenElse(
                    o.Gt(h, v), fromRows,
                    o.IfThenElse(o.Gt(v, h), fromColumns, Mean2(o, fromRows, fromColumns)));
            };
            o.Store(redOut + x, pick(rows.red, columns.red));
            o.Store(blueOut + x, pick(rows.blue, columns.blue));
        });
        m_chosenRed.Mirror(y);
        m_chosenBlue.Mirror(y);
    }

    template <class Ops>
    static typename Ops::V Median(const Ops& o, RingPlane<W>& plane, ptrdiff_t y, size_t x) {
        typename Ops::V columns[3][3];
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                columns[i][j] = o.Load(plane.Row(y + j - 1) + x + i - 1);
        return Median9(o, columns);
    }

    // The chosen colour differences, each the median of its 3x3 neighbourhood (which removes
    // what false colour and zippering is left), added to the measured sample.
    void Output(ptrdiff_t y) {
        const W* samples = m_raw.Row(y);
        const DemosaicRow<T> row(m_mosaic, m_out, size_t(y));
        RingPlane<W>& nearPlane = row.redRow ? m_chosenRed : m_chosenBlue;
        RingPlane<W>& farPlane = row.redRow ? m_chosenBlue : m_chosenRed;
        ForEachColumn(y, [&](const auto& o, size_t x, auto site) ORVAN_INLINE_LAMBDA {
            const auto near = Median(o, nearPlane, y, x), far = Median(o, farPlane, y, x);
            const auto c = o.Load(samples + x);
            const auto green =
                o.IfThenElse(site, ClampTo(o, o.Sub(c, near), o.Set(0), o.Set(SampleMax<T>())), c);
            PutLanes(o, m_out, row, x, o.IfThenElse(site, c, o.Add(c, near)), green,
                     o.Add(green, far));
        });
    }

    const MosaicView<T>& m_mosaic;
    const PixelCanvas<T>& m_out;
    Kernels m_kernels;
    size_t m_width;
    RingPlane<W> m_raw;
    DirectionPlanes<W> m_directions[2]; // along rows, along columns
    RingPlane<W> m_chosenRed, m_chosenBlue;
};

template <class T>
void AdaptiveHomogeneityRows(const MosaicView<T>& mosaic, const PixelCanvas<T>& out, size_t y0,
                             size_t y1, Kernels kernels) {
    Band<T>(mosaic, out, kernels).Run(ptrdiff_t(y0), ptrdiff_t(y1));
}

} // namespace HWY_NAMESPACE
} // namespace Orvan
HWY_AFTER_NAMESPACE();

#endif
