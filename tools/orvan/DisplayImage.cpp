#include "DisplayImage.h"

#include "ToolError.h"

#include <Orvan/ImageFactory.h>
#include <Orvan/PixelFormat.h>

#include <cstdio>
#include <unordered_map>

namespace Orvan {
namespace Cli {

namespace {

uint64_t DisplayFormat(uint64_t source) {
    if (PixelFormatName(source).rfind("Mono", 0) == 0)
        return Mono8;
    for (uint64_t target : {RGB8, Mono8})
        if (ImageFactory::IsConvertible(source, target))
            return target;
    throw ToolError("images in " + PixelFormatName(source) + " cannot be shown");
}

} // namespace

std::string PixelFormatName(uint64_t pixelFormat) {
    static const std::unordered_map<uint64_t, const char*> names = {
#define ORVAN_VIEW_NAME(name, code) {code, #name},
        ORVAN_PFNC_STANDARD_FORMATS(ORVAN_VIEW_NAME) ORVAN_PFNC_VENDOR_FORMATS(ORVAN_VIEW_NAME)
#undef ORVAN_VIEW_NAME
    };
    const auto found = names.find(pixelFormat);
    if (found != names.end())
        return found->second;
    char hex[24];
    std::snprintf(hex, sizeof hex, "0x%08llx", static_cast<unsigned long long>(pixelFormat));
    return hex;
}

void DisplayImage::Destroy::operator()(IImage* image) const {
    ImageFactory::Destroy(image);
}

IImage& DisplayImage::From(const RawFrame& frame) {
    const uint64_t target = DisplayFormat(frame.pixelFormat);
    m_source.reset(ImageFactory::Shallow(frame.pixels.data(), frame.pixels.size(), frame.width,
                                         frame.height, frame.pixelFormat));
    if (frame.pixelFormat == target)
        return *m_source;
    if (!m_target || m_target->GetPixelFormat() != target || m_target->GetWidth() != frame.width ||
        m_target->GetHeight() != frame.height) {
        const size_t bytes = frame.width * frame.height * (target == Mono8 ? 1 : 3);
        m_target.reset(ImageFactory::CreateEmpty(bytes, frame.width, frame.height, target));
    }
    ImageFactory::ConvertInto(m_source.get(), m_target.get());
    return *m_target;
}

int DisplayImage::Channels(IImage& image) {
    return image.GetPixelFormat() == Mono8 ? 1 : 3;
}

} // namespace Cli
} // namespace Orvan
