// Compiled once per instruction set (hwy/foreach_target.h): the YUV reference loop too, so that
// it and the vector loop share one definition of the arithmetic.
#ifndef ORVAN_IMAGEPROC_COLOURDECODING_ONCE
#define ORVAN_IMAGEPROC_COLOURDECODING_ONCE
#include "ColourDecoding.h"

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

// Samples in 16-bit containers, read byte by byte: a row after an odd padding is not aligned.
template <class T>
void ScaleWords(const uint8_t* in, T* out, size_t count, unsigned bits) {
    const uint32_t mask = (uint32_t{1} << bits) - 1;
    for (size_t i = 0; i < count; ++i) {
        uint16_t word;
        std::memcpy(&word, in + 2 * i, sizeof word);
        out[i] = ScaleSample<T>(word & mask, bits);
    }
}

template <class T>
void ScaleSamples(const uint8_t* source, size_t bytes, size_t count, SampleLayout layout, T* out) {
    if (layout.storage == SampleStorage::U8)
        return ScaleDirect(source, out, count, layout.bits);
    if (layout.storage == SampleStorage::U16)
        return ScaleWords(source, out, count, layout.bits);
    const std::vector<uint32_t> values = ReadSamples(source, bytes, count, layout);
    ScaleDirect(values.data(), out, count, layout.bits);
}

} // namespace

template <class T>
PixelCanvas<T> SourceCanvas(const SourceBlock& source, const ConversionFormat& format,
                            ScratchLease& scratch) {
    const size_t rowSamples = source.width * format.channels;
    const size_t rowBytes = StoredSize(rowSamples, format.layout.storage) + source.paddingX;
    PixelCanvas<T> canvas{nullptr,
                          source.width,
                          source.height,
                          rowSamples,
                          format.channels,
                          unsigned(format.red),
                          unsigned(format.green),
                          unsigned(format.blue),
                          -1};
    if (IsNative<T>(format) && rowBytes % sizeof(T) == 0 &&
        reinterpret_cast<uintptr_t>(source.data) % sizeof(T) == 0) {
        canvas.data = const_cast<T*>(reinterpret_cast<const T*>(source.data));
        canvas.rowStride = rowBytes / sizeof(T);
        return canvas;
    }
    canvas.data = reinterpret_cast<T*>(scratch.Get(0, rowSamples * source.height * sizeof(T)));
    if (source.paddingX == 0)
        ScaleSamples(source.data, source.bytes, rowSamples * source.height, format.layout,
                     canvas.data);
    else
        for (size_t y = 0; y < source.height; ++y)
            ScaleSamples(source.data + y * rowBytes, rowBytes, rowSamples, format.layout,
                         canvas.Row(y));
    return canvas;
}

template PixelCanvas<uint8_t> SourceCanvas(const SourceBlock&, const ConversionFormat&,
                                           ScratchLease&);
template PixelCanvas<uint16_t> SourceCanvas(const SourceBlock&, const ConversionFormat&,
                                            ScratchLease&);

} // namespace Orvan
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imageproc/ColourDecoding.cpp"
#include <hwy/foreach_target.h> // IWYU pragma: keep

