// A buffer that holds one compressed image.
#ifndef ORVAN_ICOMPRESSEDIMAGE_H
#define ORVAN_ICOMPRESSEDIMAGE_H

#include <Orvan/IBuffer.h>

namespace Orvan {

class ICompressedImage : public IBuffer {
public:
    virtual uint64_t GetPixelFormat() = 0;
    virtual uint64_t GetTimestamp() = 0;
    virtual uint64_t GetTimestampNs() = 0;
};

} // namespace Orvan

#endif
