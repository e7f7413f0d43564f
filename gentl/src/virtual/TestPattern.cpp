#include "TestPattern.h"

#include "PixelPacker.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <stdexcept>

namespace Orvan {
namespace Producer {

namespace {

constexpr uint32_t kPeriodRows = 256;
constexpr uint32_t kRowsPerFrame = 4;
constexpr uint32_t kStampBytes = 8;

struct Rgb {
    uint8_t r, g, b;
};

const Rgb kBars[8] = {{255, 255, 255}, {255, 255, 0}, {0, 255, 255}, {0, 255, 0},
                      {255, 0, 255},   {255, 0, 0},   {0, 0, 255},   {0, 0, 0}};

// Every pattern depends on the row only modulo kPeriodRows, which makes the scrolling seamless.
Rgb PatternColour(PatternKind kind, uint32_t x, uint32_t row) {
    switch (kind) {
    case PatternKind::GreyRamp: {
        const uint8_t level = uint8_t(x + row);
        return {level, level, level};
    }
    case PatternKind::ColorBars:
        return kBars[((x + row) >> 5) & 7];
    case PatternKind::MovingDiagonal: {
        const uint8_t level = ((x - row) & 63) < 16 ? 255 : 32;
        return {level, level, level};
    }
    default:
        return {0, 0, 0};
    }
}

// Widens an 8-bit level to the format's depth by repeating its bits, so white stays full scale.
uint16_t Scale(uint8_t level, uint32_t bits) {
    if (bits == 8)
        return level;
    return uint16_t((uint32_t(level) << (bits - 8)) | (uint32_t(level) >> (16 - bits)));
}

uint8_t Luma(Rgb c) {
    return uint8_t((77 * c.r + 150 * c.g + 29 * c.b + 128) >> 8);
}

// The filter colour over a pixel, by the 2x2 tile named in the format ("GR" = G R / B G).
uint8_t BayerSample(PixelLayout layout, Rgb c, uint32_t x, uint32_t row) {
    static const char* const tiles[] = {"GRBG", "RGGB", "GBRG", "BGGR"};
    const int tile = int(layout) - int(PixelLayout::BayerGR);
    switch (tiles[tile][(row & 1) * 2 + (x & 1)]) {
    case 'R':
        return c.r;
    case 'G':
        return c.g;
    default:
        return c.b;
    }
}

// Full-range BT.601, the YCbCr of PFNC formats without a 601/709 suffix.
uint8_t Clamp(int v) {
    return uint8_t(std::min(255, std::max(0, v)));
}
uint8_t LumaY(Rgb c) {
    return Clamp((299 * c.r + 587 * c.g + 114 * c.b + 500) / 1000);
}
uint8_t ChromaB(Rgb c) {
    return Clamp(128 + (-169 * c.r - 331 * c.g + 500 * c.b) / 1000);
}
uint8_t ChromaR(Rgb c) {
    return Clamp(128 + (500 * c.r - 419 * c.g - 81 * c.b) / 1000);
}

Rgb Average(Rgb a, Rgb b) {
    return {uint8_t((a.r + b.r + 1) / 2), uint8_t((a.g + b.g + 1) / 2),
            uint8_t((a.b + b.b + 1) / 2)};
}

// Walks the tape in memory order and hands each sample to the packer.
class TapeWriter {
public:
    TapeWriter(const VirtualPixelFormat& format, std::vector<uint8_t>& tape)
        : m_format(format), m_packer(format, tape) {}

    void Pixel(Rgb c, uint32_t x, uint32_t row) {
        switch (m_format.layout) {
        case PixelLayout::Mono:
            Put({Luma(c)});
            break;
        case PixelLayout::RGB:
            Put({c.r, c.g, c.b});
            break;
        case PixelLayout::BGR:
            Put({c.b, c.g, c.r});
            break;
        case PixelLayout::RGBa:
            Put({c.r, c.g, c.b, 255});
            break;
        case PixelLayout::YCbCr422:
            PutYCbCr(c);
            break;
        default:
            Put({BayerSample(m_format.layout, c, x, row)});
            break;
        }
    }

    // A lone last 4:2:2 pixel keeps its own chroma.
    void Finish() {
        if (m_pendingChroma)
            Put({LumaY(m_first), ChromaB(m_first)});
        m_packer.Flush();
    }

private:
    void Put(std::initializer_list<uint8_t> levels) {
        for (uint8_t level : levels)
            m_packer.Put(Scale(level, m_format.sampleBits));
    }

    // Pairs share one chroma sample each, from their average colour: Y0 Cb Y1 Cr.
    void PutYCbCr(Rgb c) {
        if (!m_pendingChroma) {
            m_first = c;
            m_pendingChroma = true;
            return;
        }
        const Rgb mean = Average(m_first, c);
        Put({LumaY(m_first), ChromaB(mean), LumaY(c), ChromaR(mean)});
        m_pendingChroma = false;
    }

