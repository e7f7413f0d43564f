#include "ColourEncoding.h"

#include "ColourDecoding.h"
#include "ParallelRows.h"

#include <Orvan/PixelFormat.h>

#include <cstring>

namespace Orvan {

namespace {

// BT.601 luma in 16-bit fixed point; the weights add up to 65536.
template <class T>
inline T Luma(const T* pixel, const PixelCanvas<T>& in) {
    const uint32_t sum =
        19595u * pixel[in.red] + 38470u * pixel[in.green] + 7471u * pixel[in.blue] + 32768u;
    return static_cast<T>(sum >> 16);
}

template <class T>
inline T Grey(const T* pixel, const PixelCanvas<T>& in) {
    return in.IsMono() ? *pixel : Luma(pixel, in);
}

template <class T, class U>
inline U Rescale(T value) {
    if (sizeof(T) == sizeof(U))
        return static_cast<U>(value);
    return ScaleSample<U>(value, 8 * sizeof(T));
}

template <class T, class U>
void MonoRows(const PixelCanvas<T>& in, U* out, size_t y0, size_t y1) {
    for (size_t y = y0; y < y1; ++y) {
        const T* pixel = in.Row(y);
        U* row = out + y * in.width;
        for (size_t x = 0; x < in.width; ++x, pixel += in.pixelStride)
            row[x] = Rescale<T, U>(Grey(pixel, in));
    }
}

template <class T, class U>
void ColourRows(const PixelCanvas<T>& in, const PixelCanvas<U>& out, size_t y0, size_t y1) {
    for (size_t y = y0; y < y1; ++y) {
        const T* pixel = in.Row(y);
        U* target = out.Row(y);
        for (size_t x = 0; x < in.width; ++x, pixel += in.pixelStride, target += out.pixelStride)
            PutRgb(out, target, Rescale<T, U>(pixel[in.red]), Rescale<T, U>(pixel[in.green]),
                   Rescale<T, U>(pixel[in.blue]));
    }
    FillAlpha(out, y0, y1);
}

template <class T, class U>
void EncodeAs(const PixelCanvas<T>& in, const ConversionFormat& format, uint8_t* target) {
    const size_t work = in.width * in.height * format.channels;
    if (format.family == ColourFamily::Mono) {
        U* out = reinterpret_cast<U*>(target);
        ParallelRows(in.height, work, 1, [&](size_t y0, size_t y1) { MonoRows(in, out, y0, y1); });
        return;
    }
    const PixelCanvas<U> out = TargetCanvas<U>(target, in.width, in.height, format);
    ParallelRows(in.height, work, 1, [&](size_t y0, size_t y1) { ColourRows(in, out, y0, y1); });
}

// The packed mono forms: grey at 16 bits, then packed by the sample layout's writer.
template <class T>
void EncodePacked(const PixelCanvas<T>& in, const ConversionFormat& format, uint8_t* target) {
    std::vector<uint32_t> samples(in.width * in.height);
    for (size_t y = 0; y < in.height; ++y) {
        const T* pixel = in.Row(y);
        for (size_t x = 0; x < in.width; ++x, pixel += in.pixelStride)
            samples[y * in.width + x] =
                Rescale<T, uint16_t>(Grey(pixel, in)) >> (16 - format.layout.bits);
    }
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
void FillAlpha(const PixelCanvas<T>& canvas, size_t y0, size_t y1) {
    if (canvas.alpha < 0)
        return;
    for (size_t y = y0; y < y1; ++y) {
        T* pixel = canvas.Row(y) + canvas.alpha;
        for (size_t x = 0; x < canvas.width; ++x, pixel += canvas.pixelStride)
            *pixel = static_cast<T>(SampleMax<T>());
    }
}

template <class T>
void Encode(const PixelCanvas<T>& in, const ConversionFormat& format, uint8_t* target) {
    switch (format.layout.storage) {
    case SampleStorage::U8:
        return EncodeAs<T, uint8_t>(in, format, target);
    case SampleStorage::U16:
        return EncodeAs<T, uint16_t>(in, format, target);
    default:
        return EncodePacked(in, format, target);
    }
}

#define ORVAN_INSTANTIATE_ENCODING(T)                                                              \
    template bool CanWriteDirectly<T>(const ConversionFormat&);                                    \
    template PixelCanvas<T> TargetCanvas(uint8_t*, size_t, size_t, const ConversionFormat&);       \
    template void FillAlpha(const PixelCanvas<T>&, size_t, size_t);                                \
    template void Encode(const PixelCanvas<T>&, const ConversionFormat&, uint8_t*);
ORVAN_INSTANTIATE_ENCODING(uint8_t)
ORVAN_INSTANTIATE_ENCODING(uint16_t)
#undef ORVAN_INSTANTIATE_ENCODING

} // namespace Orvan
