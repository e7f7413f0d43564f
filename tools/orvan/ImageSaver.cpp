#include "ImageSaver.h"

#include "ToolError.h"

#include <Orvan/ImageFactory.h>
#include <Orvan/PixelFormat.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace Orvan {
namespace Cli {

namespace {

// The formats a PNG file holds without conversion.
bool PngHolds(uint64_t format) {
    static const uint64_t kFormats[] = {Mono8,   Mono10,  Mono12,       Mono14,       Mono16,
                                        Mono10p, Mono12p, Mono10Packed, Mono12Packed, RGB8,
                                        BGR8,    RGBa8,   BGRa8};
    return std::find(std::begin(kFormats), std::end(kFormats), format) != std::end(kFormats);
}

struct FactoryImageDeleter {
    void operator()(IImage* image) const { ImageFactory::Destroy(image); }
};

} // namespace

ImageSaver::ImageSaver(const std::string& directory, ImageFile::Format format)
    : m_directory(directory), m_format(format) {
    std::error_code error;
    std::filesystem::create_directories(m_directory, error);
    if (error || !std::filesystem::is_directory(m_directory))
        throw ToolError("cannot create directory '" + directory + "'");
}

void ImageSaver::Save(IImage& image) {
    char name[64];
    std::snprintf(name, sizeof name, "frame-%06llu%s",
                  static_cast<unsigned long long>(image.GetFrameId()),
                  ImageFile::Extension(m_format));
    std::unique_ptr<IImage, FactoryImageDeleter> converted;
    if (m_format == ImageFile::Format::Png && !PngHolds(image.GetPixelFormat()) &&
        ImageFactory::IsConvertible(image.GetPixelFormat(), RGB8))
        converted.reset(ImageFactory::Convert(&image, RGB8));
    try {
        ImageFile::Save(converted ? *converted : image, (m_directory / name).string(), m_format);
    } catch (const std::runtime_error& e) {
        throw ToolError(e.what());
    }
}

} // namespace Cli
} // namespace Orvan
