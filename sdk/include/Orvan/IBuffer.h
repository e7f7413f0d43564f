// A buffer handed to the application: delivered by a stream or made by the image factory.
#ifndef ORVAN_IBUFFER_H
#define ORVAN_IBUFFER_H

#include <cstddef>
#include <cstdint>

namespace Orvan {

class IImage;
class IChunkData;
class ICompressedImage;

class IBuffer {
public:
    virtual const uint8_t* GetData() = 0;
    virtual size_t GetSizeFilled() = 0;
    virtual size_t GetPayloadSize() = 0;
    virtual size_t GetSizeOfBuffer() = 0;
    virtual uint64_t GetFrameId() = 0;
    virtual size_t GetPayloadType() = 0;
    virtual bool HasImageData() = 0;
    virtual bool HasChunkData() = 0;
    virtual bool IsCompressedImage() = 0;
    // Run-time checked views of this object; null when it is not of that kind.
    virtual IImage* AsImage() = 0;
    virtual IChunkData* AsChunkData() = 0;
    virtual ICompressedImage* AsCompressedImage() = 0;
    virtual bool IsIncomplete() = 0;
    virtual bool DataLargerThanBuffer() = 0;
    virtual bool VerifyCRC() = 0;
    virtual ~IBuffer() = default;
};

} // namespace Orvan

#endif
