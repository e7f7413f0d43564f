// What the pixel-format conversion needs to know of a format: its colour family, how its samples
// are stored, and where each colour sits. The one table of the formats that conversion reads and
// writes.
#ifndef ORVAN_IMAGEPROC_CONVERSIONFORMAT_H
#define ORVAN_IMAGEPROC_CONVERSIONFORMAT_H

#include "SampleLayout.h"

#include <cstdint>
#include <vector>

namespace Orvan {

enum class ColourFamily { Mono, Bayer, Rgb, Yuv };

// The colour of the top-left 2x2 cell, row by row.
enum class BayerPattern { GR, RG, GB, BG };

// Sample positions of one group of a YUV format: `pixels` pixels in `samples` samples; luma[i] is
// the sample of pixel i, u and v those of the chroma the group shares.
struct YuvGroup {
    unsigned pixels;
    unsigned samples;
    unsigned luma[4];
    unsigned u;
    unsigned v;
};

struct ConversionFormat {
    uint64_t code;
    ColourFamily family;
    SampleLayout layout;
    // Samples per pixel (1 for Mono and Bayer, 3 or 4 for Rgb); offsets of red, green, blue and
    // alpha (-1: none) within a pixel.
    unsigned channels;
    int red, green, blue, alpha;
    BayerPattern pattern;
    YuvGroup yuv;
};

// The entry of a format that conversion reads; null for any other.
const ConversionFormat* FindSourceFormat(uint64_t code);
// The entry of a format that conversion writes; null for any other.
const ConversionFormat* FindTargetFormat(uint64_t code);
// The sources of conversion, in a fixed order.
std::vector<uint64_t> SourceFormats();
// The targets of conversion, in a fixed order.
const std::vector<uint64_t>& TargetFormats();

// The 8-bit format of the same family, pattern and channel order, or 0.
uint64_t EightBitCounterpart(const ConversionFormat& format);

} // namespace Orvan

#endif
