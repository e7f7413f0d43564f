// Channel deinterleaving: the samples of an image with several channels per pixel (polarisation
// angles, Dolp and Aolp) or per row (the taps of Dual and Quad sensors) split into one image per
// channel, each in the single-channel format of that channel.
#ifndef ORVAN_IMAGEPROC_DEINTERLEAVING_H
#define ORVAN_IMAGEPROC_DEINTERLEAVING_H

#include "SampleLayout.h"

#include <cstdint>
#include <vector>

namespace Orvan {

struct InterleavedFormat {
    uint64_t code;
    SampleLayout layout;
    // Whether each channel has the image's width (channels per pixel) or a share of it (taps
    // side by side in every row).
    bool channelPerPixel;
    std::vector<uint64_t> channels; // the format of each channel, in order
};

// The entry of a format that deinterleaves; null for any other.
const InterleavedFormat* FindInterleavedFormat(uint64_t code);

struct ChannelPlane {
    std::vector<uint8_t> pixels;
    size_t width;
    uint64_t format;
};

// Splits `width` x `height` pixels; for taps side by side the width must be a multiple of their
// count (the caller checks).
std::vector<ChannelPlane> Deinterleave(const uint8_t* source, size_t bytes, size_t width,
                                       size_t height, const InterleavedFormat& format);

} // namespace Orvan

#endif
