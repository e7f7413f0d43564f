#include "PixelPacker.h"

namespace Orvan {
namespace Producer {

PixelPacker::PixelPacker(const VirtualPixelFormat& format, std::vector<uint8_t>& out)
    : m_out(out), m_packing(format.packing), m_sampleBits(format.sampleBits),
      m_mask(uint16_t((1u << format.sampleBits) - 1)) {}

void PixelPacker::Put(uint16_t sample) {
    sample &= m_mask;
    switch (m_packing) {
    case PixelPacking::LsbFirst:
        m_bitBuffer |= uint32_t(sample) << m_bitCount;
        m_bitCount += m_sampleBits;
        for (; m_bitCount >= 8; m_bitCount -= 8, m_bitBuffer >>= 8)
            m_out.push_back(uint8_t(m_bitBuffer));
        return;
    case PixelPacking::GigEPacked:
        PutGigEPacked(sample);
        return;
    default:
        m_out.push_back(uint8_t(sample));
        if (m_sampleBits > 8)
            m_out.push_back(uint8_t(sample >> 8)); // PFNC containers are little-endian
        return;
    }
}

// Each pixel's most significant 8 bits get a byte of their own; the low bits of both pixels
// share the middle byte, the first pixel's from bit 0 and the second's from bit 4.
void PixelPacker::PutGigEPacked(uint16_t sample) {
    const uint32_t lowBits = m_sampleBits - 8;
    const uint8_t high = uint8_t(sample >> lowBits);
    const uint8_t low = uint8_t(sample & ((1u << lowBits) - 1));
    if (!m_halfPair) {
        m_firstOfPair = sample;
        m_halfPair = true;
        return;
    }
    const uint32_t firstLow = m_firstOfPair & ((1u << lowBits) - 1);
    m_out.push_back(uint8_t(m_firstOfPair >> lowBits));
    m_out.push_back(uint8_t(firstLow | (low << 4)));
    m_out.push_back(high);
    m_halfPair = false;
}

void PixelPacker::Flush() {
    if (m_packing == PixelPacking::LsbFirst && m_bitCount > 0) {
        m_out.push_back(uint8_t(m_bitBuffer));
        m_bitBuffer = 0;
        m_bitCount = 0;
    }
    if (m_packing == PixelPacking::GigEPacked && m_halfPair) {
        const uint32_t lowBits = m_sampleBits - 8;
        m_out.push_back(uint8_t(m_firstOfPair >> lowBits));
        m_out.push_back(uint8_t(m_firstOfPair & ((1u << lowBits) - 1)));
        m_halfPair = false;
    }
}

} // namespace Producer
} // namespace Orvan
