#include "Image.h"

#include "PropertyCell.h"
#include "core/ErrorTranslation.h"

#include <Orvan/PixelFormat.h>

namespace Orvan {

Image::Image() = default;

Image::Image(TLDataStream* pStream, void* hBuffer) : Buffer(pStream, hBuffer) {}

Image::Image(Image* pSource)
    : Buffer(pSource), m_width(MakeCell(pSource->GetWidth())),
      m_height(MakeCell(pSource->GetHeight())), m_offsetX(MakeCell(pSource->GetOffsetX())),
      m_offsetY(MakeCell(pSource->GetOffsetY())), m_paddingX(MakeCell(pSource->GetPaddingX())),
      m_paddingY(MakeCell(pSource->GetPaddingY())),
      m_pixelFormat(MakeCell(pSource->GetPixelFormat())),
      m_timestampNs(MakeCell(pSource->GetTimestampNs())),
      m_pixelEndianness(MakeCell(pSource->GetPixelEndianness())) {}

Image::~Image() = default;

template <class T>
T Image::Cached(std::unique_ptr<T>& cell, int32_t command) {
    return CachedInfo(cell, GetStream(), GetBufferHandle(), command);
}

bool Image::VerifyCRC() {
    ThrowLibraryError<GenICam::LogicalErrorException>(
        "Chunk data was not enabled before grabbing Image", ORVAN_SITE("Image", "VerifyCRC"));
}

size_t Image::GetWidth() {
    return Cached(m_width, GenTL::BUFFER_INFO_WIDTH);
}
size_t Image::GetHeight() {
    return Cached(m_height, GenTL::BUFFER_INFO_HEIGHT);
}
size_t Image::GetOffsetX() {
    return Cached(m_offsetX, GenTL::BUFFER_INFO_XOFFSET);
}
size_t Image::GetOffsetY() {
    return Cached(m_offsetY, GenTL::BUFFER_INFO_YOFFSET);
}
size_t Image::GetPaddingX() {
    return Cached(m_paddingX, GenTL::BUFFER_INFO_XPADDING);
}
size_t Image::GetPaddingY() {
    return Cached(m_paddingY, GenTL::BUFFER_INFO_YPADDING);
}
uint64_t Image::GetPixelFormat() {
    return Cached(m_pixelFormat, GenTL::BUFFER_INFO_PIXELFORMAT);
}
size_t Image::GetBitsPerPixel() {
    return Orvan::GetBitsPerPixel(GetPixelFormat());
}

size_t Image::GetPixelEndianness() {
    return Cached(m_pixelEndianness, GenTL::BUFFER_INFO_PIXEL_ENDIANNESS);
}

uint64_t Image::GetTimestamp() {
    return GetTimestampNs();
}

uint64_t Image::GetTimestampNs() {
    return Cached(m_timestampNs, GenTL::BUFFER_INFO_TIMESTAMP_NS);
}

size_t Image::GetNumChannels() {
    return Orvan::GetNumChannels(GetPixelFormat());
}
size_t Image::GetBitsPerChannel() {
    return Orvan::GetBitsPerChannel(GetPixelFormat());
}
size_t Image::GetBytesPerStep() {
    return Orvan::GetBytesPerStep(GetPixelFormat());
}
size_t Image::GetPixelsPerStep() {
    return Orvan::GetPixelsPerStep(GetPixelFormat());
}

void FillImageProps(Image* pImage, size_t length, size_t width, size_t height,
                    uint64_t pixelFormat) {
    pImage->FillBufferProps(length);
    pImage->m_width = MakeCell(width);
    pImage->m_height = MakeCell(height);
    pImage->m_pixelFormat = MakeCell(pixelFormat);
    pImage->m_offsetX = MakeCell(size_t{0});
    pImage->m_offsetY = MakeCell(size_t{0});
    pImage->m_paddingX = MakeCell(size_t{0});
    pImage->m_paddingY = MakeCell(size_t{0});
    pImage->m_timestampNs = MakeCell(uint64_t{0});
    pImage->m_pixelEndianness = MakeCell(size_t{0});
}

std::unique_ptr<Image> NewFactoryImage(size_t width, size_t height, uint64_t pixelFormat) {
    const size_t length = width * height * Orvan::GetBitsPerPixel(pixelFormat) >> 3;
    auto image = std::make_unique<Image>();
    FillImageProps(image.get(), length, width, height, pixelFormat);
    image->AdoptDataBlock(std::make_unique<uint8_t[]>(length));
    return image;
}

} // namespace Orvan