#include "SimdPixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace Orvan {
namespace HWY_NAMESPACE {
namespace {

// What the chroma of a group adds to its luma, in full-range BT.601 (14-bit fixed point); u and
// v are centred on 0.
template <class V>
struct ChromaOffsets {
    V red, green, blue;
};

template <class Ops, class V>
ChromaOffsets<V> Chroma(const Ops& o, V u, V v) {
    // (2v * 22970 + 16384) >> 15 is (v * 22970 + 8192) >> 14.
    return {o.MulRound15(o.Add(v, v), 22970), o.DotRound14(u, -5638, v, -11700),
            o.MulRound15(o.Add(u, u), 29032)};
}

// The reference: groups [g0, g1) of a row.
template <class T>
void YuvGroups(const uint8_t* in, const YuvGroup& group, const PixelCanvas<T>& out, T* pixels,
               size_t g0, size_t g1) {
    in += g0 * group.samples;
    pixels += g0 * group.pixels * out.pixelStride;
    for (size_t g = g0; g < g1; ++g, in += group.samples) {
        const ChromaOffsets<int32_t> c =
            Chroma(ScalarLanes(), int32_t(in[group.u]) - 128, int32_t(in[group.v]) - 128);
        for (unsigned i = 0; i < group.pixels; ++i, pixels += out.pixelStride) {
            const int32_t luma = in[group.luma[i]];
            PutRgb(out, pixels, ScaleSample<T>(Clamp<uint8_t>(luma + c.red), 8),
                   ScaleSample<T>(Clamp<uint8_t>(luma + c.green), 8),
                   ScaleSample<T>(Clamp<uint8_t>(luma + c.blue), 8));
        }
    }
}

#if ORVAN_HAVE_VECTORS
// The vector loop of the 4:2:2 layouts (two pixels a group, luma first or second in each pair
// of bytes) into 8-bit canvases; returns the groups done.
size_t Yuv422Vectors(const uint8_t* in, const YuvGroup& group, const PixelCanvas<uint8_t>& out,
                     uint8_t* pixels, size_t groups) {
    const bool lumaFirst = group.luma[0] == 0 && group.luma[1] == 2 && group.u == 1;
    const bool lumaSecond = group.luma[0] == 1 && group.luma[1] == 3 && group.u == 0;
    if (group.pixels != 2 || group.samples != 4 || !(lumaFirst || lumaSecond))
        return 0;
    // One 16-bit lane per pair of bytes, so that a lane holds a group's luma and one chroma.
    const hn::ScalableTag<uint16_t> d;
    const hn::Rebind<int16_t, decltype(d)> s;
    const VectorLanes<decltype(s)> o{s};
    const auto low = [&](hn::Vec<decltype(d)> pair) {
        return hn::BitCast(s, hn::And(pair, hn::Set(d, 0xFF)));
    };
    const auto high = [&](hn::Vec<decltype(d)> pair) {
        return hn::BitCast(s, hn::ShiftRight<8>(pair));
    };
    const auto zero = o.Set(0), top = o.Set(255), centre = o.Set(128);
    const auto byte = [&](hn::Vec<decltype(s)> v) { return ClampTo(o, v, zero, top); };
    // Two 8-bit samples in one lane, the first in the low byte.
    const auto pair = [&](hn::Vec<decltype(s)> first, hn::Vec<decltype(s)> second) {
        return hn::BitCast(d, hn::Or(first, hn::ShiftLeft<8>(second)));
    };
    const size_t lanes = hn::Lanes(d);
    size_t g = 0;
    for (; g + lanes <= groups; g += lanes) {
        hn::Vec<decltype(d)> a, b;
        hn::LoadInterleaved2(d, reinterpret_cast<const uint16_t*>(in + g * 4), a, b);
        const auto y0 = lumaFirst ? low(a) : high(a), y1 = lumaFirst ? low(b) : high(b);
        const auto u = lumaFirst ? high(a) : low(a), v = lumaFirst ? high(b) : low(b);
        const ChromaOffsets<hn::Vec<decltype(s)>> c =
            Chroma(o, hn::Sub(u, centre), hn::Sub(v, centre));
        const auto r0 = byte(hn::Add(y0, c.red)), g0 = byte(hn::Add(y0, c.green)),
                   b0 = byte(hn::Add(y0, c.blue));
        const auto r1 = byte(hn::Add(y1, c.red)), g1 = byte(hn::Add(y1, c.green)),
                   b1 = byte(hn::Add(y1, c.blue));
        const auto first0 = out.red == 0 ? r0 : b0, third0 = out.red == 0 ? b0 : r0;
        const auto first1 = out.red == 0 ? r1 : b1, third1 = out.red == 0 ? b1 : r1;
        auto* target = reinterpret_cast<uint16_t*>(pixels + g * 2 * out.pixelStride);
        if (out.pixelStride == 4)
            hn::StoreInterleaved4(pair(first0, g0), pair(third0, top), pair(first1, g1),
                                  pair(third1, top), d, target);
        else
            hn::StoreInterleaved3(pair(first0, g0), pair(third0, first1), pair(g1, third1), d,
                                  target);
    }
    return g;
}
#endif

template <class T>
void YuvRows(const SourceBlock& source, const YuvGroup& group, const PixelCanvas<T>& out, size_t y0,
             size_t y1, Kernels kernels) {
    const size_t groups = source.width / group.pixels;
    const size_t rowBytes = groups * group.samples + source.paddingX;
    for (size_t y = y0; y < y1; ++y) {
        const uint8_t* in = source.data + y * rowBytes;
        size_t done = 0;
#if ORVAN_HAVE_VECTORS
        if constexpr (sizeof(T) == 1)
            if (kernels == Kernels::Fast)
                done = Yuv422Vectors(in, group, out, out.Row(y), groups);
#else
        (void)kernels;
#endif
        YuvGroups(in, group, out, out.Row(y), done, groups);
    }
}

} // namespace

void YuvRows8(const SourceBlock& source, const YuvGroup& group, const PixelCanvas<uint8_t>& out,
              size_t y0, size_t y1, Kernels kernels) {
    YuvRows(source, group, out, y0, y1, kernels);
}

void YuvRows16(const SourceBlock& source, const YuvGroup& group, const PixelCanvas<uint16_t>& out,
               size_t y0, size_t y1, Kernels kernels) {
    YuvRows(source, group, out, y0, y1, kernels);
}

} // namespace HWY_NAMESPACE
} // namespace Orvan
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Orvan {

HWY_EXPORT(YuvRows8);
HWY_EXPORT(YuvRows16);

void YuvToRgb(const SourceBlock& source, const YuvGroup& group, const PixelCanvas<uint8_t>& out,
              size_t y0, size_t y1, Kernels kernels) {
    HWY_DYNAMIC_DISPATCH(YuvRows8)(source, group, out, y0, y1, kernels);
}

void YuvToRgb(const SourceBlock& source, const YuvGroup& group, const PixelCanvas<uint16_t>& out,
              size_t y0, size_t y1, Kernels kernels) {
    HWY_DYNAMIC_DISPATCH(YuvRows16)(source, group, out, y0, y1, kernels);
}

} // namespace Orvan
#endif
