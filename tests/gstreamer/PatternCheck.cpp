#include "PatternCheck.h"

#include <virtual/TestPattern.h>

#include <cstring>
#include <vector>

using Orvan::Producer::PatternKind;
using Orvan::Producer::TestPattern;

namespace {

// The frames a TestPattern window passes through before its motion repeats.
constexpr uint64_t kPositions = 64;
// The pixels the frame stamp (8 bytes) may cover in a format of 8 bits or more per pixel.
constexpr size_t kStampPixels = 8;

std::vector<uint8_t> Packed(const uint8_t* rows, size_t stride, size_t rowBytes, unsigned height) {
    std::vector<uint8_t> packed(rowBytes * height);
    for (unsigned y = 0; y < height; ++y)
        std::memcpy(&packed[y * rowBytes], rows + y * stride, rowBytes);
    return packed;
}

const uint8_t* Pixel(const std::vector<uint8_t>& rgb, unsigned width, unsigned x, unsigned y) {
    return &rgb[(size_t(y) * width + x) * 3];
}

bool FlatAround(const std::vector<uint8_t>& rgb, unsigned width, unsigned x, unsigned y) {
    const uint8_t* centre = Pixel(rgb, width, x, y);
    for (unsigned dy = y - 1; dy <= y + 1; ++dy)
        for (unsigned dx = x - 1; dx <= x + 1; ++dx)
            if (std::memcmp(Pixel(rgb, width, dx, dy), centre, 3) != 0)
                return false;
    return true;
}

// Rows 0 and 1 are skipped: the frame stamp overwrites the first pixels.
bool FlatAreasAgree(const std::vector<uint8_t>& expected, const std::vector<uint8_t>& actual,
                    unsigned width, unsigned height) {
    size_t compared = 0;
    for (unsigned y = 2; y + 2 < height; ++y)
        for (unsigned x = 2; x + 2 < width; ++x) {
            if (!FlatAround(expected, width, x, y))
                continue;
            if (std::memcmp(Pixel(expected, width, x, y), Pixel(actual, width, x, y), 3) != 0)
                return false;
            ++compared;
        }
    return compared > size_t(width) * height / 2;
}

// A sample of `bits` bits at `outBits`: the test's own statement of the factory's scaling.
unsigned Scaled(unsigned sample, unsigned bits, unsigned outBits) {
    if (outBits <= bits)
        return sample >> (bits - outBits);
    unsigned scaled = 0;
    for (int shift = int(outBits - bits); shift > -int(bits); shift -= int(bits))
        scaled |= shift >= 0 ? sample << shift : sample >> -shift;
    return scaled & ((1u << outBits) - 1);
}

bool ScaledAgree(const std::vector<uint8_t>& source, unsigned bits, unsigned outBits,
                 const std::vector<uint8_t>& actual, size_t pixels) {
    const size_t outBytes = outBits / 8;
    for (size_t i = kStampPixels; i < pixels; ++i) {
        const unsigned sample = source[2 * i] | unsigned(source[2 * i + 1]) << 8;
        const unsigned got = outBytes == 1 ? actual[i] : actual[2 * i] | actual[2 * i + 1] << 8;
        if (got != Scaled(sample, bits, outBits))
            return false;
    }
    return true;
}

} // namespace

int orvan_test_matches_scaled_mono(const char* pfncName, unsigned outBits, unsigned width,
                                   unsigned height, const uint8_t* rows, size_t stride) {
    const auto* format = Orvan::Producer::FindVirtualPixelFormat(pfncName);
    if (!format || format->bitsPerPixel != 16 || (outBits != 8 && outBits != 16))
        return 0;
    const size_t pixels = size_t(width) * height;
    const std::vector<uint8_t> actual = Packed(rows, stride, size_t(width) * outBits / 8, height);
    const TestPattern pattern(format->code, width, height, PatternKind::MovingDiagonal);
    std::vector<uint8_t> source(pattern.ImageBytes());
    for (uint64_t frame = 0; frame < kPositions; ++frame) {
        pattern.Render(frame, source.data());
        if (ScaledAgree(source, format->sampleBits, outBits, actual, pixels))
            return 1;
    }
    return 0;
}

int orvan_test_matches_pattern(const char* pfncName, unsigned width, unsigned height, int colorBars,
                               const uint8_t* rows, size_t stride) {
    const auto* format = Orvan::Producer::FindVirtualPixelFormat(pfncName);
    if (!format)
        return 0;
    const size_t rowBytes = size_t(width) * format->bitsPerPixel / 8;
    const std::vector<uint8_t> image = Packed(rows, stride, rowBytes, height);
    const uint64_t frame = Orvan::Producer::ReadFrameStamp(image.data(), image.size());
    return Orvan::Producer::MatchesTestPattern(format->code, width, height,
                                               colorBars ? PatternKind::ColorBars
                                                         : PatternKind::MovingDiagonal,
                                               frame, image.data(), image.size());
}

int orvan_test_matches_demosaiced_bars(unsigned width, unsigned height, const uint8_t* rgb,
                                       size_t stride) {
    const std::vector<uint8_t> actual = Packed(rgb, stride, size_t(width) * 3, height);
    const TestPattern pattern(Orvan::Producer::FindVirtualPixelFormat("RGB8")->code, width, height,
                              PatternKind::ColorBars);
    std::vector<uint8_t> expected(pattern.ImageBytes());
    for (uint64_t frame = 0; frame < kPositions; ++frame) {
        pattern.Render(frame, expected.data());
        if (FlatAreasAgree(expected, actual, width, height))
            return 1;
    }
    return 0;
}
