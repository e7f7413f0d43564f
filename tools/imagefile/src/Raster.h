// An image reduced to what an image file format needs: rows of 8- or 16-bit samples with one,
// three or four channels. Formats whose samples are packed are unpacked into storage the raster
// owns; every other format is read in place.
#ifndef ORVAN_IMAGEFILE_RASTER_H
#define ORVAN_IMAGEFILE_RASTER_H

#include <Orvan/IImage.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Orvan {
namespace ImageFile {

struct Raster {
    size_t width = 0;
    size_t height = 0;
    size_t channels = 0;        // 1 grey, 3 colour, 4 colour with a fourth sample
    size_t bitDepth = 0;        // 8 or 16; 16-bit samples are little-endian
    size_t significantBits = 0; // bits of each sample that carry information
    bool blueFirst = false;     // BGR order instead of RGB
    size_t rowStride = 0;       // bytes from one row to the next
    const uint8_t* pixels = nullptr;
    std::vector<uint8_t> storage; // owns the pixels when they had to be unpacked

    const uint8_t* Row(size_t y) const { return pixels + y * rowStride; }
};

// The raster of the image, or a std::runtime_error naming the format when it has no layout
// that a PNG or PGM file can hold.
Raster MakeRaster(IImage& image);

// The name of the image's pixel format, for messages.
std::string PixelFormatName(IImage& image);

// Bytes the image's pixel rows take, line padding included; throws when the image holds fewer.
size_t PixelBytes(IImage& image);

} // namespace ImageFile
} // namespace Orvan

#endif
