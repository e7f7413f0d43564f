// Per-layout bit selection: every sample is multiplied by the scale (saturating at the largest
// value of its depth), then only its `bits` most significant bits are kept. The result is a new
// factory image of the same format and geometry; the caller releases it with
// ImageFactory::Destroy.
#ifndef ORVAN_IMAGEPROC_SELECTBITSANDSCALEIMPL_H
#define ORVAN_IMAGEPROC_SELECTBITSANDSCALEIMPL_H

#include "SampleLayout.h"

#include <Orvan/IImage.h>

namespace Orvan {
namespace SelectBitsAndScaleImpl {

#define ORVAN_DECLARE_SELECT_BITS(suffix, storage, bits)                                           \
    IImage* SelectBitsAndScale_##suffix(IImage* pImage, uint64_t pixelFormat, size_t bitsToKeep,   \
                                        double scale);
ORVAN_SAMPLE_LAYOUTS(ORVAN_DECLARE_SELECT_BITS)
#undef ORVAN_DECLARE_SELECT_BITS

// For formats whose bit selection is not available: always throws.
IImage* SelectBitsAndScale_NoImpl(IImage* pImage, uint64_t pixelFormat, size_t bitsToKeep,
                                  double scale);

} // namespace SelectBitsAndScaleImpl
} // namespace Orvan

#endif
