#include <Orvan/ImageFactory.h>

#include "Image.h"
#include "ImageFactoryChecks.h"
#include "PFNCCustom.h"
#include "imageproc/Deinterleaving.h"

#include <algorithm>
#include <cstring>

namespace Orvan {

using namespace ImageFactoryChecks;

std::vector<IImage*> ImageFactory::Deinterleave(IImage* pSource) {
    CheckSourceImage(pSource, "Deinterleave");
    const uint64_t format = pSource->GetPixelFormat();
    const char* name = GetPixelFormatName(static_cast<PfncFormat>(format));
    const InterleavedFormat* interleaved = FindInterleavedFormat(format);
    if (interleaved == nullptr)
        Fail<GenICam::InvalidArgumentException>(std::string("Deinterleave not supported for ") +
                                                    name + " (Deinterleave)",
                                                "Deinterleave");
    const size_t width = pSource->GetWidth(), height = pSource->GetHeight();
    const size_t count = interleaved->channels.size();
    if (!interleaved->channelPerPixel && width % count != 0)
        Fail<GenICam::InvalidArgumentException>(
            "Width " + std::to_string(width) + " is not a multiple of the " +
                std::to_string(count) + " taps of " + name + " (Deinterleave)",
            "Deinterleave");
    std::vector<std::unique_ptr<Image>> images;
    for (const ChannelPlane& plane : Orvan::Deinterleave(
             pSource->GetData(), pSource->GetSizeFilled(), width, height, *interleaved)) {
        images.push_back(NewFactoryImage(plane.width, height, plane.format));
        Image& image = *images.back();
        std::memcpy(const_cast<uint8_t*>(image.GetData()), plane.pixels.data(),
                    std::min(plane.pixels.size(), image.GetSizeFilled()));
    }
    std::vector<IImage*> result;
    for (std::unique_ptr<Image>& image : images)
        result.push_back(image.release());
    return result;
}

} // namespace Orvan
