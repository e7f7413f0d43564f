#include "ImageSaver.h"

#include "ToolError.h"

#include <cstdio>
#include <stdexcept>
#include <system_error>

namespace Orvan {
namespace Cli {

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
    try {
        ImageFile::Save(image, (m_directory / name).string(), m_format);
    } catch (const std::runtime_error& e) {
        throw ToolError(e.what());
    }
}

} // namespace Cli
} // namespace Orvan
