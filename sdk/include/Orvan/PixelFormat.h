// Pixel-format facts: the PFNC codes, their geometry, and the per-format traits objects through
// which the image factory's bit selection and look-up tables are dispatched.
#ifndef ORVAN_PIXELFORMAT_H
#define ORVAN_PIXELFORMAT_H

#include <Orvan/PfncFormatList.h>

#include <cstddef>
#include <cstdint>

namespace Orvan {

// The multi-tap codes derive from a single-tap base: Dual sets the vendor flag and 0x1000, Quad
// 0x3000; the _2ch/_4ch variants also multiply the bits-per-pixel field by the tap count.
constexpr uint32_t PfncDualCode(uint32_t base) {
    return 0x80000000u | base | 0x1000u;
}
constexpr uint32_t PfncQuadCode(uint32_t base) {
    return 0x80000000u | base | 0x3000u;
}
constexpr uint32_t PfncWidenBits(uint32_t code, uint32_t taps) {
    return (code & ~0x00FF0000u) | ((((code >> 16) & 0xFFu) * taps) << 16);
}

// clang-format off
enum PfncFormat_ : uint32_t {
    InvalidPixelFormat = 0,
#define ORVAN_PFNC_ENUMERATOR(name, code) name = code,
    ORVAN_PFNC_STANDARD_FORMATS(ORVAN_PFNC_ENUMERATOR)
    ORVAN_PFNC_VENDOR_FORMATS(ORVAN_PFNC_ENUMERATOR)
#undef ORVAN_PFNC_ENUMERATOR
#define ORVAN_PFNC_TAP_ENUMERATORS(base)                                                           \
    Dual##base = PfncDualCode(base),                                                               \
    Quad##base = PfncQuadCode(base),
    ORVAN_PFNC_TAP_BASES(ORVAN_PFNC_TAP_ENUMERATORS)
#undef ORVAN_PFNC_TAP_ENUMERATORS
#define ORVAN_PFNC_WIDE_TAP_ENUMERATORS(base)                                                      \
    Dual##base##_2ch = PfncWidenBits(PfncDualCode(base), 2),                                       \
    Quad##base##_4ch = PfncWidenBits(PfncQuadCode(base), 4),
    ORVAN_PFNC_WIDE_TAP_BASES(ORVAN_PFNC_WIDE_TAP_ENUMERATORS)
#undef ORVAN_PFNC_WIDE_TAP_ENUMERATORS
};
// clang-format on
using PfncFormat = PfncFormat_;

// Bits occupied per pixel: the code's bits 23..16, for any code whatever.
size_t GetBitsPerPixel(uint64_t pixelFormat);

// Geometry of a listed format. Each throws GenICam::InvalidArgumentException for a code it does
// not list.
size_t GetNumChannels(uint64_t pixelFormat);
size_t GetBitsPerChannel(uint64_t pixelFormat);
size_t GetBytesPerStep(uint64_t pixelFormat);
size_t GetPixelsPerStep(uint64_t pixelFormat);

class IImage;

// Per-format traits: dispatches the factory's per-layout processing. Stateless. Both operations
// return a new image that the caller releases with ImageFactory::Destroy.
class IImplementation {
public:
    virtual ~IImplementation() = default;
    // A new image keeping the `bits` most significant bits of every sample after scaling.
    virtual IImage* SelectBitsAndScale(IImage* pImage, size_t bits, double scale) = 0;
    // A new image with every sample replaced by its entry of the table.
    virtual IImage* ProcessSoftwareLUT(IImage* pImage, uint8_t* pLUT, size_t lutSize) = 0;
};

// A new traits object for the format; the caller releases it with DestroyPixelFormat. Throws
// std::logic_error for a format without traits.
IImplementation* GetPixelFormat(PfncFormat pixelFormat);
void DestroyPixelFormat(IImplementation* pImplementation);

} // namespace Orvan

#endif
