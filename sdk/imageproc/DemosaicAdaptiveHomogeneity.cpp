#include "DemosaicAdaptiveHomogeneity.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace Orvan {

namespace {

// Rows are worked in bands, so that the per-direction planes stay in cache; every plane spans
// the band and a margin of kMargin rows and columns on each side.
constexpr size_t kBandRows = 16;
constexpr ptrdiff_t kMargin = 3;

enum Direction { kRows, kColumns };

// A plane of int32 over the band and its margin, addressed in image coordinates.
struct Plane {
    std::vector<int32_t> values;
    ptrdiff_t top = 0, stride = 0;
    void Reset(ptrdiff_t firstRow, size_t rows, size_t width) {
        top = firstRow;
        stride = ptrdiff_t(width) + 2 * kMargin;
        values.assign(rows * size_t(stride), 0);
    }
    int32_t* Row(ptrdiff_t y) { return values.data() + (y - top) * stride + kMargin; }
};

struct DirectionPlanes {
    Plane green, red, blue, luma, chromaA, chromaB, homogeneity;
};

template <class T>
class Band {
public:
    Band(const MosaicView<T>& mosaic, const PixelCanvas<T>& out) : m_mosaic(mosaic), m_out(out) {}

    void Run(size_t y0, size_t y1) {
        const ptrdiff_t top = ptrdiff_t(y0) - kMargin;
        const size_t rows = y1 - y0 + 2 * kMargin;
        for (DirectionPlanes& d : m_planes)
            for (Plane* p :
                 {&d.green, &d.red, &d.blue, &d.luma, &d.chromaA, &d.chromaB, &d.homogeneity})
                p->Reset(top, rows, m_mosaic.width);
        const ptrdiff_t first = ptrdiff_t(y0), last = ptrdiff_t(y1);
        for (Direction d : {kRows, kColumns}) {
            Greens(d, first - 3, last + 3);
            Colours(d, first - 2, last + 2);
        }
        Homogeneity(first - 1, last + 1);
        Choose(first, last);
    }

private:
    bool RedRow(ptrdiff_t y) const { return (size_t(y) & 1) == m_mosaic.RedRow(); }
    bool IsGreen(ptrdiff_t y, ptrdiff_t x) const {
        return ((size_t(x) & 1) == m_mosaic.RedColumn()) != RedRow(y);
    }
    int32_t Raw(ptrdiff_t y, ptrdiff_t x) const { return m_mosaic.Row(y)[x]; }

    // Green along one direction, kept within its two neighbours so that an edge cannot ring.
    void Greens(Direction d, ptrdiff_t y0, ptrdiff_t y1) {
        const ptrdiff_t w = ptrdiff_t(m_mosaic.width);
        const ptrdiff_t step = d == kRows ? 1 : m_mosaic.stride;
        for (ptrdiff_t y = y0; y < y1; ++y) {
            int32_t* g = m_planes[d].green.Row(y);
            const T* c = m_mosaic.Row(y);
            for (ptrdiff_t x = -3; x < w + 3; ++x) {
                const T* p = c + x;
                if (IsGreen(y, x)) {
                    g[x] = *p;
                    continue;
                }
                const int32_t a = p[-step], b = p[step];
                const int32_t estimate = (2 * (a + b) + 2 * p[0] - p[-2 * step] - p[2 * step]) / 4;
                g[x] = std::clamp(estimate, std::min(a, b), std::max(a, b));
            }
        }
    }

    // Red and blue from the colour differences to this direction's green.
    void Colours(Direction d, ptrdiff_t y0, ptrdiff_t y1) {
        DirectionPlanes& p = m_planes[d];
        const ptrdiff_t w = ptrdiff_t(m_mosaic.width);
        for (ptrdiff_t y = y0; y < y1; ++y) {
            int32_t* up = p.green.Row(y - 1);
            int32_t* g = p.green.Row(y);
            int32_t* down = p.green.Row(y + 1);
            const T* cu = m_mosaic.Row(y - 1);
            const T* c = m_mosaic.Row(y);
            const T* cd = m_mosaic.Row(y + 1);
            int32_t* red = p.red.Row(y);
            int32_t* blue = p.blue.Row(y);
            const bool redRow = RedRow(y);
            for (ptrdiff_t x = -2; x < w + 2; ++x) {
                int32_t near, far; // near: the colour measured on this row
                if (IsGreen(y, x)) {
                    near = g[x] + (c[x - 1] - g[x - 1] + c[x + 1] - g[x + 1]) / 2;
                    far = g[x] + (cu[x] - up[x] + cd[x] - down[x]) / 2;
                } else {
                    near = c[x];
                    far = g[x] + (cu[x - 1] - up[x - 1] + cu[x + 1] - up[x + 1] + cd[x - 1] -
                                  down[x - 1] + cd[x + 1] - down[x + 1]) /
                                     4;
                }
                red[x] = std::clamp(redRow ? near : far, 0, SampleMax<T>());
                blue[x] = std::clamp(redRow ? far : near, 0, SampleMax<T>());
                g[x] = std::clamp(g[x], 0, SampleMax<T>());
                Perceptual(p, y, x);
            }
        }
    }

