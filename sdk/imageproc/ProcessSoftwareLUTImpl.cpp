#include "ProcessSoftwareLUTImpl.h"

#include "SampleMapping.h"
#include "buffer/PFNCCustom.h"

#include <string>

namespace Orvan {
namespace ProcessSoftwareLUTImpl {

namespace {

size_t EntryBytes(unsigned bits) {
    return (bits + 7) / 8;
}

IImage* ApplyLut(IImage* pImage, SampleLayout layout, const uint8_t* pLUT, size_t lutSize,
                 const ErrorSite& site) {
    if (pImage == nullptr)
        ThrowLibraryError<GenICam::InvalidArgumentException>("Image is null", site);
    if (pLUT == nullptr)
        ThrowLibraryError<GenICam::InvalidArgumentException>("LUT is null", site);
    if (lutSize != LutSize(layout.bits))
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "LUT size " + std::to_string(lutSize) + " does not match expected " +
                std::to_string(LutSize(layout.bits)),
            site);
    const size_t entryBytes = EntryBytes(layout.bits);
    const uint32_t mask = static_cast<uint32_t>((uint64_t{1} << layout.bits) - 1);
    return MapSamples(*pImage, layout, site, [=](uint32_t value) {
        const uint8_t* entry = pLUT + size_t{value} * entryBytes;
        uint32_t mapped = 0;
        for (size_t b = 0; b < entryBytes; ++b)
            mapped |= uint32_t{entry[b]} << (8 * b);
        return mapped & mask;
    });
}

} // namespace

size_t LutSize(unsigned bits) {
    return (size_t{1} << bits) * EntryBytes(bits);
}

#define ORVAN_DEFINE_LUT(suffix, storage, bits)                                                    \
    IImage* ProcessSoftwareLUT_##suffix(IImage* pImage, uint8_t* pLUT, size_t lutSize) {           \
        return ApplyLut(pImage, SampleLayout{SampleStorage::storage, bits}, pLUT, lutSize,         \
                        ORVAN_SITE("ProcessSoftwareLUTImpl", "ProcessSoftwareLUT_" #suffix));      \
    }
ORVAN_SAMPLE_LAYOUTS(ORVAN_DEFINE_LUT)
#undef ORVAN_DEFINE_LUT

IImage* ProcessSoftwareLUT_NoImpl(IImage* pImage, uint8_t*, size_t) {
    const char* name = pImage == nullptr
                           ? "UnknownPixelFormat"
                           : GetPixelFormatName(static_cast<PfncFormat>(pImage->GetPixelFormat()));
    ThrowLibraryError<GenICam::LogicalErrorException>(
        std::string("ProcessSoftwareLUT not implemented for ") + name,
        ORVAN_SITE("ProcessSoftwareLUTImpl", "ProcessSoftwareLUT_NoImpl"));
}

} // namespace ProcessSoftwareLUTImpl
} // namespace Orvan
