// A buffer that holds one image.
#ifndef ORVAN_IIMAGE_H
#define ORVAN_IIMAGE_H

#include <Orvan/IBuffer.h>

namespace Orvan {

class IImage : public IBuffer {
public:
    virtual size_t GetWidth() = 0;
    virtual size_t GetHeight() = 0;
    virtual size_t GetOffsetX() = 0;
    virtual size_t GetOffsetY() = 0;
    virtual size_t GetPaddingX() = 0;
    virtual size_t GetPaddingY() = 0;
    virtual uint64_t GetPixelFormat() = 0;
    virtual size_t GetBitsPerPixel() = 0;
    virtual size_t GetPixelEndianness() = 0;
    virtual uint64_t GetTimestamp() = 0;
    virtual uint64_t GetTimestampNs() = 0;
};

} // namespace Orvan

#endif
