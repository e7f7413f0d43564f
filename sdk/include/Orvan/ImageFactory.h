// Images that do not come from a device: made from the caller's pixels, empty, as views on
// caller memory, or as copies of delivered images. Every operation works between OpenSystem and
// CloseSystem; every image returned is the caller's until the matching destroy operation.
#ifndef ORVAN_IMAGEFACTORY_H
#define ORVAN_IMAGEFACTORY_H

#include <Orvan/ICompressedImage.h>
#include <Orvan/IImage.h>

namespace Orvan {

class ImageFactory {
public:
    ImageFactory() = delete;

    // A new image owning a copy of `size` bytes of pixels; size must be exactly
    // width x height x bits per pixel / 8.
    static IImage* Create(const uint8_t* data, size_t size, size_t width, size_t height,
                          uint64_t pixelFormat);
    // A new image owning a zeroed pixel block of that size.
    static IImage* CreateEmpty(size_t size, size_t width, size_t height, uint64_t pixelFormat);
    // A new image over the caller's pixels, which must outlive it; nothing is copied.
    static IImage* Shallow(const uint8_t* data, size_t size, size_t width, size_t height,
                           uint64_t pixelFormat);
    // A detached copy of a delivered or factory image, with its own pixels and properties.
    static IImage* Copy(IImage* pImage);
    static ICompressedImage* CopyCompressedImage(ICompressedImage* pImage);
    // Releases a factory image; device images are refused (they go back by RequeueBuffer).
    static void Destroy(IImage* pImage);
    static void DestroyCompressedImage(ICompressedImage* pImage);
};

} // namespace Orvan

#endif
