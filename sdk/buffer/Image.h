// An image buffer: the buffer's cache plus the image's own properties.
#ifndef ORVAN_BUFFER_IMAGE_H
#define ORVAN_BUFFER_IMAGE_H

#include "Buffer.h"

#include <Orvan/IImage.h>

namespace Orvan {

class Image : public IImage, public virtual Buffer {
public:
    Image();
    Image(TLDataStream* pStream, void* hBuffer);
    // A detached copy: buffer part and every image property, through the source's accessors.
    explicit Image(Image* pSource);
    ~Image() override;

    ORVAN_FORWARD_IBUFFER(Buffer)
    bool VerifyCRC() override;

    size_t GetWidth() override;
    size_t GetHeight() override;
    size_t GetOffsetX() override;
    size_t GetOffsetY() override;
    size_t GetPaddingX() override;
    size_t GetPaddingY() override;
    uint64_t GetPixelFormat() override;
    size_t GetBitsPerPixel() override;
    size_t GetPixelEndianness() override;
    uint64_t GetTimestamp() override;
    uint64_t GetTimestampNs() override;
    virtual size_t GetNumChannels();
    virtual size_t GetBitsPerChannel();
    virtual size_t GetBytesPerStep();
    virtual size_t GetPixelsPerStep();

private:
    template <class T>
    T Cached(std::unique_ptr<T>& cell, int32_t command);

    friend void FillImageProps(Image* pImage, size_t length, size_t width, size_t height,
                               uint64_t pixelFormat);

    std::unique_ptr<size_t> m_width;
    std::unique_ptr<size_t> m_height;
    std::unique_ptr<size_t> m_offsetX;
    std::unique_ptr<size_t> m_offsetY;
    std::unique_ptr<size_t> m_paddingX;
    std::unique_ptr<size_t> m_paddingY;
    std::unique_ptr<uint64_t> m_pixelFormat;
    std::unique_ptr<uint64_t> m_timestampNs;
    std::unique_ptr<size_t> m_pixelEndianness;
};

// Sets every property of a factory image at once: the three sizes to `length`, geometry and
// format as given, the rest to zero or false, payload type image, image data present.
void FillImageProps(Image* pImage, size_t length, size_t width, size_t height,
                    uint64_t pixelFormat);

// A factory image owning a zeroed block of width x height x bits per pixel / 8 bytes.
std::unique_ptr<Image> NewFactoryImage(size_t width, size_t height, uint64_t pixelFormat);

} // namespace Orvan

#endif
