// Compiled once per instruction set (hwy/foreach_target.h), the methods' kernels with it.
#ifndef ORVAN_IMAGEPROC_DEMOSAIC_ONCE
#define ORVAN_IMAGEPROC_DEMOSAIC_ONCE
#include "Demosaic.h"
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imageproc/Demosaic.cpp"
#include <hwy/foreach_target.h> // IWYU pragma: keep

#include "DemosaicAdaptiveHomogeneity-inl.h"
#include "DemosaicBilinear-inl.h"
#include "DemosaicHighQualityLinear-inl.h"

HWY_BEFORE_NAMESPACE();
namespace Orvan {
namespace HWY_NAMESPACE {

template <class T>
void DemosaicRows(DemosaicMethod method, const MosaicView<T>& mosaic, const PixelCanvas<T>& out,
                  size_t y0, size_t y1, Kernels kernels) {
    switch (method) {
    case DemosaicMethod::Bilinear:
        return BilinearRows(mosaic, out, y0, y1, kernels);
    case DemosaicMethod::AdaptiveHomogeneityDirected:
        return AdaptiveHomogeneityRows(mosaic, out, y0, y1, kernels);
    default:
        return HighQualityRows(mosaic, out, y0, y1, kernels);
    }
}

void DemosaicRows8(DemosaicMethod method, const MosaicView<uint8_t>& mosaic,
                   const PixelCanvas<uint8_t>& out, size_t y0, size_t y1, Kernels kernels) {
    DemosaicRows(method, mosaic, out, y0, y1, kernels);
}

void DemosaicRows16(DemosaicMethod method, const MosaicView<uint16_t>& mosaic,
                    const PixelCanvas<uint16_t>& out, size_t y0, size_t y1, Kernels kernels) {
    DemosaicRows(method, mosaic, out, y0, y1, kernels);
}

} // namespace HWY_NAMESPACE
} // namespace Orvan
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Orvan {

HWY_EXPORT(DemosaicRows8);
HWY_EXPORT(DemosaicRows16);

void Demosaic(DemosaicMethod method, const MosaicView<uint8_t>& mosaic,
              const PixelCanvas<uint8_t>& out, size_t y0, size_t y1, Kernels kernels) {
    HWY_DYNAMIC_DISPATCH(DemosaicRows8)(method, mosaic, out, y0, y1, kernels);
}

void Demosaic(DemosaicMethod method, const MosaicView<uint16_t>& mosaic,
              const PixelCanvas<uint16_t>& out, size_t y0, size_t y1, Kernels kernels) {
    HWY_DYNAMIC_DISPATCH(DemosaicRows16)(method, mosaic, out, y0, y1, kernels);
}

} // namespace Orvan
#endif
