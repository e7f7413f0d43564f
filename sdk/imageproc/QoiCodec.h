// QOI streams of compressed images (payload types 1001/1002), built on Debian's header-only QOI
// library: one implementation for the image factory and for the producer's compressed-image
// camera, so that what one writes the other reads.
#ifndef ORVAN_IMAGEPROC_QOICODEC_H
#define ORVAN_IMAGEPROC_QOICODEC_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Orvan {

// channels: 1 (grey), 3 (RGB) or 4 (RGBA), 8 bits each, rows without padding. QOI itself knows
// only 3 and 4 channels, so grey travels as RGB with equal components. Empty on failure (bad
// arguments, or more pixels than QOI allows).
std::vector<uint8_t> EncodeQoi(const uint8_t* pixels, uint32_t width, uint32_t height,
                               uint32_t channels);

// Decodes a stream with the channel count its header states (3 or 4); false for a stream that is
// not QOI, is cut short, or claims more pixels than its bytes could describe.
bool DecodeQoi(const uint8_t* data, size_t size, std::vector<uint8_t>& pixels, uint32_t& width,
               uint32_t& height, uint32_t& channels);

// Decodes into `channels` (1, 3 or 4) whatever the stream holds: 1 keeps the red component,
// which is the grey level of streams that EncodeQoi made from grey pixels.
bool DecodeQoiAs(const uint8_t* data, size_t size, uint32_t channels, std::vector<uint8_t>& pixels,
                 uint32_t& width, uint32_t& height);

} // namespace Orvan

#endif
