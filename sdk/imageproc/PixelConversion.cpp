#include "PixelConversion.h"

#include "ColourEncoding.h"
#include "Demosaic.h"
#include "ParallelRows.h"

#include <Orvan/PixelFormat.h>

namespace Orvan {

namespace {

// Where the RGB stages write: the target itself when it stores T samples, else pool 1.
template <class T>
PixelCanvas<T> RgbCanvas(uint8_t* target, const ConversionFormat& format, size_t width,
                         size_t height, ScratchLease& scratch) {
    if (CanWriteDirectly<T>(format))
        return TargetCanvas<T>(target, width, height, format);
    T* block = reinterpret_cast<T*>(scratch.Get(1, width * height * 3 * sizeof(T)));
    return {block, width, height, width * 3, 3, 0, 1, 2, -1};
}

template <class T>
void Convert(const SourceBlock& source, const ConversionFormat& sourceFormat, uint8_t* target,
             const ConversionFormat& targetFormat, DemosaicMethod method, Kernels kernels) {
    ScratchLease scratch;
    if (sourceFormat.family == ColourFamily::Mono || sourceFormat.family == ColourFamily::Rgb)
        return Encode(SourceCanvas<T>(source, sourceFormat, scratch), targetFormat, target,
                      kernels);
    const PixelCanvas<T> rgb =
        RgbCanvas<T>(target, targetFormat, source.width, source.height, scratch);
    const size_t work = source.width * source.height * 3;
    if (sourceFormat.family == ColourFamily::Yuv) {
        ParallelRows(source.height, work, 1, [&](size_t y0, size_t y1) {
            YuvToRgb(source, sourceFormat.yuv, rgb, y0, y1, kernels);
        });
    } else {
        const PixelCanvas<T> plane = SourceCanvas<T>(source, sourceFormat, scratch);
        const MosaicView<T> mosaic{plane.data, ptrdiff_t(plane.rowStride), plane.width,
                                   plane.height, sourceFormat.pattern};
        ParallelRows(source.height, work, 2,
                     [&](size_t y0, size_t y1) { Demosaic(method, mosaic, rgb, y0, y1, kernels); });
    }
    if (rgb.data != reinterpret_cast<T*>(target))
        Encode(rgb, targetFormat, target, kernels);
}

} // namespace

bool FitsGeometry(const ConversionFormat& source, size_t width) {
    return source.family != ColourFamily::Yuv || width % source.yuv.pixels == 0;
}

size_t SourceBytes(const ConversionFormat& format, const SourceBlock& source) {
    const size_t bits = GetBitsPerPixel(format.code);
    if (source.paddingX == 0 || source.height == 0)
        return source.width * source.height * bits >> 3;
    const size_t row = (source.width * bits + 7) / 8;
    return (row + source.paddingX) * (source.height - 1) + row;
}

void ConvertPixels(const SourceBlock& source, const ConversionFormat& sourceFormat, uint8_t* target,
                   const ConversionFormat& targetFormat, DemosaicMethod method, Kernels kernels) {
    if (sourceFormat.layout.bits > 8 || targetFormat.layout.bits > 8)
        Convert<uint16_t>(source, sourceFormat, target, targetFormat, method, kernels);
    else
        Convert<uint8_t>(source, sourceFormat, target, targetFormat, method, kernels);
}

} // namespace Orvan
