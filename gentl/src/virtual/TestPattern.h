// Moving test pictures for the virtual cameras, in every uncompressed pixel format they offer,
// with the frame number stamped in so that consumers can check order and integrity.
#ifndef ORVAN_GENTL_VIRTUAL_TESTPATTERN_H
#define ORVAN_GENTL_VIRTUAL_TESTPATTERN_H

#include "VirtualPixelFormats.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Orvan {
namespace Producer {

// GreyRamp: a diagonal saw-tooth of grey levels drifting left; ColorBars: eight diagonal bars
// (white, yellow, cyan, green, magenta, red, blue, black) drifting left; MovingDiagonal: bright
// diagonal stripes on a dark ground drifting right. Colour formats carry the colours themselves,
// Bayer formats sample them through their colour filter, mono formats carry their luma.
enum class PatternKind { Black, GreyRamp, ColorBars, MovingDiagonal };

// Every frame is a window onto one precomputed "tape": the picture is periodic over 256 rows,
// the tape holds the image plus the rows it can scroll by, and frame n starts 4 * (n mod 64) rows
// down. Four rows keep the Bayer phase, the 4:2:2 pairs and the packed groups of every format
// on byte boundaries, so a frame is a single memcpy.
class TestPattern {
public:
    // Throws std::invalid_argument for an unknown or compressed format or a zero size.
    TestPattern(uint32_t pixelFormat, uint32_t width, uint32_t height, PatternKind kind);
    size_t ImageBytes() const { return m_imageBytes; }
    // Writes frame `frameNumber` into dst (ImageBytes() bytes): the picture, then the frame
    // number over its first 8 bytes, little-endian (fewer when the image is smaller).
    void Render(uint64_t frameNumber, uint8_t* dst) const;
    // True when image is exactly what Render(frameNumber) writes.
    bool Matches(uint64_t frameNumber, const uint8_t* image, size_t size) const;

private:
    size_t WindowOffset(uint64_t frameNumber) const;

    const VirtualPixelFormat* m_format;
    uint32_t m_positions;  // distinct pictures before the motion repeats, a power of two
    size_t m_bytesPerStep; // how far one frame moves the window along the tape
    size_t m_imageBytes;
    uint8_t m_tailMask; // clears the bits after the last pixel, which the tape fills on
    std::vector<uint8_t> m_tape;
};

// The frame number stamped into an image (first 8 bytes, little-endian).
uint64_t ReadFrameStamp(const uint8_t* image, size_t size);

// True when image is exactly what TestPattern(...).Render(frame) writes: the integrity check
// used by the SDK's end-to-end tests. False for formats a TestPattern cannot render.
bool MatchesTestPattern(uint32_t pixelFormat, uint32_t width, uint32_t height, PatternKind kind,
                        uint64_t frameNumber, const uint8_t* image, size_t size);

} // namespace Producer
} // namespace Orvan

#endif
