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
    std::unique_ptr<uint64_t> m_pixelFormat;
    std::unique_ptr<uint64_t> m_timestampNs;
};

} // namespace Orvan

#endif
