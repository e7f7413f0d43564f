#include "virtual/TestPattern.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace Orvan::Producer;

const PatternKind kKinds[] = {PatternKind::Black, PatternKind::GreyRamp, PatternKind::ColorBars,
                              PatternKind::MovingDiagonal};

std::vector<const VirtualPixelFormat*> RenderableFormats() {
    std::vector<const VirtualPixelFormat*> formats;
    for (const VirtualPixelFormat& format : VirtualPixelFormats())
        if (format.packing != PixelPacking::Qoi)
            formats.push_back(&format);
    return formats;
}

std::vector<uint8_t> Render(const TestPattern& pattern, uint64_t frame) {
    std::vector<uint8_t> image(pattern.ImageBytes());
    pattern.Render(frame, image.data());
    return image;
}

std::vector<uint8_t> Render(const char* format, uint32_t w, uint32_t h, PatternKind kind,
                            uint64_t frame) {
    return Render(TestPattern(FindVirtualPixelFormat(format)->code, w, h, kind), frame);
}

TEST(TestPattern, StampsEveryFrameAndMatchesOnlyThatFrame) {
    const uint64_t frames[] = {0, 1, 63, 64, 65, 0x0123456789ABCDEFull};
    for (const VirtualPixelFormat* format : RenderableFormats()) {
        for (PatternKind kind : kKinds) {
            SCOPED_TRACE(std::string(format->name) + " kind " + std::to_string(int(kind)));
            const TestPattern pattern(format->code, 7, 5, kind);
            ASSERT_EQ(pattern.ImageBytes(), ImageBytes(*format, 7, 5));
            for (uint64_t frame : frames) {
                const std::vector<uint8_t> image = Render(pattern, frame);
                EXPECT_EQ(ReadFrameStamp(image.data(), image.size()), frame);
                EXPECT_TRUE(MatchesTestPattern(format->code, 7, 5, kind, frame, image.data(),
                                               image.size()));
                EXPECT_FALSE(pattern.Matches(frame + 1, image.data(), image.size()));
                EXPECT_FALSE(pattern.Matches(frame, image.data(), image.size() - 1));
            }
        }
    }
}

TEST(TestPattern, DetectsAnyOneByteCorruption) {
    for (const VirtualPixelFormat* format : RenderableFormats()) {
        for (PatternKind kind : {PatternKind::Black, PatternKind::ColorBars}) {
            SCOPED_TRACE(std::string(format->name) + " kind " + std::to_string(int(kind)));
            const TestPattern pattern(format->code, 5, 3, kind);
            std::vector<uint8_t> image = Render(pattern, 9);
            for (size_t i = 0; i < image.size(); ++i) {
                for (uint8_t flip : {0x01, 0x80}) {
                    image[i] ^= flip;
                    EXPECT_FALSE(pattern.Matches(9, image.data(), image.size())) << "byte " << i;
                    image[i] ^= flip;
                }
            }
            EXPECT_TRUE(pattern.Matches(9, image.data(), image.size()));
        }
    }
}

TEST(TestPattern, PictureMovesFromFrameToFrameExceptBlack) {
    for (const VirtualPixelFormat* format : RenderableFormats()) {
        for (PatternKind kind : kKinds) {
            SCOPED_TRACE(std::string(format->name) + " kind " + std::to_string(int(kind)));
            const TestPattern pattern(format->code, 64, 8, kind);
            std::vector<uint8_t> previous = Render(pattern, 10);
            for (uint64_t frame = 11; frame < 14; ++frame) {
                std::vector<uint8_t> image = Render(pattern, frame);
                const bool same = std::equal(image.begin() + 8, image.end(), previous.begin() + 8);
                EXPECT_EQ(same, kind == PatternKind::Black) << "frame " << frame;
                previous = image;
            }
        }
    }
}

// The samples of an unpacked format: 8-bit, or 16-bit little-endian containers.
uint16_t UnpackedSample(const std::vector<uint8_t>& image, size_t i, uint32_t bits) {
    return bits == 8 ? image[i] : uint16_t(image[2 * i] | image[2 * i + 1] << 8);
}

// PFNC "p": sample i is bits [i * bits, (i + 1) * bits) of a little-endian bit stream.
uint16_t LsbFirstSample(const std::vector<uint8_t>& image, size_t i, uint32_t bits) {
    uint16_t value = 0;
    for (uint32_t k = 0; k < bits; ++k) {
        const size_t bit = i * bits + k;
        value |= uint16_t(((image[bit / 8] >> (bit % 8)) & 1) << k);
    }
    return value;
}

// GigE Vision Packed: pixel pairs in 3 bytes, high bits outside, low bits shared in the middle.
uint16_t GigEPackedSample(const std::vector<uint8_t>& image, size_t i, uint32_t bits) {
    const uint32_t lowBits = bits - 8;
    const size_t pair = 3 * (i / 2);
    const uint32_t shared = i % 2 == 0 ? image[pair + 1] : image[pair + 1] >> 4;
    const uint8_t high = i % 2 == 0 ? image[pair] : image[pair + 2];
    return uint16_t(high << lowBits | (shared & ((1u << lowBits) - 1)));
}

