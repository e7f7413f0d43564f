#include "PngDecoder.h"

#include <png.h>

#include <cstdio>
#include <memory>
#include <stdexcept>

namespace ImageFileTest {

namespace {

void OnError(png_structp png, png_const_charp message) {
    *static_cast<std::string*>(png_get_error_ptr(png)) = message;
    png_longjmp(png, 1);
}

void OnWarning(png_structp, png_const_charp) {}

// Trivially destructible locals only: libpng leaves by longjmp.
bool Decode(png_structp png, png_infop info, std::FILE* file, DecodedPng& out) {
    if (setjmp(png_jmpbuf(png)))
        return false;
    png_init_io(png, file);
    png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
    out.width = png_get_image_width(png, info);
    out.height = png_get_image_height(png, info);
    out.bitDepth = png_get_bit_depth(png, info);
    out.channels = png_get_channels(png, info);
    png_color_8p significant = nullptr;
    if (png_get_sBIT(png, info, &significant) != 0)
        out.significantBits = significant->gray != 0 ? significant->gray : significant->red;
    png_bytepp rows = png_get_rows(png, info);
    const size_t perRow = out.width * out.channels;
    out.samples.resize(perRow * out.height);
    for (size_t y = 0; y < out.height; ++y)
        for (size_t i = 0; i < perRow; ++i)
            out.samples[y * perRow + i] = out.bitDepth == 16
                                              ? uint16_t(rows[y][2 * i] << 8 | rows[y][2 * i + 1])
                                              : rows[y][i];
    return true;
}

} // namespace

DecodedPng DecodePng(const std::string& path) {
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                         std::fclose);
    if (!file)
        throw std::runtime_error("cannot open " + path);
    std::string error;
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &error, OnError, OnWarning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    DecodedPng decoded;
    const bool ok = info != nullptr && Decode(png, info, file.get(), decoded);
    png_destroy_read_struct(&png, &info, nullptr);
    if (!ok)
        throw std::runtime_error(path + " is not a valid PNG: " + error);
    return decoded;
}

} // namespace ImageFileTest
