// Compiled once per instruction set (hwy/foreach_target.h): the reference loops too, so that
// they and the vector loops share one definition of the arithmetic.
#ifndef ORVAN_IMAGEPROC_COLOURENCODING_ONCE
#define ORVAN_IMAGEPROC_COLOURENCODING_ONCE
#include "ColourEncoding.h"

#include "ColourDecoding.h"
#include "ParallelRows.h"

#include <Orvan/PixelFormat.h>

#include <cstring>
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imageproc/ColourEncoding.cpp"
#include <hwy/foreach_target.h> // IWYU pragma: keep

#include "SimdPixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace Orvan {
namespace HWY_NAMESPACE {
namespace {

// BT.601 luma of 8-bit samples given times 128: each weighted in 15-bit fixed point (the
// weights add up to 32768) and rounded to 1/128, the sum then rounded. Every value fits 16 bits.
template <class Ops, class V>
V Luma8(const Ops& o, V r128, V g128, V b128) {
    const V sum =
        o.Add(o.Add(o.MulRound15(r128, 9798), o.MulRound15(g128, 19235)), o.MulRound15(b128, 3735));
    return o.template ShiftRight<7>(o.Add(sum, o.Set(64)));
}

template <class T>
T Luma(const T* pixel, const PixelCanvas<T>& in) {
    const int32_t r = pixel[in.red], g = pixel[in.green], b = pixel[in.blue];
    if constexpr (sizeof(T) == 1)
        return static_cast<T>(Luma8(ScalarLanes(), r << 7, g << 7, b << 7));
    else
        return static_cast<T>((19595u * r + 38470u * g + 7471u * b + 32768u) >> 16);
}

template <class T>
T Grey(const T* pixel, const PixelCanvas<T>& in) {
    return in.IsMono() ? *pixel : Luma(pixel, in);
}

template <class T, class U>
U Rescale(T value) {
    if (sizeof(T) == sizeof(U))
        return static_cast<U>(value);
    return ScaleSample<U>(value, 8 * sizeof(T));
}

// The references: columns [x0, x1) of row y.
template <class T, class U>
void MonoPixels(const PixelCanvas<T>& in, U* out, size_t y, size_t x0, size_t x1) {
    const T* pixel = in.Row(y) + x0 * in.pixelStride;
    for (size_t x = x0; x < x1; ++x, pixel += in.pixelStride)
        out[x] = Rescale<T, U>(Grey(pixel, in));
}

template <class T, class U>
void ColourPixels(const PixelCanvas<T>& in, const PixelCanvas<U>& out, size_t y, size_t x0,
                  size_t x1) {
    const T* pixel = in.Row(y) + x0 * in.pixelStride;
    U* target = out.Row(y) + x0 * out.pixelStride;
    for (size_t x = x0; x < x1; ++x, pixel += in.pixelStride, target += out.pixelStride)
        PutRgb(out, target, Rescale<T, U>(pixel[in.red]), Rescale<T, U>(pixel[in.green]),
               Rescale<T, U>(pixel[in.blue]));
}

// The vector loops of the layouts that have one write row y up to the returned column; the
// reference does the rest.
template <class T, class U>
size_t MonoVectors(const PixelCanvas<T>& in, U* out, size_t y) {
    const T* row = in.Row(y);
    size_t x = 0;
    if constexpr (sizeof(T) == sizeof(U)) {
        if (in.IsMono()) {
            std::memcpy(out, row, in.width * sizeof(T));
            return in.width;
        }
    }
#if ORVAN_HAVE_VECTORS
    if constexpr (sizeof(T) == 1 && sizeof(U) == 1) {
        // The even and odd pixels in the low and high bytes of 16-bit lanes, which keeps them
        // in place.
        const hn::ScalableTag<uint8_t> d;
        const hn::RepartitionToWide<decltype(d)> wide;
        const hn::Rebind<int16_t, decltype(wide)> s;
        const VectorLanes<decltype(s)> o{s};
        const auto times128 = hn::Set(wide, 0xFF << 7);
        const auto even = [&](hn::Vec<decltype(d)> v) {
            return hn::BitCast(s, hn::And(hn::ShiftLeft<7>(hn::BitCast(wide, v)), times128));
        };
        const auto odd = [&](hn::Vec<decltype(d)> v) {
            return hn::BitCast(s, hn::And(hn::ShiftRight<1>(hn::BitCast(wide, v)), times128));
        };
        for (; x + hn::Lanes(d) <= in.width; x += hn::Lanes(d)) {
            hn::Vec<decltype(d)> r, g, b;
            LoadSamples(d, in, row + x * in.pixelStride, r, g, b);
            const auto low = Luma8(o, even(r), even(g), even(b));
            const auto high = Luma8(o, odd(r), odd(g), odd(b));
            hn::StoreU(hn::BitCast(d, hn::Or(low, hn::ShiftLeft<8>(high))), d, out + x);
        }
    }
#endif
    if constexpr (sizeof(T) == 2 && sizeof(U) == 1) {
        const hn::ScalableTag<uint16_t> d;
        const hn::Rebind<uint8_t, decltype(d)> narrow;
        const hn::Rebind<int16_t, decltype(d)> signedD;
        for (; in.IsMono() && x + hn::Lanes(d) <= in.width; x += hn::Lanes(d)) {
            const auto top = hn::ShiftRight<8>(hn::LoadU(d, row + x));
            hn::StoreU(hn::DemoteTo(narrow, hn::BitCast(signedD, top)), narrow, out + x);
        }
    }
    return x;
}

template <class T, class U>
size_t ColourVectors(const PixelCanvas<T>& in, const PixelCanvas<U>& out, size_t y) {
    size_t x = 0;
    if constexpr (sizeof(T) == sizeof(U)) {
        const hn::ScalableTag<T> d;
        const T* row = in.Row(y);
        U* target = out.Row(y);
        for (; x + hn::Lanes(d) <= in.width; x += hn::Lanes(d)) {
            hn::Vec<decltype(d)> r, g, b;
            LoadSamples(d, in, row + x * in.pixelStride, r, g, b);
            StoreSamples(d, out, target + x * out.pixelStride, r, g, b);
        }
    }
    return x;
}

template <class T, class U>
void EncodeRowsAs(const PixelCanvas<T>& in, const ConversionFormat& format, uint8_t* target,
                  size_t y0, size_t y1, Kernels kernels) {
    const bool fast = kernels == Kernels::Fast;
    if (format.family == ColourFamily::Mono) {
        for (size_t y = y0; y < y1; ++y) {
            U* out = reinterpret_cast<U*>(target) + y * in.width;
            MonoPixels(in, out, y, fast ? MonoVectors(in, out, y) : 0, in.width);
        }
        return;
    }
    const PixelCanvas<U> out = TargetCanvas<U>(target, in.width, in.height, format);
    for (size_t y = y0; y < y1; ++y)
        ColourPixels(in, out, y, fast ? ColourVectors(in, out, y) : 0, in.width);
}

template <class T>
void EncodeRows(const PixelCanvas<T>& in, const ConversionFormat& format, uint8_t* target,
                size_t y0, size_t y1, Kernels kernels) {
    if (format.layout.storage == SampleStorage::U8)
        EncodeRowsAs<T, uint8_t>(in, format, target, y0, y1, kernels);
    else
        EncodeRowsAs<T, uint16_t>(in, format, target, y0, y1, kernels);
}

} // namespace

void EncodeRows8(const PixelCanvas<uint8_t>& in, const ConversionFormat& format, uint8_t* target,
                 size_t y0, size_t y1, Kernels kernels) {
    EncodeRows(in, format, target, y0, y1, kernels);
}

void EncodeRows16(const PixelCanvas<uint16_t>& in, const ConversionFormat& format, uint8_t* target,
                  size_t y0, size_t y1, Kernels kernels) {
    EncodeRows(in, format, target, y0, y1, kernels);
}

} // namespace HWY_NAMESPACE
} // namespace Orvan
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Orvan {

HWY_EXPORT(EncodeRows8);
HWY_EXPORT(EncodeRows16);

namespace {

// Rows [y0, y1) of the canvas in a target format of whole 8- or 16-bit samples.
template <class T>
void EncodeRows(const PixelCanvas<T>& in, const ConversionFormat& format, uint8_t* target,
                size_t y0, size_t y1, Kernels kernels) {
    if constexpr (sizeof(T) == 1)
        HWY_DYNAMIC_DISPATCH(EncodeRows8)(in, format, target, y0, y1, kernels);
    else
        HWY_DYNAMIC_DISPATCH(EncodeRows16)(in, format, target, y0, y1, kernels);
}

// The packed mono forms: grey at 16 bits, then packed by the sample layout's writer.
template <class T>
void EncodePacked(const PixelCanvas<T>& in, const ConversionFormat& format, uint8_t* target,
                  Kernels kernels) {
    std::vector<uint16_t> grey(in.width * in.height);
    EncodeRows(in, *FindTargetFormat(Mono16), reinterpret_cast<uint8_t*>(grey.data()), 0, in.height,
               kernels);
    std::vector<uint32_t> samples(grey.begin(), grey.end());
    for (uint32_t& sample : samples)
        sample >>= 16 - format.layout.bits;
    const std::vector<uint8_t> packed = WriteSamples(samples, format.layout);
    std::memcpy(target, packed.data(), in.width * in.height * GetBitsPerPixel(format.code) >> 3);
}

} // namespace

template <class T>
bool CanWriteDirectly(const ConversionFormat& target) {
    return target.family == ColourFamily::Rgb && target.layout.bits == 8 * sizeof(T);
}

template <class T>
PixelCanvas<T> TargetCanvas(uint8_t* target, size_t width, size_t height,
                            const ConversionFormat& format) {
    return {reinterpret_cast<T*>(target),
            width,
            height,
            width * format.channels,
            format.channels,
            unsigned(format.red),
            unsigned(format.green),
            unsigned(format.blue),
            format.alpha};
}

template <class T>
void Encode(const PixelCanvas<T>& in, const ConversionFormat& format, uint8_t* target,
            Kernels kernels) {
    if (format.layout.storage != SampleStorage::U8 && format.layout.storage != SampleStorage::U16)
        return EncodePacked(in, format, target, kernels);
    ParallelRows(in.height, in.width * in.height * format.channels, 1,
                 [&](size_t y0, size_t y1) { EncodeRows(in, format, target, y0, y1, kernels); });
}

#define ORVAN_INSTANTIATE_ENCODING(T)                                                              \
    template bool CanWriteDirectly<T>(const ConversionFormat&);                                    \
    template PixelCanvas<T> TargetCanvas(uint8_t*, size_t, size_t, const ConversionFormat&);       \
    template void Encode(const PixelCanvas<T>&, const ConversionFormat&, uint8_t*, Kernels);
ORVAN_INSTANTIATE_ENCODING(uint8_t)
ORVAN_INSTANTIATE_ENCODING(uint16_t)
#undef ORVAN_INSTANTIATE_ENCODING

} // namespace Orvan
#endif
