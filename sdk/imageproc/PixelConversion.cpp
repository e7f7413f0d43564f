#include "PixelConversion.h"

#include "ColourDecoding.h"
#include "ColourEncoding.h"
#include "DemosaicAdaptiveHomogeneity.h"
#include "DemosaicBilinear.h"
#include "DemosaicHighQualityLinear.h"
#include "ParallelRows.h"

namespace Orvan {

namespace {

template <class T>
using DemosaicRows = void (*)(const MosaicView<T>&, const PixelCanvas<T>&, size_t, size_t);

template <class T>
DemosaicRows<T> DemosaicFor(DemosaicMethod method) {
    switch (method) {
    case DemosaicMethod::Bilinear:
        return DemosaicBilinear<T>;
    case DemosaicMethod::AdaptiveHomogeneityDirected:
        return DemosaicAdaptiveHomogeneity<T>;
    default:
        return DemosaicHighQualityLinear<T>;
    }
}

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
void Convert(const uint8_t* source, const ConversionFormat& sourceFormat, uint8_t* target,
             const ConversionFormat& targetFormat, size_t width, size_t height,
             DemosaicMethod method) {
    ScratchLease scratch;
    if (sourceFormat.family == ColourFamily::Mono || sourceFormat.family == ColourFamily::Rgb)
        return Encode(SourceCanvas<T>(source, width, height, sourceFormat, scratch), targetFormat,
                      target);
    const PixelCanvas<T> rgb = RgbCanvas<T>(target, targetFormat, width, height, scratch);
    const size_t work = width * height * 3;
    if (sourceFormat.family == ColourFamily::Yuv) {
        ParallelRows(height, work, 1, [&](size_t y0, size_t y1) {
            YuvToRgb(source, width, sourceFormat.yuv, rgb, y0, y1);
            FillAlpha(rgb, y0, y1);
        });
    } else {
        const MosaicView<T> mosaic =
            BorderedMosaic(SourceCanvas<T>(source, width, height, sourceFormat, scratch),
                           sourceFormat.pattern, scratch);
        const DemosaicRows<T> demosaic = DemosaicFor<T>(method);
        ParallelRows(height, work, 2, [&](size_t y0, size_t y1) {
            demosaic(mosaic, rgb, y0, y1);
            FillAlpha(rgb, y0, y1);
        });
    }
    if (rgb.data != reinterpret_cast<T*>(target))
        Encode(rgb, targetFormat, target);
}

} // namespace

bool FitsGeometry(const ConversionFormat& source, size_t width, size_t) {
    return source.family != ColourFamily::Yuv || width % source.yuv.pixels == 0;
}

void ConvertPixels(const uint8_t* source, const ConversionFormat& sourceFormat, uint8_t* target,
                   const ConversionFormat& targetFormat, size_t width, size_t height,
                   DemosaicMethod method) {
    if (sourceFormat.layout.bits > 8 || targetFormat.layout.bits > 8)
        Convert<uint16_t>(source, sourceFormat, target, targetFormat, width, height, method);
    else
        Convert<uint8_t>(source, sourceFormat, target, targetFormat, width, height, method);
}

} // namespace Orvan