    // A luminance and two chroma axes, linear in the samples: enough to tell a uniform
    // neighbourhood from one that crosses an edge or carries false colour.
    static void Perceptual(DirectionPlanes& p, ptrdiff_t y, ptrdiff_t x) {
        const int32_t r = p.red.Row(y)[x], g = p.green.Row(y)[x], b = p.blue.Row(y)[x];
        p.luma.Row(y)[x] = r + 2 * g + b;
        p.chromaA.Row(y)[x] = r - g;
        p.chromaB.Row(y)[x] = b - g;
    }

    static int64_t ChromaDistance(DirectionPlanes& p, ptrdiff_t y, ptrdiff_t x, ptrdiff_t ny,
                                  ptrdiff_t nx) {
        const int64_t da = p.chromaA.Row(y)[x] - p.chromaA.Row(ny)[nx];
        const int64_t db = p.chromaB.Row(y)[x] - p.chromaB.Row(ny)[nx];
        return da * da + db * db;
    }

    // For each pixel and direction: how many of its four neighbours lie within the tolerance,
    // which is the smaller of the two directions' differences along their own direction.
    void Homogeneity(ptrdiff_t y0, ptrdiff_t y1) {
        static const ptrdiff_t kNeighbours[4][2] = {{0, -1}, {0, 1}, {-1, 0}, {1, 0}};
        DirectionPlanes& h = m_planes[kRows];
        DirectionPlanes& v = m_planes[kColumns];
        const ptrdiff_t w = ptrdiff_t(m_mosaic.width);
        for (ptrdiff_t y = y0; y < y1; ++y)
            for (ptrdiff_t x = -1; x < w + 1; ++x) {
                const int32_t lh = h.luma.Row(y)[x], lv = v.luma.Row(y)[x];
                const int32_t lumaLimit = std::min(std::max(std::abs(lh - h.luma.Row(y)[x - 1]),
                                                            std::abs(lh - h.luma.Row(y)[x + 1])),
                                                   std::max(std::abs(lv - v.luma.Row(y - 1)[x]),
                                                            std::abs(lv - v.luma.Row(y + 1)[x])));
                const int64_t chromaLimit = std::min(
                    std::max(ChromaDistance(h, y, x, y, x - 1), ChromaDistance(h, y, x, y, x + 1)),
                    std::max(ChromaDistance(v, y, x, y - 1, x), ChromaDistance(v, y, x, y + 1, x)));
                for (DirectionPlanes* p : {&h, &v}) {
                    int32_t count = 0;
                    for (const auto& n : kNeighbours) {
                        const ptrdiff_t ny = y + n[0], nx = x + n[1];
                        count += std::abs(p->luma.Row(y)[x] - p->luma.Row(ny)[nx]) <= lumaLimit &&
                                 ChromaDistance(*p, y, x, ny, nx) <= chromaLimit;
                    }
                    p->homogeneity.Row(y)[x] = count;
                }
            }
    }

    int32_t Sum3x3(Plane& plane, ptrdiff_t y, ptrdiff_t x) {
        int32_t sum = 0;
        for (ptrdiff_t dy = -1; dy <= 1; ++dy) {
            const int32_t* row = plane.Row(y + dy);
            sum += row[x - 1] + row[x] + row[x + 1];
        }
        return sum;
    }

    void Choose(ptrdiff_t y0, ptrdiff_t y1) {
        DirectionPlanes& h = m_planes[kRows];
        DirectionPlanes& v = m_planes[kColumns];
        for (ptrdiff_t y = y0; y < y1; ++y) {
            T* out = m_out.Row(size_t(y));
            for (ptrdiff_t x = 0; x < ptrdiff_t(m_mosaic.width); ++x, out += m_out.pixelStride) {
                const int32_t sh = Sum3x3(h.homogeneity, y, x), sv = Sum3x3(v.homogeneity, y, x);
                const auto pick = [&](Plane DirectionPlanes::*plane) {
                    const int32_t a = (h.*plane).Row(y)[x], b = (v.*plane).Row(y)[x];
                    return static_cast<T>(sh > sv ? a : sv > sh ? b : (a + b + 1) >> 1);
                };
                PutRgb(m_out, out, pick(&DirectionPlanes::red), pick(&DirectionPlanes::green),
                       pick(&DirectionPlanes::blue));
            }
        }
    }

    const MosaicView<T>& m_mosaic;
    const PixelCanvas<T>& m_out;
    DirectionPlanes m_planes[2];
};

} // namespace

template <class T>
void DemosaicAdaptiveHomogeneity(const MosaicView<T>& mosaic, const PixelCanvas<T>& out, size_t y0,
                                 size_t y1) {
    Band<T> band(mosaic, out);
    for (size_t y = y0; y < y1; y += kBandRows)
        band.Run(y, std::min(y1, y + kBandRows));
}

template void DemosaicAdaptiveHomogeneity(const MosaicView<uint8_t>&, const PixelCanvas<uint8_t>&,
                                          size_t, size_t);
template void DemosaicAdaptiveHomogeneity(const MosaicView<uint16_t>&, const PixelCanvas<uint16_t>&,
                                          size_t, size_t);

} // namespace Orvan
