#include "Raster.h"

#include <buffer/PFNCCustom.h>
#include <imageproc/Unpacking.h>

#include <Orvan/PixelFormat.h>

#include <stdexcept>

namespace Orvan {
namespace ImageFile {

namespace {

using Unpacker = void (*)(const uint8_t*, uint8_t*, size_t, size_t, size_t);

struct Layout {
    size_t channels;
    size_t bitDepth;
    size_t significantBits;
    bool blueFirst;
    Unpacker unpack; // null when the samples are stored whole
};

bool Describe(uint64_t format, Layout& layout) {
    switch (format) {
    case Mono8:
        layout = {1, 8, 8, false, nullptr};
        return true;
    case Mono10:
        layout = {1, 16, 10, false, nullptr};
        return true;
    case Mono12:
        layout = {1, 16, 12, false, nullptr};
        return true;
    case Mono14:
        layout = {1, 16, 14, false, nullptr};
        return true;
    case Mono16:
        layout = {1, 16, 16, false, nullptr};
        return true;
    case Mono10p:
        layout = {1, 16, 10, false, Unpacking::From10p};
        return true;
    case Mono12p:
        layout = {1, 16, 12, false, Unpacking::From12p};
        return true;
    case Mono10Packed:
        layout = {1, 16, 10, false, Unpacking::From10Packed};
        return true;
    case Mono12Packed:
        layout = {1, 16, 12, false, Unpacking::From12Packed};
        return true;
    case RGB8:
        layout = {3, 8, 8, false, nullptr};
        return true;
    case BGR8:
        layout = {3, 8, 8, true, nullptr};
        return true;
    case RGBa8:
        layout = {4, 8, 8, false, nullptr};
        return true;
    case BGRa8:
        layout = {4, 8, 8, true, nullptr};
        return true;
    default:
        return false;
    }
}

} // namespace

std::string PixelFormatName(IImage& image) {
    return GetPixelFormatName(static_cast<PfncFormat>(image.GetPixelFormat()));
}

size_t PixelBytes(IImage& image) {
    const size_t width = image.GetWidth();
    const size_t height = image.GetHeight();
    const size_t bits = image.GetBitsPerPixel();
    const size_t padding = image.GetPaddingX();
    // Packed formats run on across line ends unless lines are padded to whole bytes.
    const size_t rows = padding == 0 ? (width * height * bits + 7) / 8
                                     : ((width * bits + 7) / 8 + padding) * height;
    const size_t bytes = rows + image.GetPaddingY();
    if (image.GetSizeFilled() < bytes)
        throw std::runtime_error("the image holds " + std::to_string(image.GetSizeFilled()) +
                                 " bytes but its geometry needs " + std::to_string(bytes));
    return bytes;
}

Raster MakeRaster(IImage& image) {
    Layout layout;
    if (!Describe(image.GetPixelFormat(), layout))
        throw std::runtime_error("pixel format " + PixelFormatName(image) +
                                 " has no PNG or PGM form; save it as raw");
    PixelBytes(image);
    Raster raster;
    raster.width = image.GetWidth();
    raster.height = image.GetHeight();
    raster.channels = layout.channels;
    raster.bitDepth = layout.bitDepth;
    raster.significantBits = layout.significantBits;
    raster.blueFirst = layout.blueFirst;
    const size_t unpaddedRow = raster.width * raster.channels * raster.bitDepth / 8;
    if (layout.unpack == nullptr) {
        raster.rowStride = unpaddedRow + image.GetPaddingX();
        raster.pixels = image.GetData();
        return raster;
    }
    if (image.GetPaddingX() != 0)
        throw std::runtime_error("pixel format " + PixelFormatName(image) +
                                 " with line padding cannot be unpacked");
    raster.storage.resize(unpaddedRow * raster.height);
    layout.unpack(image.GetData(), raster.storage.data(), raster.width, raster.height, 1);
    raster.rowStride = unpaddedRow;
    raster.pixels = raster.storage.data();
    return raster;
}

} // namespace ImageFile
} // namespace Orvan