    const VirtualPixelFormat& m_format;
    PixelPacker m_packer;
    bool m_pendingChroma = false;
    Rgb m_first{};
};

const VirtualPixelFormat& RenderableFormat(uint32_t code, uint32_t width, uint32_t height) {
    const VirtualPixelFormat* format = FindVirtualPixelFormat(code);
    if (!format)
        throw std::invalid_argument("TestPattern: unknown pixel format");
    if (format->packing == PixelPacking::Qoi)
        throw std::invalid_argument("TestPattern: compressed formats have no test pattern");
    if (width == 0 || height == 0)
        throw std::invalid_argument("TestPattern: zero image size");
    return *format;
}

// Bits of the image's last byte that belong to its pixels; in the tape the rest already hold the
// next pixel, which a frame must not show.
uint8_t TailMask(const VirtualPixelFormat& format, uint64_t pixels) {
    if (format.packing == PixelPacking::GigEPacked && pixels % 2 == 1)
        return uint8_t((1u << (format.sampleBits - 8)) - 1);
    const uint32_t usedBits = uint32_t(pixels * format.bitsPerPixel % 8);
    return usedBits == 0 ? 0xFF : uint8_t((1u << usedBits) - 1);
}

// Built in a local array first: the compiler turns the common 8-byte case into one store.
void WriteStamp(uint64_t frameNumber, uint8_t* dst, size_t size) {
    uint8_t bytes[kStampBytes];
    for (size_t i = 0; i < kStampBytes; ++i)
        bytes[i] = uint8_t(frameNumber >> (8 * i));
    if (size >= kStampBytes)
        std::memcpy(dst, bytes, kStampBytes);
    else
        std::memcpy(dst, bytes, size);
}

} // namespace

TestPattern::TestPattern(uint32_t pixelFormat, uint32_t width, uint32_t height, PatternKind kind)
    : m_format(&RenderableFormat(pixelFormat, width, height)),
      m_positions(kind == PatternKind::Black ? 1 : kPeriodRows / kRowsPerFrame),
      m_bytesPerStep(size_t(uint64_t(kRowsPerFrame) * width * m_format->bitsPerPixel / 8)),
      m_imageBytes(Producer::ImageBytes(*m_format, width, height)),
      m_tailMask(TailMask(*m_format, uint64_t(width) * height)) {
    const uint32_t tapeRows = height + (m_positions - 1) * kRowsPerFrame;
    m_tape.reserve(Producer::ImageBytes(*m_format, width, tapeRows));
    TapeWriter writer(*m_format, m_tape);
    for (uint32_t row = 0; row < tapeRows; ++row)
        for (uint32_t x = 0; x < width; ++x)
            writer.Pixel(PatternColour(kind, x, row), x, row);
    writer.Finish();
}

size_t TestPattern::WindowOffset(uint64_t frameNumber) const {
    return size_t(frameNumber & (m_positions - 1)) * m_bytesPerStep;
}

void TestPattern::Render(uint64_t frameNumber, uint8_t* dst) const {
    std::memcpy(dst, m_tape.data() + WindowOffset(frameNumber), m_imageBytes);
    dst[m_imageBytes - 1] &= m_tailMask;
    WriteStamp(frameNumber, dst, m_imageBytes);
}

bool TestPattern::Matches(uint64_t frameNumber, const uint8_t* image, size_t size) const {
    if (!image || size != m_imageBytes)
        return false;
    const size_t stamped = std::min<size_t>(kStampBytes, size);
    uint8_t stamp[kStampBytes];
    WriteStamp(frameNumber, stamp, stamped);
    if (std::memcmp(image, stamp, stamped) != 0)
        return false;
    if (size == stamped)
        return true;
    const uint8_t* picture = m_tape.data() + WindowOffset(frameNumber);
    const size_t last = size - 1;
    return std::memcmp(image + stamped, picture + stamped, last - stamped) == 0 &&
           image[last] == (picture[last] & m_tailMask);
}

uint64_t ReadFrameStamp(const uint8_t* image, size_t size) {
    uint64_t stamp = 0;
    const size_t n = std::min<size_t>(kStampBytes, size);
    for (size_t i = 0; i < n; ++i)
        stamp |= uint64_t(image[i]) << (8 * i);
    return stamp;
}

bool MatchesTestPattern(uint32_t pixelFormat, uint32_t width, uint32_t height, PatternKind kind,
                        uint64_t frameNumber, const uint8_t* image, size_t size) {
    try {
        return TestPattern(pixelFormat, width, height, kind).Matches(frameNumber, image, size);
    } catch (const std::invalid_argument&) {
        return false;
    }
}

} // namespace Producer
} // namespace Orvan
