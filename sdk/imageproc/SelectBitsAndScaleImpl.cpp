#include "SelectBitsAndScaleImpl.h"

#include "SampleMapping.h"
#include "buffer/PFNCCustom.h"

#include <cmath>
#include <string>

namespace Orvan {
namespace SelectBitsAndScaleImpl {

namespace {

IImage* SelectBits(IImage* pImage, SampleLayout layout, size_t bitsToKeep, double scale,
                   const ErrorSite& site) {
    if (pImage == nullptr)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Image is null", site);
    if (bitsToKeep == 0 || bitsToKeep > layout.bits)
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "Bits to keep must be between 1 and " + std::to_string(layout.bits), site);
    if (!std::isfinite(scale) || scale < 0)
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "Scale must be finite and not negative", site);
    const uint32_t maximum = static_cast<uint32_t>((uint64_t{1} << layout.bits) - 1);
    const uint32_t keepMask = maximum & ~((uint32_t{1} << (layout.bits - bitsToKeep)) - 1);
    return MapSamples(*pImage, layout, site, [=](uint32_t value) {
        const double scaled = value * scale;
        const uint32_t saturated =
            scaled >= maximum ? maximum : static_cast<uint32_t>(std::lround(scaled));
        return saturated & keepMask;
    });
}

} // namespace

#define ORVAN_DEFINE_SELECT_BITS(suffix, storage, bits)                                            \
    IImage* SelectBitsAndScale_##suffix(IImage* pImage, uint64_t, size_t bitsToKeep,               \
                                        double scale) {                                            \
        return SelectBits(pImage, SampleLayout{SampleStorage::storage, bits}, bitsToKeep, scale,   \
                          ORVAN_SITE("SelectBitsAndScaleImpl", "SelectBitsAndScale_" #suffix));    \
    }
ORVAN_SAMPLE_LAYOUTS(ORVAN_DEFINE_SELECT_BITS)
#undef ORVAN_DEFINE_SELECT_BITS

IImage* SelectBitsAndScale_NoImpl(IImage*, uint64_t pixelFormat, size_t, double) {
    ThrowLibraryError<GenICam::LogicalErrorException>(
        std::string("SelectBitsAndScale not implemented for ") +
            GetPixelFormatName(static_cast<PfncFormat>(pixelFormat)),
        ORVAN_SITE("SelectBitsAndScaleImpl", "SelectBitsAndScale_NoImpl"));
}

} // namespace SelectBitsAndScaleImpl
} // namespace Orvan
