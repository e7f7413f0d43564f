#include <OrvanImageFile/ImageFile.h>

#include "PgmWriter.h"
#include "PngWriter.h"
#include "Raster.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace Orvan {
namespace ImageFile {

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

FilePtr Create(const std::string& path) {
    FilePtr file(std::fopen(path.c_str(), "wb"));
    if (!file)
        throw std::runtime_error(std::strerror(errno));
    return file;
}

// Closing is where buffered writes meet a full disk, so its result counts too.
void Finish(FilePtr file) {
    const bool failed = std::ferror(file.get()) != 0;
    if (std::fclose(file.release()) != 0 || failed)
        throw std::runtime_error(std::strerror(errno != 0 ? errno : EIO));
}

void WriteRaw(IImage& image, std::FILE* file) {
    const size_t bytes = PixelBytes(image);
    std::fwrite(image.GetData(), 1, bytes, file);
}

void SaveTo(IImage& image, const std::string& path, Format format) {
    // The raster is made before the file so that a refused format leaves no empty file behind.
    if (format == Format::Raw) {
        PixelBytes(image);
        FilePtr file = Create(path);
        WriteRaw(image, file.get());
        Finish(std::move(file));
        return;
    }
    const Raster raster = MakeRaster(image);
    if (format == Format::Pgm && raster.channels != 1)
        throw std::runtime_error("pixel format " + PixelFormatName(image) +
                                 " is not grey and PGM holds only grey images");
    FilePtr file = Create(path);
    if (format == Format::Png)
        WritePng(raster, file.get());
    else
        WritePgm(raster, file.get());
    Finish(std::move(file));
}

} // namespace

std::optional<Format> ParseFormat(const std::string& name) {
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (lower == "png")
        return Format::Png;
    if (lower == "pgm")
        return Format::Pgm;
    if (lower == "raw")
        return Format::Raw;
    return std::nullopt;
}

const char* Extension(Format format) {
    switch (format) {
    case Format::Png:
        return ".png";
    case Format::Pgm:
        return ".pgm";
    case Format::Raw:
        return ".raw";
    }
    return "";
}

void Save(const IImage& image, const std::string& path, Format format) {
    // The SDK's image accessors are not const only because they fill a cache on first use.
    IImage& readable = const_cast<IImage&>(image);
    try {
        SaveTo(readable, path, format);
    } catch (const std::exception& e) {
        throw std::runtime_error("cannot write " + path + ": " + e.what());
    }
}

} // namespace ImageFile
} // namespace Orvan
