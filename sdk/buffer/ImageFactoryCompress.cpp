#include <Orvan/ImageFactory.h>

#include "CompressedImage.h"
#include "Image.h"
#include "ImageFactoryChecks.h"
#include "PFNCCustom.h"
#include "imageproc/QoiCodec.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace Orvan {

using namespace ImageFactoryChecks;

namespace {

struct QoiForm {
    uint64_t compressed;
    uint64_t plain;
    uint32_t channels;
};

// Mono and Bayer mosaics travel as one channel, the three-sample formats as three, byte for
// byte: the codec never reorders or converts samples.
const QoiForm kQoiForms[] = {
    {QOI_Mono8, Mono8, 1},       {QOI_BayerGR8, BayerGR8, 1}, {QOI_BayerRG8, BayerRG8, 1},
    {QOI_BayerGB8, BayerGB8, 1}, {QOI_BayerBG8, BayerBG8, 1}, {QOI_RGB8, RGB8, 3},
    {QOI_BGR8, BGR8, 3},         {QOI_YCbCr8, YCbCr8, 3},     {QOI_YCbCr8_CbYCr, YCbCr8_CbYCr, 3},
};

const QoiForm* FindQoiForm(uint64_t compressed) {
    const auto found = std::find_if(std::begin(kQoiForms), std::end(kQoiForms),
                                    [&](const QoiForm& f) { return f.compressed == compressed; });
    return found == std::end(kQoiForms) ? nullptr : found;
}

} // namespace

ICompressedImage* ImageFactory::Compress(IImage* pSource, uint64_t compressedFormat) {
    CheckSourceImage(pSource, "Compress");
    const QoiForm* form = FindQoiForm(compressedFormat);
    const uint64_t sourceFormat = pSource->GetPixelFormat();
    if (form == nullptr || form->plain != sourceFormat)
        Fail<GenICam::InvalidArgumentException>(
            std::string("Compression of ") + FormatName(sourceFormat) + " to " +
                FormatName(compressedFormat) + " not supported (Compress)",
            "Compress");
    const size_t width = pSource->GetWidth(), height = pSource->GetHeight();
    const std::vector<uint8_t> stream =
        width > UINT32_MAX || height > UINT32_MAX
            ? std::vector<uint8_t>()
            : EncodeQoi(pSource->GetData(), uint32_t(width), uint32_t(height), form->channels);
    if (stream.empty())
        Fail<GenICam::InvalidArgumentException>("Image of " + std::to_string(width) + "x" +
                                                    std::to_string(height) +
                                                    " pixels is too large to compress (Compress)",
                                                "Compress");
    auto image = std::make_unique<CompressedImage>();
    FillCompressedImageProps(image.get(), stream.size(), compressedFormat);
    auto block = std::make_unique<uint8_t[]>(stream.size());
    std::memcpy(block.get(), stream.data(), stream.size());
    image->AdoptDataBlock(std::move(block));
    return image.release();
}

IImage* ImageFactory::Decompress(ICompressedImage* pSource) {
    CheckInit("Decompress");
    CheckParam(pSource, "Decompress");
    CheckParam(pSource->GetData(), "Decompress");
    const uint64_t format = pSource->GetPixelFormat();
    const QoiForm* form = FindQoiForm(format);
    if (form == nullptr)
        Fail<GenICam::InvalidArgumentException>(
            std::string("Decompression of ") + FormatName(format) + " not supported (Decompress)",
            "Decompress");
    std::vector<uint8_t> pixels;
    uint32_t width = 0, height = 0;
    if (!DecodeQoiAs(pSource->GetData(), pSource->GetSizeFilled(), form->channels, pixels, width,
                     height) ||
        width == 0 || height == 0)
        Fail<GenICam::InvalidArgumentException>(
            std::string("Compressed data is corrupt or truncated: not a complete ") +
                FormatName(format) + " stream (Decompress)",
            "Decompress");
    std::unique_ptr<Image> image = NewFactoryImage(width, height, form->plain);
    std::memcpy(const_cast<uint8_t*>(image->GetData()), pixels.data(), pixels.size());
    return image.release();
}

} // namespace Orvan
