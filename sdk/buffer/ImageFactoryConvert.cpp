#include <Orvan/ImageFactory.h>

#include "Image.h"
#include "ImageFactoryChecks.h"
#include "PFNCCustom.h"
#include "imageproc/PixelConversion.h"

namespace Orvan {

using namespace ImageFactoryChecks;

namespace {

struct FormatPair {
    const ConversionFormat* source;
    const ConversionFormat* target;
};

FormatPair CheckFormats(uint64_t source, uint64_t target, size_t width, const char* op) {
    const FormatPair pair{FindSourceFormat(source), FindTargetFormat(target)};
    if (pair.source == nullptr || pair.target == nullptr)
        Fail<GenICam::InvalidArgumentException>(
            std::string("Conversion from ") + FormatName(source) + " to " + FormatName(target) +
                " not supported (" + op + ")",
            "CheckFormats");
    if (!FitsGeometry(*pair.source, width))
        Fail<GenICam::InvalidArgumentException>(
            "Width " + std::to_string(width) + " is not a multiple of the " +
                std::to_string(pair.source->yuv.pixels) + " pixels of a " + FormatName(source) +
                " group (" + op + ")",
            "CheckFormats");
    return pair;
}

void CheckSameSize(IImage* pSource, IImage* pTarget, const char* op) {
    if (pSource->GetWidth() != pTarget->GetWidth() || pSource->GetHeight() != pTarget->GetHeight())
        Fail<GenICam::InvalidArgumentException>(
            "Target size " + std::to_string(pTarget->GetWidth()) + "x" +
                std::to_string(pTarget->GetHeight()) + " does not match source size " +
                std::to_string(pSource->GetWidth()) + "x" + std::to_string(pSource->GetHeight()) +
                " (" + op + ")",
            "CheckLen");
}

// The source's pixels, whose rows may each end in padding, once the block is known to hold them.
SourceBlock SourceOf(IImage* pSource, const ConversionFormat& format, const char* op) {
    const SourceBlock source{pSource->GetData(), pSource->GetSizeFilled(), pSource->GetWidth(),
                             pSource->GetHeight(), pSource->GetPaddingX()};
    const size_t expected = SourceBytes(format, source);
    if (pSource->GetSizeFilled() < expected)
        CheckLen(pSource->GetSizeFilled(), expected, op);
    return source;
}

} // namespace

IImage* ImageFactory::Convert(IImage* pSource, uint64_t targetFormat, DemosaicMethod method) {
    CheckSourceImage(pSource, "Convert");
    const FormatPair pair =
        CheckFormats(pSource->GetPixelFormat(), targetFormat, pSource->GetWidth(), "Convert");
    const SourceBlock source = SourceOf(pSource, *pair.source, "Convert");
    std::unique_ptr<Image> target = NewFactoryImage(source.width, source.height, targetFormat);
    ConvertPixels(source, *pair.source, const_cast<uint8_t*>(target->GetData()), *pair.target,
                  method);
    return target.release();
}

void ImageFactory::ConvertInto(IImage* pSource, IImage* pTarget, DemosaicMethod method) {
    CheckSourceImage(pSource, "ConvertInto");
    CheckParam(pTarget, "ConvertInto");
    auto* destination = const_cast<uint8_t*>(pTarget->GetData());
    CheckDestination(destination, "ConvertInto");
    CheckSameSize(pSource, pTarget, "ConvertInto");
    const size_t width = pSource->GetWidth(), height = pSource->GetHeight();
    const uint64_t targetFormat = pTarget->GetPixelFormat();
    const size_t expected = ExpectedSize(width, height, targetFormat);
    if (pTarget->GetSizeFilled() < expected)
        CheckLen(pTarget->GetSizeFilled(), expected, "ConvertInto");
    const FormatPair pair =
        CheckFormats(pSource->GetPixelFormat(), targetFormat, width, "ConvertInto");
    ConvertPixels(SourceOf(pSource, *pair.source, "ConvertInto"), *pair.source, destination,
                  *pair.target, method);
}

bool ImageFactory::IsConvertible(uint64_t sourceFormat, uint64_t targetFormat) {
    return FindSourceFormat(sourceFormat) != nullptr && FindTargetFormat(targetFormat) != nullptr;
}

std::vector<uint64_t> ImageFactory::GetConvertibleFormats(uint64_t sourceFormat) {
    if (FindSourceFormat(sourceFormat) == nullptr)
        return {};
    return TargetFormats();
}

} // namespace Orvan
