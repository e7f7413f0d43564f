#include <Orvan/ImageFactory.h>

#include "Image.h"
#include "ImageFactoryChecks.h"
#include "PFNCCustom.h"
#include "imageproc/ConversionFormat.h"

#include <Orvan/PixelFormat.h>

#include <memory>
#include <stdexcept>

namespace Orvan {

using namespace ImageFactoryChecks;

namespace {

const ConversionFormat& CheckWindow(uint64_t format, size_t lowestBit) {
    const ConversionFormat* source = FindSourceFormat(format);
    if (source == nullptr || source->family == ColourFamily::Yuv || source->layout.bits <= 8)
        Fail<GenICam::InvalidArgumentException>(std::string("SelectBits not supported for ") +
                                                    FormatName(format) + " (SelectBits)",
                                                "SelectBits");
    if (lowestBit + 8 > source->layout.bits)
        Fail<GenICam::InvalidArgumentException>(
            "Lowest bit " + std::to_string(lowestBit) + " leaves fewer than 8 of the " +
                std::to_string(source->layout.bits) + " bits of " + FormatName(format) +
                " (SelectBits)",
            "SelectBits");
    return *source;
}

struct TraitsDeleter {
    void operator()(IImplementation* traits) const { DestroyPixelFormat(traits); }
};

// The traits object of the image's format; a format without one is a caller's mistake here.
std::unique_ptr<IImplementation, TraitsDeleter> Traits(IImage* pImage, const char* op) {
    try {
        return std::unique_ptr<IImplementation, TraitsDeleter>(
            GetPixelFormat(static_cast<PfncFormat>(pImage->GetPixelFormat())));
    } catch (const std::logic_error& error) {
        Fail<GenICam::InvalidArgumentException>(std::string(error.what()) + " (" + op + ")", op);
    }
}

} // namespace

IImage* ImageFactory::SelectBits(IImage* pSource, size_t lowestBit) {
    CheckSourceImage(pSource, "SelectBits");
    const uint64_t format = pSource->GetPixelFormat();
    const ConversionFormat& source = CheckWindow(format, lowestBit);
    const size_t samples = pSource->GetWidth() * pSource->GetHeight() * source.channels;
    const std::vector<uint32_t> values =
        ReadSamples(pSource->GetData(), pSource->GetSizeFilled(), samples, source.layout);
    std::unique_ptr<Image> target =
        NewFactoryImage(pSource->GetWidth(), pSource->GetHeight(), EightBitCounterpart(source));
    auto* out = const_cast<uint8_t*>(target->GetData());
    for (size_t i = 0; i < samples; ++i)
        out[i] = static_cast<uint8_t>(values[i] >> lowestBit);
    return target.release();
}

IImage* ImageFactory::SelectBitsAndScale(IImage* pSource, size_t bits, double scale) {
    CheckSourceImage(pSource, "SelectBitsAndScale");
    return Traits(pSource, "SelectBitsAndScale")->SelectBitsAndScale(pSource, bits, scale);
}

IImage* ImageFactory::ProcessSoftwareLUT(IImage* pSource, uint8_t* pLUT, size_t lutSize) {
    CheckSourceImage(pSource, "ProcessSoftwareLUT");
    CheckParam(pLUT, "ProcessSoftwareLUT");
    CheckParam(lutSize, "ProcessSoftwareLUT");
    return Traits(pSource, "ProcessSoftwareLUT")->ProcessSoftwareLUT(pSource, pLUT, lutSize);
}

} // namespace Orvan
