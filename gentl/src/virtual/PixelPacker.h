// Turns a stream of sample values into the bytes of a pixel format, including the packed
// layouts, so every format's image is built by one well-tested path.
#ifndef ORVAN_GENTL_VIRTUAL_PIXELPACKER_H
#define ORVAN_GENTL_VIRTUAL_PIXELPACKER_H

#include "VirtualPixelFormats.h"

#include <cstdint>
#include <vector>

namespace Orvan {
namespace Producer {

class PixelPacker {
public:
    // Appends to out; reserve it beforehand when the size is known.
    PixelPacker(const VirtualPixelFormat& format, std::vector<uint8_t>& out);
    // Appends one sample (only the format's sampleBits low bits are kept).
    void Put(uint16_t sample);
    // Writes out a half-filled group; the image's last bits are then padded with zeros.
    void Flush();

private:
    void PutGigEPacked(uint16_t sample);

    std::vector<uint8_t>& m_out;
    PixelPacking m_packing;
    uint32_t m_sampleBits;
    uint16_t m_mask;
    uint32_t m_bitBuffer = 0; // LsbFirst: pending bits, lowest first
    uint32_t m_bitCount = 0;
    bool m_halfPair = false; // GigEPacked: the first pixel of a pair is waiting
    uint16_t m_firstOfPair = 0;
};

} // namespace Producer
} // namespace Orvan

#endif
