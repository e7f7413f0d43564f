#include "SampleMapping.h"

#include "buffer/Image.h"

#include <cstring>
#include <memory>

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
    auto image = std::make_unique<Image>();
    FillImageProps(image.get(), pixels.size(), source.GetWidth(), source.GetHeight(),
                   source.GetPixelFormat());
    std::unique_ptr<uint8_t[]> block(new uint8_t[pixels.size()]);
    std::memcpy(block.get(), pixels.data(), pixels.size());
    image->AdoptDataBlock(std::move(block));
    return image.release();
}

} // namespace Orvan
