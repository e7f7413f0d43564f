// Writes streamed images into a directory, one file per image, named by the camera's frame ID
// so that gaps in the numbering show lost frames. A PNG of a colour format it cannot hold as it
// is (a Bayer mosaic, YUV, RGB deeper than 8 bits) gets the image converted to RGB8 first.
#ifndef ORVAN_TOOLS_ORVAN_IMAGESAVER_H
#define ORVAN_TOOLS_ORVAN_IMAGESAVER_H

#include <Orvan/IImage.h>
#include <OrvanImageFile/ImageFile.h>

#include <filesystem>
#include <string>

namespace Orvan {
namespace Cli {

class ImageSaver {
public:
    // Creates the directory when it does not exist yet.
    ImageSaver(const std::string& directory, ImageFile::Format format);
    void Save(IImage& image);

private:
    std::filesystem::path m_directory;
    ImageFile::Format m_format;
};

} // namespace Cli
} // namespace Orvan

#endif
