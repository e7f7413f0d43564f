#include "PngWriter.h"

#include <png.h>

#include <stdexcept>
#include <string>

namespace Orvan {
namespace ImageFile {

namespace {

// libpng reports errors by a call that must not return. Jumping back to the setjmp point is the
// only exit libpng supports everywhere, so the text is parked here first.
void OnPngError(png_structp png, png_const_charp message) {
    *static_cast<std::string*>(png_get_error_ptr(png)) = message;
    png_longjmp(png, 1);
}

void OnPngWarning(png_structp, png_const_charp) {}

int ColourType(size_t channels) {
    switch (channels) {
    case 1:
        return PNG_COLOR_TYPE_GRAY;
    case 3:
        return PNG_COLOR_TYPE_RGB;
    default:
        return PNG_COLOR_TYPE_RGB_ALPHA;
    }
}

// Holds only trivially destructible locals, so that a longjmp out of libpng skips no destructor.
bool WriteRows(png_structp png, png_infop info, const Raster& raster, std::FILE* file) {
    if (setjmp(png_jmpbuf(png)))
        return false;
    png_init_io(png, file);
    png_set_IHDR(png, info, static_cast<png_uint_32>(raster.width),
                 static_cast<png_uint_32>(raster.height), static_cast<int>(raster.bitDepth),
                 ColourType(raster.channels), PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    // A faster setting than the default: frames are large and the gain of level 6 is small.
    png_set_compression_level(png, 3);
    png_color_8 significant{};
    const png_byte bits = static_cast<png_byte>(raster.significantBits);
    significant.gray = significant.red = significant.green = significant.blue = bits;
    significant.alpha = raster.channels == 4 ? bits : 0;
    if (raster.significantBits != raster.bitDepth)
        png_set_sBIT(png, info, &significant);
    png_write_info(png, info);
    // PNG samples fill their whole depth: 10-bit values are moved to the top of 16 bits.
    if (raster.significantBits != raster.bitDepth)
        png_set_shift(png, &significant);
    if (raster.bitDepth == 16)
        png_set_swap(png);
    if (raster.blueFirst)
        png_set_bgr(png);
    for (size_t y = 0; y < raster.height; ++y)
        png_write_row(png, raster.Row(y));
    png_write_end(png, nullptr);
    return true;
}

} // namespace

void WritePng(const Raster& raster, std::FILE* file) {
    std::string error;
    png_structp png =
        png_create_write_struct(PNG_LIBPNG_VER_STRING, &error, OnPngError, OnPngWarning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    const bool written = info != nullptr && WriteRows(png, info, raster, file);
    png_destroy_write_struct(&png, &info);
    if (!written)
        throw std::runtime_error(error.empty() ? "libpng could not start" : "libpng: " + error);
}

} // namespace ImageFile
} // namespace Orvan
