#include "ImageFactoryChecks.h"

#include "PFNCCustom.h"
#include "core/Orvan.h"

#include <Orvan/PixelFormat.h>

namespace Orvan {
namespace ImageFactoryChecks {

const char* const kNeverInitialized =
    "Orvan SDK never initialized, open system (Orvan::OpenSystem) to initialize";

void CheckInit(const char* op) {
    if (!HasImageFactoryInit())
        Fail<GenICam::RuntimeException>(std::string(kNeverInitialized) + " (" + op + ")",
                                        "CheckInit");
}

void CheckParam(const uint8_t* data, const char* op) {
    if (data == nullptr)
        Fail<GenICam::InvalidArgumentException>(std::string("Data is null (") + op + ")",
                                                "CheckParam");
}

void CheckParam(uint64_t value, const char* op) {
    if (value == 0)
        Fail<GenICam::InvalidArgumentException>(std::string("Param is 0 (") + op + ")",
                                                "CheckParam");
}

void CheckParam(IBuffer* pImage, const char* op) {
    if (pImage == nullptr)
        Fail<GenICam::InvalidArgumentException>(std::string("Image is null (") + op + ")",
                                                "CheckParam");
}

void CheckDestination(uint8_t* destination, const char* op) {
    if (destination == nullptr)
        Fail<GenICam::InvalidArgumentException>(std::string("Ddata is null (") + op + ")",
                                                "CheckParam");
}

void CheckLen(size_t length, size_t expected, const char* op) {
    if (length != expected)
        Fail<GenICam::InvalidArgumentException>("Buffer length " + std::to_string(length) +
                                                    " does not match expected " +
                                                    std::to_string(expected) + " (" + op + ")",
                                                "CheckLen");
}

size_t ExpectedSize(size_t width, size_t height, uint64_t pixelFormat) {
    return width * height * GetBitsPerPixel(pixelFormat) >> 3;
}

const char* FormatName(uint64_t pixelFormat) {
    return GetPixelFormatName(static_cast<PfncFormat>(pixelFormat));
}

size_t CheckSourceImage(IImage* pImage, const char* op) {
    CheckInit(op);
    CheckParam(pImage, op);
    CheckParam(pImage->GetData(), op);
    CheckParam(pImage->GetWidth(), op);
    CheckParam(pImage->GetHeight(), op);
    const size_t expected =
        ExpectedSize(pImage->GetWidth(), pImage->GetHeight(), pImage->GetPixelFormat());
    // A delivered image may carry chunk data or padding after its pixels.
    if (pImage->GetSizeFilled() < expected)
        CheckLen(pImage->GetSizeFilled(), expected, op);
    return expected;
}

} // namespace ImageFactoryChecks
} // namespace Orvan
