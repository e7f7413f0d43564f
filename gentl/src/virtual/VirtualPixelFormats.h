// The pixel formats the virtual cameras can deliver: PFNC codes and names, and how each one
// lays its samples out in memory, so that test patterns, payload sizes and chunk CRCs agree.
#ifndef ORVAN_GENTL_VIRTUAL_VIRTUALPIXELFORMATS_H
#define ORVAN_GENTL_VIRTUAL_VIRTUALPIXELFORMATS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Orvan {
namespace Producer {

// How samples sit in memory. Unpacked samples are 8 bits, or 16-bit little-endian containers
// holding sampleBits significant bits.
enum class PixelPacking {
    None,
    LsbFirst,   // PFNC "p" formats: a continuous little-endian bit stream, lines not padded
    GigEPacked, // GigE Vision "Packed": two pixels in three bytes, shared low bits in the middle
    Qoi,        // compressed stand-ins: a QOI stream whose size depends on the picture
};

// The colour order of a sample or pixel, which test patterns need to pick each sample's value.
enum class PixelLayout { Mono, BayerGR, BayerRG, BayerGB, BayerBG, RGB, BGR, RGBa, YCbCr422 };

struct VirtualPixelFormat {
    uint32_t code;
    const char* name;
    uint32_t bitsPerPixel; // bits a pixel occupies in memory (decoded image for Qoi)
    uint32_t channels;     // samples stored per pixel (2 for 4:2:2: Y plus one chroma)
    uint32_t sampleBits = 8;
    PixelPacking packing = PixelPacking::None;
    PixelLayout layout = PixelLayout::Mono;
};

// Vendor codes of the compressed stand-ins, the ones the SDK's pixel-format list gives them: bit 31
// marks a custom format in PFNC, and the other fields follow PFNC's scheme (colour class,
// occupied bits of the decoded pixel, an index).
constexpr uint32_t kPixelFormatQoiMono8 = 0x81080A00;
constexpr uint32_t kPixelFormatQoiRGB8 = 0x82180A01;

const std::vector<VirtualPixelFormat>& VirtualPixelFormats();
const VirtualPixelFormat* FindVirtualPixelFormat(uint32_t code);
const VirtualPixelFormat* FindVirtualPixelFormat(const std::string& name);

// Bytes of a width x height image of that format (packed formats rounded up as their layout
// needs). For the QOI formats this is the largest stream the encoder can produce, which is what
// a payload buffer must hold.
size_t ImageBytes(const VirtualPixelFormat& format, uint32_t width, uint32_t height);

} // namespace Producer
} // namespace Orvan

#endif
