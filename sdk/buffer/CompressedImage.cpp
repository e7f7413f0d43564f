#include "CompressedImage.h"

#include "PayloadType.h"
#include "PropertyCell.h"
#include "core/ErrorTranslation.h"

#include <Orvan/PixelFormat.h>

namespace Orvan {

CompressedImage::CompressedImage() = default;

CompressedImage::CompressedImage(TLDataStream* pStream, void* hBuffer) : Buffer(pStream, hBuffer) {}

CompressedImage::CompressedImage(CompressedImage* pSource)
    : Buffer(pSource), m_pixelFormat(MakeCell(pSource->GetPixelFormat())),
      m_timestampNs(MakeCell(pSource->GetTimestampNs())) {}

CompressedImage::~CompressedImage() = default;

bool CompressedImage::VerifyCRC() {
    ThrowLibraryError<GenICam::LogicalErrorException>(
        "Chunk data was not enabled before grabbing CompressedImage",
        ORVAN_SITE("CompressedImage", "VerifyCRC"));
}

uint64_t CompressedImage::GetPixelFormat() {
    return CachedInfo(m_pixelFormat, GetStream(), GetBufferHandle(),
                      GenTL::BUFFER_INFO_PIXELFORMAT);
}

uint64_t CompressedImage::GetTimestamp() {
    return GetTimestampNs();
}

uint64_t CompressedImage::GetTimestampNs() {
    return CachedInfo(m_timestampNs, GetStream(), GetBufferHandle(),
                      GenTL::BUFFER_INFO_TIMESTAMP_NS);
}

size_t CompressedImage::GetNumChannels() {
    return Orvan::GetNumChannels(GetPixelFormat());
}

void FillCompressedImageProps(CompressedImage* pImage, size_t length, uint64_t pixelFormat) {
    pImage->FillBufferProps(length, PayloadType::kCompressedImage);
    pImage->m_pixelFormat = MakeCell(pixelFormat);
    pImage->m_timestampNs = MakeCell(uint64_t{0});
}

} // namespace Orvan
