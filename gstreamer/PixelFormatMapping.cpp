#include "PixelFormatMapping.h"

#include <Orvan/PixelFormat.h>

#include <iterator>
#include <numeric>

namespace Orvan {
namespace Gst {

namespace {

constexpr const char* kRaw = "video/x-raw";
constexpr const char* kBayer = "video/x-bayer";

// PFNC's 4:2:2 names differ from GStreamer's: YCbCr422_8 and YUV422_8_UYVY are the same byte
// orders as YUY2 and UYVY.
//
// Converted: deeper and packed mono as GRAY16_LE (samples scaled to the full 16 bits, nothing
// lost) or GRAY8 (the 8 most significant bits); deeper Bayer demosaiced to RGB or BGR (8-bit
// video/x-bayer would need a bit selection the factory only offers as a new image per frame,
// and cameras that have deep Bayer have Bayer 8 too); deeper RGB and BGR as 8-bit RGB and BGR in
// their own order. GStreamer has 16-bit names for neither Bayer nor 3-channel colour.
#define ORVAN_GST_NATIVE(code, media, format, bytes, multiple)                                     \
    { code, #code, media, format, bytes, multiple, 0 }
#define ORVAN_GST_MONO(code)                                                                       \
    {code, #code, kRaw, "GRAY16_LE", 2, 1, Mono16}, {                                              \
        code, #code, kRaw, "GRAY8", 1, 1, Mono8                                                    \
    }
#define ORVAN_GST_BAYER(code)                                                                      \
    {code, #code, kRaw, "RGB", 3, 2, RGB8}, {                                                      \
        code, #code, kRaw, "BGR", 3, 2, BGR8                                                       \
    }
#define ORVAN_GST_BAYER_DEPTHS(order)                                                              \
    ORVAN_GST_BAYER(Bayer##order##10), ORVAN_GST_BAYER(Bayer##order##12),                          \
        ORVAN_GST_BAYER(Bayer##order##16), ORVAN_GST_BAYER(Bayer##order##10p),                     \
        ORVAN_GST_BAYER(Bayer##order##12p), ORVAN_GST_BAYER(Bayer##order##10Packed),               \
        ORVAN_GST_BAYER(Bayer##order##12Packed)
#define ORVAN_GST_COLOUR_DEPTHS(order, format)                                                     \
    {order##10, #order "10", kRaw, format, 3, 1, order##8},                                        \
        {order##12, #order "12", kRaw, format, 3, 1, order##8},                                    \
        {order##16, #order "16", kRaw, format, 3, 1, order##8},                                    \
        {order##10p, #order "10p", kRaw, format, 3, 1, order##8}, {                                \
        order##12p, #order "12p", kRaw, format, 3, 1, order##8                                     \
    }

const PixelFormatMapping kMappings[] = {
    ORVAN_GST_NATIVE(Mono8, kRaw, "GRAY8", 1, 1),
    ORVAN_GST_NATIVE(Mono16, kRaw, "GRAY16_LE", 2, 1),
    ORVAN_GST_NATIVE(RGB8, kRaw, "RGB", 3, 1),
    ORVAN_GST_NATIVE(BGR8, kRaw, "BGR", 3, 1),
    ORVAN_GST_NATIVE(RGBa8, kRaw, "RGBA", 4, 1),
    ORVAN_GST_NATIVE(BGRa8, kRaw, "BGRA", 4, 1),
    ORVAN_GST_NATIVE(YUV422_8_UYVY, kRaw, "UYVY", 2, 2),
    ORVAN_GST_NATIVE(YCbCr422_8_CbYCrY, kRaw, "UYVY", 2, 2),
    ORVAN_GST_NATIVE(YCbCr422_8, kRaw, "YUY2", 2, 2),
    ORVAN_GST_NATIVE(BayerRG8, kBayer, "rggb", 1, 2),
    ORVAN_GST_NATIVE(BayerGR8, kBayer, "grbg", 1, 2),
    ORVAN_GST_NATIVE(BayerGB8, kBayer, "gbrg", 1, 2),
    ORVAN_GST_NATIVE(BayerBG8, kBayer, "bggr", 1, 2),
    ORVAN_GST_MONO(Mono10),
    ORVAN_GST_MONO(Mono12),
    ORVAN_GST_MONO(Mono14),
    ORVAN_GST_MONO(Mono10p),
    ORVAN_GST_MONO(Mono12p),
    ORVAN_GST_MONO(Mono10Packed),
    ORVAN_GST_MONO(Mono12Packed),
    ORVAN_GST_BAYER_DEPTHS(RG),
    ORVAN_GST_BAYER_DEPTHS(GR),
    ORVAN_GST_BAYER_DEPTHS(GB),
    ORVAN_GST_BAYER_DEPTHS(BG),
    ORVAN_GST_COLOUR_DEPTHS(RGB, "RGB"),
    ORVAN_GST_COLOUR_DEPTHS(BGR, "BGR"),
};

} // namespace

const PixelFormatMapping* MappingsBegin() {
    return std::begin(kMappings);
}

const PixelFormatMapping* MappingsEnd() {
    return std::end(kMappings);
}

size_t AlignedWidthStep(const PixelFormatMapping& mapping) {
    const size_t forRows = 4 / std::gcd(mapping.bytesPerPixel, size_t{4});
    return std::lcm(forRows, mapping.widthMultiple);
}

} // namespace Gst
} // namespace Orvan
