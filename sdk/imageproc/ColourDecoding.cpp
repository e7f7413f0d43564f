#include "ColourDecoding.h"

#include "ParallelRows.h"

#include <algorithm>
#include <cstring>

namespace Orvan {

namespace {

template <class T>
bool IsNative(const ConversionFormat& format) {
    const SampleStorage native = sizeof(T) == 1 ? SampleStorage::U8 : SampleStorage::U16;
    return format.layout.storage == native && format.layout.bits == 8 * sizeof(T);
}

template <class T, class S>
void ScaleDirect(const S* in, T* out, size_t count, unsigned bits) {
    for (size_t i = 0; i < count; ++i)
        out[i] = ScaleSample<T>(in[i], bits);
}

template <class T>
void ScaleSamples(const uint8_t* source, size_t count, SampleLayout layout, T* out) {
    if (layout.storage == SampleStorage::U8)
        return ScaleDirect(source, out, count, layout.bits);
    if (layout.storage == SampleStorage::U16)
        return ScaleDirect(reinterpret_cast<const uint16_t*>(source), out, count, layout.bits);
    const std::vector<uint32_t> values = ReadSamples(source, count, layout);
    ScaleDirect(values.data(), out, count, layout.bits);
}

// Mirrors about the first and last sample, which keeps the colour of every Bayer position.
ptrdiff_t Mirror(ptrdiff_t i, ptrdiff_t n) {
    if (n == 1)
        return 0;
    const ptrdiff_t period = 2 * (n - 1);
    i %= period;
    if (i < 0)
        i += period;
    return i < n ? i : period - i;
}

} // namespace

template <class T>
PixelCanvas<T> SourceCanvas(const uint8_t* source, size_t width, size_t height,
                            const ConversionFormat& format, ScratchLease& scratch) {
    const size_t rowSamples = width * format.channels;
    PixelCanvas<T> canvas{nullptr,
                          width,
                          height,
                          rowSamples,
                          format.channels,
                          unsigned(format.red),
                          unsigned(format.green),
                          unsigned(format.blue),
                          -1};
    if (IsNative<T>(format)) {
        canvas.data = const_cast<T*>(reinterpret_cast<const T*>(source));
        return canvas;
    }
    canvas.data = reinterpret_cast<T*>(scratch.Get(0, rowSamples * height * sizeof(T)));
    ScaleSamples(source, rowSamples * height, format.layout, canvas.data);
    return canvas;
}

template <class T>
MosaicView<T> BorderedMosaic(const PixelCanvas<T>& plane, BayerPattern pattern,
                             ScratchLease& scratch) {
    const ptrdiff_t w = ptrdiff_t(plane.width), h = ptrdiff_t(plane.height);
    const ptrdiff_t b = kMosaicBorder, stride = w + 2 * b;
    T* block = reinterpret_cast<T*>(scratch.Get(2, size_t(stride * (h + 2 * b)) * sizeof(T)));
    T* origin = block + b * stride + b;
    ParallelRows(size_t(h + 2 * b), size_t(stride * (h + 2 * b)), 1, [&](size_t r0, size_t r1) {
        for (ptrdiff_t y = ptrdiff_t(r0) - b; y < ptrdiff_t(r1) - b; ++y) {
            const T* in = plane.Row(size_t(Mirror(y, h)));
            T* out = origin + y * stride;
            std::memcpy(out, in, size_t(w) * sizeof(T));
            for (ptrdiff_t x = 1; x <= b; ++x) {
                out[-x] = in[Mirror(-x, w)];
                out[w - 1 + x] = in[Mirror(w - 1 + x, w)];
            }
        }
    });
    return {origin, stride, plane.width, plane.height, pattern};
}

template <class T>
void YuvToRgb(const uint8_t* source, size_t width, const YuvGroup& group, const PixelCanvas<T>& out,
              size_t y0, size_t y1) {
    const size_t rowBytes = width / group.pixels * group.samples;
    for (size_t y = y0; y < y1; ++y) {
        const uint8_t* in = source + y * rowBytes;
        T* pixel = out.Row(y);
        for (size_t x = 0; x < width; x += group.pixels, in += group.samples) {
            const int32_t u = int32_t(in[group.u]) - 128, v = int32_t(in[group.v]) - 128;
            // Full-range BT.601 in 14-bit fixed point.
            const int32_t dr = (22970 * v + 8192) >> 14;
            const int32_t dg = (-5638 * u - 11700 * v + 8192) >> 14;
            const int32_t db = (29032 * u + 8192) >> 14;
            for (unsigned i = 0; i < group.pixels; ++i, pixel += out.pixelStride) {
                const int32_t luma = in[group.luma[i]];
                PutRgb(out, pixel, ScaleSample<T>(Clamp<uint8_t>(luma + dr), 8),
                       ScaleSample<T>(Clamp<uint8_t>(luma + dg), 8),
                       ScaleSample<T>(Clamp<uint8_t>(luma + db), 8));
            }
        }
    }
}

#define ORVAN_INSTANTIATE_DECODING(T)                                                              \
    template PixelCanvas<T> SourceCanvas(const uint8_t*, size_t, size_t, const ConversionFormat&,  \
                                         ScratchLease&);                                           \
    template MosaicView<T> BorderedMosaic(const PixelCanvas<T>&, BayerPattern, ScratchLease&);     \
    template void YuvToRgb(const uint8_t*, size_t, const YuvGroup&, const PixelCanvas<T>&, size_t, \
                           size_t);
ORVAN_INSTANTIATE_DECODING(uint8_t)
ORVAN_INSTANTIATE_DECODING(uint16_t)
#undef ORVAN_INSTANTIATE_DECODING

} // namespace Orvan
