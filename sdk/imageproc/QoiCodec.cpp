#include "QoiCodec.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>

#define QOI_IMPLEMENTATION
#define QOI_NO_STDIO
#include <qoi.h>

namespace Orvan {

namespace {

constexpr size_t kHeaderBytes = 14;
constexpr size_t kEndMarkerBytes = 8;
const uint8_t kEndMarker[kEndMarkerBytes] = {0, 0, 0, 0, 0, 0, 0, 1};
// The longest run one byte of QOI can express; it bounds the pixels a stream can describe.
constexpr uint64_t kMaxPixelsPerByte = 62;

struct FreeDeleter {
    void operator()(void* p) const { std::free(p); }
};
using QoiBuffer = std::unique_ptr<uint8_t, FreeDeleter>;

uint32_t ReadBigEndian32(const uint8_t* p) {
    return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3];
}

// The library allocates whatever the header asks for and pads a stream that ends early with
// copies of its last pixel: refuse headers the data cannot back and streams without their end.
bool Plausible(const uint8_t* data, size_t size) {
    if (!data || size < kHeaderBytes + kEndMarkerBytes || size > size_t(INT_MAX))
        return false;
    if (std::memcmp(data + size - kEndMarkerBytes, kEndMarker, kEndMarkerBytes) != 0)
        return false;
    const uint64_t pixels = uint64_t(ReadBigEndian32(data + 4)) * ReadBigEndian32(data + 8);
    return pixels <= (size - kHeaderBytes - kEndMarkerBytes) * kMaxPixelsPerByte;
}

QoiBuffer Decode(const uint8_t* data, size_t size, int channels, qoi_desc& desc) {
    if (!Plausible(data, size))
        return nullptr;
    return QoiBuffer(static_cast<uint8_t*>(qoi_decode(data, int(size), &desc, channels)));
}

std::vector<uint8_t> GreyToRgb(const uint8_t* grey, size_t pixels) {
    std::vector<uint8_t> rgb(pixels * 3);
    for (size_t i = 0; i < pixels; ++i)
        rgb[3 * i] = rgb[3 * i + 1] = rgb[3 * i + 2] = grey[i];
    return rgb;
}

} // namespace

std::vector<uint8_t> EncodeQoi(const uint8_t* pixels, uint32_t width, uint32_t height,
                               uint32_t channels) {
    if (!pixels || (channels != 1 && channels != 3 && channels != 4) ||
        uint64_t(width) * height >= QOI_PIXELS_MAX)
        return {};
    std::vector<uint8_t> rgb;
    if (channels == 1) {
        rgb = GreyToRgb(pixels, size_t(width) * height);
        pixels = rgb.data();
    }
    const qoi_desc desc{width, height, static_cast<unsigned char>(channels == 4 ? 4 : 3), QOI_SRGB};
    int length = 0;
    QoiBuffer encoded(static_cast<uint8_t*>(qoi_encode(pixels, &desc, &length)));
    if (!encoded)
        return {};
    return std::vector<uint8_t>(encoded.get(), encoded.get() + length);
}

bool DecodeQoi(const uint8_t* data, size_t size, std::vector<uint8_t>& pixels, uint32_t& width,
               uint32_t& height, uint32_t& channels) {
    qoi_desc desc{};
    QoiBuffer decoded = Decode(data, size, 0, desc);
    if (!decoded)
        return false;
    width = desc.width;
    height = desc.height;
    channels = desc.channels;
    pixels.assign(decoded.get(), decoded.get() + size_t(width) * height * channels);
    return true;
}

bool DecodeQoiAs(const uint8_t* data, size_t size, uint32_t channels, std::vector<uint8_t>& pixels,
                 uint32_t& width, uint32_t& height) {
    if (channels != 1 && channels != 3 && channels != 4)
        return false;
    qoi_desc desc{};
    QoiBuffer decoded = Decode(data, size, channels == 4 ? 4 : 3, desc);
    if (!decoded)
        return false;
    width = desc.width;
    height = desc.height;
    const size_t count = size_t(width) * height;
    if (channels != 1) {
        pixels.assign(decoded.get(), decoded.get() + count * channels);
        return true;
    }
    pixels.resize(count);
    for (size_t i = 0; i < count; ++i)
        pixels[i] = decoded.get()[3 * i];
    return true;
}

} // namespace Orvan
