#include "VirtualPixelFormats.h"

#include <algorithm>
#include <deque>

namespace Orvan {
namespace Producer {

namespace {

using P = PixelPacking;
using L = PixelLayout;

// QOI stores colour only (3 or 4 channels); a mono picture travels as grey RGB. The worst case
// is one 4-byte RGB op per pixel plus the 14-byte header and 8-byte end marker.
constexpr uint64_t kQoiBytesPerPixel = 4;
constexpr uint64_t kQoiOverhead = 14 + 8;

std::vector<VirtualPixelFormat> MakeFormats() {
    std::vector<VirtualPixelFormat> formats = {
        {0x01080001, "Mono8", 8, 1, 8, P::None, L::Mono},
        {0x01100003, "Mono10", 16, 1, 10, P::None, L::Mono},
        {0x01100005, "Mono12", 16, 1, 12, P::None, L::Mono},
        {0x01100007, "Mono16", 16, 1, 16, P::None, L::Mono},
        {0x010A0046, "Mono10p", 10, 1, 10, P::LsbFirst, L::Mono},
        {0x010C0047, "Mono12p", 12, 1, 12, P::LsbFirst, L::Mono},
        {0x010C0004, "Mono10Packed", 12, 1, 10, P::GigEPacked, L::Mono},
        {0x010C0006, "Mono12Packed", 12, 1, 12, P::GigEPacked, L::Mono},
        {0x02180014, "RGB8", 24, 3, 8, P::None, L::RGB},
        {0x02180015, "BGR8", 24, 3, 8, P::None, L::BGR},
        {0x02200016, "RGBa8", 32, 4, 8, P::None, L::RGBa},
        {0x0210003B, "YCbCr422_8", 16, 2, 8, P::None, L::YCbCr422},
        {kPixelFormatQoiMono8, "QOI_Mono8", 8, 1, 8, P::Qoi, L::Mono},
        {kPixelFormatQoiRGB8, "QOI_RGB8", 24, 3, 8, P::Qoi, L::RGB},
    };
    struct BayerCodes {
        const char* order;
        PixelLayout layout;
        uint32_t c8, c10, c12, c16, c10p, c12p, c10Packed, c12Packed;
    };
    const BayerCodes bayer[] = {
        {"GR", L::BayerGR, 0x01080008, 0x0110000C, 0x01100010, 0x0110002E, 0x010A0056, 0x010C0057,
         0x010C0026, 0x010C002A},
        {"RG", L::BayerRG, 0x01080009, 0x0110000D, 0x01100011, 0x0110002F, 0x010A0058, 0x010C0059,
         0x010C0027, 0x010C002B},
        {"GB", L::BayerGB, 0x0108000A, 0x0110000E, 0x01100012, 0x01100030, 0x010A0054, 0x010C0055,
         0x010C0028, 0x010C002C},
        {"BG", L::BayerBG, 0x0108000B, 0x0110000F, 0x01100013, 0x01100031, 0x010A0052, 0x010C0053,
         0x010C0029, 0x010C002D},
    };
    // The table points into these names, so they live as long as the table; a deque never moves
    // its elements.
    static std::deque<std::string> names;
    for (const BayerCodes& b : bayer) {
        const std::string base = std::string("Bayer") + b.order;
        const struct {
            const char* suffix;
            uint32_t code, bits, sampleBits;
            PixelPacking packing;
        } depths[] = {
            {"8", b.c8, 8, 8, P::None},
            {"10", b.c10, 16, 10, P::None},
            {"12", b.c12, 16, 12, P::None},
            {"16", b.c16, 16, 16, P::None},
            {"10p", b.c10p, 10, 10, P::LsbFirst},
            {"12p", b.c12p, 12, 12, P::LsbFirst},
            {"10Packed", b.c10Packed, 12, 10, P::GigEPacked},
            {"12Packed", b.c12Packed, 12, 12, P::GigEPacked},
        };
        for (const auto& d : depths) {
            names.push_back(base + d.suffix);
            formats.push_back(
                {d.code, names.back().c_str(), d.bits, 1, d.sampleBits, d.packing, b.layout});
        }
    }
    return formats;
}

} // namespace

const std::vector<VirtualPixelFormat>& VirtualPixelFormats() {
    static const std::vector<VirtualPixelFormat> formats = MakeFormats();
    return formats;
}

const VirtualPixelFormat* FindVirtualPixelFormat(uint32_t code) {
    const auto& formats = VirtualPixelFormats();
    auto it = std::find_if(formats.begin(), formats.end(),
                           [code](const VirtualPixelFormat& f) { return f.code == code; });
    return it == formats.end() ? nullptr : &*it;
}

const VirtualPixelFormat* FindVirtualPixelFormat(const std::string& name) {
    const auto& formats = VirtualPixelFormats();
    auto it = std::find_if(formats.begin(), formats.end(),
                           [&name](const VirtualPixelFormat& f) { return name == f.name; });
    return it == formats.end() ? nullptr : &*it;
}

size_t ImageBytes(const VirtualPixelFormat& format, uint32_t width, uint32_t height) {
    const uint64_t pixels = uint64_t(width) * height;
    if (format.packing == PixelPacking::Qoi)
        return size_t(pixels * kQoiBytesPerPixel + kQoiOverhead);
    // Packed formats run on across line ends, so only the image as a whole is rounded up.
    return size_t((pixels * format.bitsPerPixel + 7) / 8);
}

} // namespace Producer
} // namespace Orvan
