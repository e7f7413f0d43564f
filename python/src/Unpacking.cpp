#include "Unpacking.h"

#include "Errors.h"

namespace OrvanPy {
namespace {

template <class T>
void LsbFirst(const uint8_t* src, size_t bits, T* dst, size_t count) {
    const uint32_t mask = (1u << bits) - 1;
    uint64_t buffer = 0;
    size_t held = 0;
    for (size_t i = 0; i < count; ++i) {
        while (held < bits) {
            buffer |= uint64_t(*src++) << held;
            held += 8;
        }
        dst[i] = T(buffer & mask);
        buffer >>= bits;
        held -= bits;
    }
}

// Each pair: first sample's high byte, both samples' low bits (first from bit 0, second from
// bit 4), second sample's high byte.
void GigEPacked(const uint8_t* src, size_t bits, uint16_t* dst, size_t count) {
    const size_t low = bits - 8;
    const uint8_t mask = uint8_t((1u << low) - 1);
    for (size_t i = 0; i + 1 < count; i += 2, src += 3) {
        dst[i] = uint16_t(src[0] << low | (src[1] & mask));
        dst[i + 1] = uint16_t(src[2] << low | ((src[1] >> 4) & mask));
    }
    if (count % 2)
        dst[count - 1] = uint16_t(src[0] << low | (src[1] & mask));
}

size_t PackedBytes(const PixelLayout& layout, size_t count) {
    if (layout.packing == Packing::GigEPacked)
        return (count * 12 + 7) / 8;
    return (count * layout.sampleBits + 7) / 8;
}

} // namespace

void UnpackSamples(const PixelLayout& layout, const uint8_t* src, size_t srcBytes, void* dst,
                   size_t count) {
    if (layout.packing != Packing::LsbFirst && layout.packing != Packing::GigEPacked)
        ThrowInvalidArgument("the pixel format is not a packed one that can be unpacked");
    if (srcBytes < PackedBytes(layout, count))
        ThrowInvalidArgument("the image holds fewer bytes than its size and format need");
    if (layout.packing == Packing::GigEPacked)
        GigEPacked(src, layout.sampleBits, static_cast<uint16_t*>(dst), count);
    else if (layout.sampleBits <= 8)
        LsbFirst(src, layout.sampleBits, static_cast<uint8_t*>(dst), count);
    else
        LsbFirst(src, layout.sampleBits, static_cast<uint16_t*>(dst), count);
}

} // namespace OrvanPy
