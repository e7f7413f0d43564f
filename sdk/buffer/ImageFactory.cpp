#include <Orvan/ImageFactory.h>

#include "CompressedImageExtendedChunk.h"
#include "ImageExtendedChunk.h"
#include "ImageFactoryChecks.h"
#include "PayloadType.h"
#include "core/ErrorTranslation.h"
#include "core/Orvan.h"

#include <Orvan/PixelFormat.h>

#include <cstring>
#include <memory>
#include <string>

namespace Orvan {

using namespace ImageFactoryChecks;

namespace {

// The checks shared by every operation that takes caller pixels.
size_t CheckPixels(const uint8_t* data, size_t size, size_t width, size_t height,
                   uint64_t pixelFormat, const char* op) {
    CheckInit(op);
    CheckParam(data, op);
    CheckParam(size, op);
    CheckParam(width, op);
    CheckParam(height, op);
    const size_t expected = ExpectedSize(width, height, pixelFormat);
    CheckLen(size, expected, op);
    return expected;
}

std::unique_ptr<Image> NewImage(size_t length, size_t width, size_t height, uint64_t pixelFormat) {
    auto image = std::make_unique<Image>();
    FillImageProps(image.get(), length, width, height, pixelFormat);
    return image;
}

IImage* NewOwningImage(std::unique_ptr<uint8_t[]> block, size_t length, size_t width, size_t height,
                       uint64_t pixelFormat) {
    std::unique_ptr<Image> image = NewImage(length, width, height, pixelFormat);
    image->AdoptDataBlock(std::move(block));
    return image.release();
}

// The checks before a destroy frees anything, in order.
void CheckDestroyable(IBuffer* pImage, Buffer* pBuffer, const char* function,
                      const char* notFromFactory) {
    if (!HasImageFactoryInit())
        Fail<GenICam::RuntimeException>(kNeverInitialized, function);
    if (pImage == nullptr)
        Fail<GenICam::InvalidArgumentException>("Image is null", function);
    if (pBuffer == nullptr)
        Fail<GenICam::InvalidArgumentException>("Image not made by the library", function);
    if (pBuffer->GetStream() != nullptr || pBuffer->GetBufferHandle() != nullptr)
        Fail<GenICam::InvalidArgumentException>(notFromFactory, function);
}

} // namespace

IImage* ImageFactory::Create(const uint8_t* data, size_t size, size_t width, size_t height,
                             uint64_t pixelFormat) {
    const size_t expected = CheckPixels(data, size, width, height, pixelFormat, "Create");
    auto block = std::make_unique<uint8_t[]>(expected);
    std::memcpy(block.get(), data, expected);
    return NewOwningImage(std::move(block), size, width, height, pixelFormat);
}

IImage* ImageFactory::CreateEmpty(size_t size, size_t width, size_t height, uint64_t pixelFormat) {
    CheckInit("CreateEmpty");
    CheckParam(size, "CreateEmpty");
    CheckParam(width, "CreateEmpty");
    CheckParam(height, "CreateEmpty");
    const size_t expected = ExpectedSize(width, height, pixelFormat);
    CheckLen(size, expected, "CreateEmpty");
    return NewOwningImage(std::make_unique<uint8_t[]>(expected), expected, width, height,
                          pixelFormat);
}

IImage* ImageFactory::Shallow(const uint8_t* data, size_t size, size_t width, size_t height,
                              uint64_t pixelFormat) {
    CheckPixels(data, size, width, height, pixelFormat, "Shallow");
    std::unique_ptr<Image> image = NewImage(size, width, height, pixelFormat);
    image->SetCallerDataBlock(const_cast<uint8_t*>(data));
    return image.release();
}

IImage* ImageFactory::Copy(IImage* pImage) {
    CheckInit("Copy");
    CheckParam(pImage, "Copy");
    const size_t payloadType = pImage->GetPayloadType();
    if (payloadType == PayloadType::kImage) {
        if (auto* source = dynamic_cast<Image*>(pImage))
            return new Image(source);
    } else if (payloadType == PayloadType::kImageWithChunks) {
        if (auto* source = dynamic_cast<ImageExtendedChunk*>(pImage))
            return new ImageExtendedChunk(source);
    }
    Fail<GenICam::InvalidArgumentException>("Unknown payload type", "Copy");
}

ICompressedImage* ImageFactory::CopyCompressedImage(ICompressedImage* pImage) {
    CheckInit("CopyCompressedImage");
    CheckParam(pImage, "CopyCompressedImage");
    const size_t payloadType = pImage->GetPayloadType();
    if (payloadType == PayloadType::kCompressedImage) {
        if (auto* source = dynamic_cast<CompressedImage*>(pImage))
            return new CompressedImage(source);
    } else if (payloadType == PayloadType::kCompressedImageWithChunks) {
        if (auto* source = dynamic_cast<CompressedImageExtendedChunk*>(pImage))
            return new CompressedImageExtendedChunk(source);
    }
    Fail<GenICam::InvalidArgumentException>("Unknown payload type", "CopyCompressedImage");
}

// An image frees the pixel block it owns itself; a shallow image owns none.
void ImageFactory::Destroy(IImage* pImage) {
    CheckDestroyable(pImage, dynamic_cast<Buffer*>(pImage), "Destroy",
                     "Failure destroying image because image not from factory (probably due to "
                     "image being from device)");
    switch (pImage->GetPayloadType()) {
    case PayloadType::kImage:
    case PayloadType::kImageWithChunks:
        delete pImage;
        return;
    case PayloadType::kChunkOnly:
        Fail<GenICam::InvalidArgumentException>("Chunk data destroy not implemented", "Destroy");
    default:
        Fail<GenICam::InvalidArgumentException>("Unknown payload type", "Destroy");
    }
}

void ImageFactory::DestroyCompressedImage(ICompressedImage* pImage) {
    CheckDestroyable(pImage, dynamic_cast<Buffer*>(pImage), "DestroyCompressedImage",
                     "Failure destroying compressed image because compressed image not from "
                     "factory (probably due to compressed image being from device)");
    switch (pImage->GetPayloadType()) {
    case PayloadType::kCompressedImage:
    case PayloadType::kCompressedImageWithChunks:
        delete pImage;
        return;
    default:
        Fail<GenICam::InvalidArgumentException>("Unknown payload type", "DestroyCompressedImage");
    }
}

} // namespace Orvan
