// A compressed image buffer: the buffer's cache plus the format and time stamp of the image it
// carries.
#ifndef ORVAN_BUFFER_COMPRESSEDIMAGE_H
#define ORVAN_BUFFER_COMPRESSEDIMAGE_H

#include "Buffer.h"

#include <Orvan/ICompressedImage.h>

namespace Orvan {

class CompressedImage : public ICompressedImage, public virtual Buffer {
public:
    CompressedImage();
    CompressedImage(TLDataStream* pStream, void* hBuffer);
    explicit CompressedImage(CompressedImage* pSource);
    ~CompressedImage() override;

    ORVAN_FORWARD_IBUFFER(Buffer)
    bool VerifyCRC() override;

    uint64_t GetPixelFormat() override;
    uint64_t GetTimestamp() override;
    uint64_t GetTimestampNs() override;
    virtual size_t GetNumChannels();

private:
    friend void FillCompressedImageProps(CompressedImage* pImage, size_t length,
                                         uint64_t pixelFormat);
    std::unique_ptr<uint64_t> m_pixelFormat;
    std::unique_ptr<uint64_t> m_timestampNs;
};

// Sets every property of a factory-made compressed image: the sizes to `length`, the format,
// payload type compressed image, time stamp zero.
void FillCompressedImageProps(CompressedImage* pImage, size_t length, uint64_t pixelFormat);

} // namespace Orvan

#endif
