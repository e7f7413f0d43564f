#include "PixelFormat.h"

#include "PFNCCustom.h"

#include <stdexcept>
#include <string>

namespace Orvan {

size_t GetBitsPerPixel(uint64_t pixelFormat) {
    return (pixelFormat >> 16) & 0xFF;
}

IImplementation* GetPixelFormat(PfncFormat pixelFormat) {
    switch (pixelFormat) {
#define ORVAN_TRAITS_CASE(name, selectLayout, lutLayout)                                           \
    case name:                                                                                     \
        return new PF##name;
        ORVAN_PF_TRAITS(ORVAN_TRAITS_CASE)
#undef ORVAN_TRAITS_CASE
    default:
        throw std::logic_error("pixel format " +
                               std::to_string(static_cast<uint32_t>(pixelFormat)) + ", " +
                               GetPixelFormatName(pixelFormat) + " not implemented");
    }
}

void DestroyPixelFormat(IImplementation* pImplementation) {
    delete pImplementation;
}

} // namespace Orvan