TEST(TestPattern, PackedFormatsHoldTheSamePixelsAsTheirUnpackedTwins) {
    const std::pair<const char*, const char*> twins[] = {{"Mono10p", "Mono10"},
                                                         {"Mono12p", "Mono12"},
                                                         {"Mono10Packed", "Mono10"},
                                                         {"Mono12Packed", "Mono12"},
                                                         {"BayerGR10p", "BayerGR10"},
                                                         {"BayerBG12p", "BayerBG12"},
                                                         {"BayerRG10Packed", "BayerRG10"},
                                                         {"BayerGB12Packed", "BayerGB12"}};
    const uint32_t width = 7, height = 5; // odd pixel count: the last group is half full
    for (const auto& [packedName, unpackedName] : twins) {
        const VirtualPixelFormat& packed = *FindVirtualPixelFormat(packedName);
        for (PatternKind kind : {PatternKind::GreyRamp, PatternKind::ColorBars}) {
            for (uint64_t frame : {0, 3}) {
                SCOPED_TRACE(std::string(packedName) + " frame " + std::to_string(frame));
                const auto p = Render(packedName, width, height, kind, frame);
                const auto u = Render(unpackedName, width, height, kind, frame);
                // Bits after the last pixel are padding and must be zero (35 pixels: the last
                // GigE pair is half full; 350 or 420 bits leave 2 or 4 bits of the last byte).
                const uint32_t usedBits = packed.packing == PixelPacking::GigEPacked
                                              ? packed.sampleBits - 8
                                              : width * height * packed.sampleBits % 8;
                EXPECT_EQ(p.back() >> usedBits, 0);
                // The first 8 bytes of each image hold the stamp, which covers under 8 pixels.
                for (size_t i = 8; i < width * height; ++i) {
                    const uint16_t sample = packed.packing == PixelPacking::LsbFirst
                                                ? LsbFirstSample(p, i, packed.sampleBits)
                                                : GigEPackedSample(p, i, packed.sampleBits);
                    EXPECT_EQ(sample, UnpackedSample(u, i, packed.sampleBits)) << "pixel " << i;
                }
            }
        }
    }
}

// The colour formats show one picture: Bayer formats sample the RGB8 picture through the 2x2
// tile their name spells (first row as named, second row the remaining colours).
TEST(TestPattern, ColourFormatsShowTheSamePicture) {
    const uint32_t width = 96, height = 4; // wide enough for four bars
    const auto rgb = Render("RGB8", width, height, PatternKind::ColorBars, 5);
    const std::pair<const char*, const char*> tiles[] = {
        {"BayerGR8", "GRBG"}, {"BayerRG8", "RGGB"}, {"BayerGB8", "GBRG"}, {"BayerBG8", "BGGR"}};
    for (const auto& [name, tile] : tiles) {
        const auto bayer = Render(name, width, height, PatternKind::ColorBars, 5);
        for (size_t i = 8; i < width * height; ++i) {
            const char filter = tile[(i / width % 2) * 2 + i % width % 2];
            const size_t component = filter == 'R' ? 0 : filter == 'G' ? 1 : 2;
            EXPECT_EQ(bayer[i], rgb[3 * i + component]) << name << " pixel " << i;
        }
    }
    const auto bgr = Render("BGR8", width, height, PatternKind::ColorBars, 5);
    const auto rgba = Render("RGBa8", width, height, PatternKind::ColorBars, 5);
    for (size_t i = 3; i < width * height; ++i) {
        EXPECT_EQ(bgr[3 * i], rgb[3 * i + 2]) << "pixel " << i;
        EXPECT_EQ(bgr[3 * i + 2], rgb[3 * i]) << "pixel " << i;
        const uint8_t expected[4] = {rgb[3 * i], rgb[3 * i + 1], rgb[3 * i + 2], 255};
        EXPECT_TRUE(std::equal(expected, expected + 4, rgba.begin() + 4 * i)) << "pixel " << i;
    }
}

// 4:2:2 stores Y0 Cb Y1 Cr; grey has the mono levels as luma and no chroma (128).
TEST(TestPattern, YCbCrCarriesGreyAsLumaWithNeutralChroma) {
    const auto mono = Render("Mono8", 40, 3, PatternKind::GreyRamp, 1);
    const auto ycbcr = Render("YCbCr422_8", 40, 3, PatternKind::GreyRamp, 1);
    for (size_t i = 8; i < mono.size(); ++i) {
        EXPECT_EQ(ycbcr[2 * i], mono[i]) << "pixel " << i;
        EXPECT_EQ(ycbcr[2 * i + 1], 128) << "pixel " << i;
    }
}

TEST(TestPattern, RejectsWhatItCannotRender) {
    const uint32_t mono8 = FindVirtualPixelFormat("Mono8")->code;
    const uint32_t qoi = FindVirtualPixelFormat("QOI_Mono8")->code;
    const struct {
        uint32_t format, width, height;
    } bad[] = {{0x12345678, 8, 8}, {qoi, 8, 8}, {mono8, 0, 8}, {mono8, 8, 0}};
    const uint8_t image[64] = {};
    for (const auto& b : bad) {
        EXPECT_THROW(TestPattern(b.format, b.width, b.height, PatternKind::Black),
                     std::invalid_argument);
        EXPECT_FALSE(
            MatchesTestPattern(b.format, b.width, b.height, PatternKind::Black, 0, image, 64));
    }
}

TEST(TestPattern, TinyImagesCarryAShortStamp) {
    const auto image = Render("Mono8", 3, 1, PatternKind::GreyRamp, 0x030201);
    EXPECT_EQ(image, (std::vector<uint8_t>{0x01, 0x02, 0x03}));
    EXPECT_EQ(ReadFrameStamp(image.data(), image.size()), 0x030201u);
}

} // namespace
