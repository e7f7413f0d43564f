#include "SampleMapping.h"

#include "buffer/Image.h"

#include <cstring>

namespace Orvan {

size_t CountSamples(IImage& image, SampleStorage storage, const ErrorSite& site) {
    const size_t samples = image.GetWidth() * image.GetHeight() *
                           GetBitsPerPixel(image.GetPixelFormat()) / StorageBits(storage);
    if (image.GetData() == nullptr || image.GetSizeFilled() < StoredSize(samples, storage))
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            "Image data is shorter than its geometry", site);
    return samples;
}

IImage* NewImageLike(IImage& source, const std::vector<uint8_t>& pixels) {
    auto* block = new uint8_t[pixels.size()];
    std::memcpy(block, pixels.data(), pixels.size());
    auto* image = new Image();
    image->SetDataBlock(block);
    FillImageProps(image, pixels.size(), source.GetWidth(), source.GetHeight(),
                   source.GetPixelFormat());
    return image;
}

} // namespace Orvan
