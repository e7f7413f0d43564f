#include "QoiCodec.h"
#include "virtual/VirtualPixelFormats.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using namespace Orvan;
using namespace Orvan::Producer;

// Smooth areas, runs and noise, so every QOI operation appears.
std::vector<uint8_t> Picture(uint32_t width, uint32_t height, uint32_t channels) {
    std::mt19937 random(7);
    std::vector<uint8_t> pixels(size_t(width) * height * channels);
    for (size_t i = 0; i < pixels.size(); ++i) {
        const size_t pixel = i / channels;
        pixels[i] = pixel % 5 == 0 ? uint8_t(random()) : uint8_t(pixel / 3 + i % channels * 40);
    }
    return pixels;
}

TEST(QoiCodec, ColourRoundTrips) {
    for (uint32_t channels : {3u, 4u}) {
        const auto pixels = Picture(17, 9, channels);
        const auto stream = EncodeQoi(pixels.data(), 17, 9, channels);
        ASSERT_FALSE(stream.empty());
        std::vector<uint8_t> decoded;
        uint32_t width = 0, height = 0, decodedChannels = 0;
        ASSERT_TRUE(
            DecodeQoi(stream.data(), stream.size(), decoded, width, height, decodedChannels));
        EXPECT_EQ(width, 17u);
        EXPECT_EQ(height, 9u);
        EXPECT_EQ(decodedChannels, channels);
        EXPECT_EQ(decoded, pixels);
    }
}

TEST(QoiCodec, GreyTravelsAsEqualRgb) {
    const auto grey = Picture(12, 5, 1);
    const auto stream = EncodeQoi(grey.data(), 12, 5, 1);
    std::vector<uint8_t> rgb, back;
    uint32_t width = 0, height = 0, channels = 0;
    ASSERT_TRUE(DecodeQoi(stream.data(), stream.size(), rgb, width, height, channels));
    ASSERT_EQ(channels, 3u);
    for (size_t i = 0; i < grey.size(); ++i)
        EXPECT_TRUE(rgb[3 * i] == grey[i] && rgb[3 * i + 1] == grey[i] && rgb[3 * i + 2] == grey[i])
            << "pixel " << i;
    ASSERT_TRUE(DecodeQoiAs(stream.data(), stream.size(), 1, back, width, height));
    EXPECT_EQ(back, grey);
}

TEST(QoiCodec, NoiseStaysWithinThePayloadSizeOfTheFormat) {
    std::mt19937 random(11);
    std::vector<uint8_t> noise(32 * 32 * 3);
    for (uint8_t& byte : noise)
        byte = uint8_t(random());
    const auto stream = EncodeQoi(noise.data(), 32, 32, 3);
    EXPECT_LE(stream.size(), ImageBytes(*FindVirtualPixelFormat("QOI_RGB8"), 32, 32));
}

TEST(QoiCodec, RejectsBrokenStreamsAndArguments) {
    const auto pixels = Picture(8, 8, 3);
    const auto stream = EncodeQoi(pixels.data(), 8, 8, 3);
    std::vector<uint8_t> decoded;
    uint32_t width = 0, height = 0, channels = 0;
    auto decodes = [&](const std::vector<uint8_t>& data) {
        return DecodeQoi(data.data(), data.size(), decoded, width, height, channels);
    };
    EXPECT_FALSE(decodes(std::vector<uint8_t>(stream.begin(), stream.end() - 1)));
    std::vector<uint8_t> giant = stream;
    giant[4] = giant[5] = giant[8] = giant[9] = 0x7F; // ~2^30 x 2^30 pixels from 100 bytes
    EXPECT_FALSE(decodes(giant));
    std::vector<uint8_t> notQoi = stream;
    notQoi[0] = 'x';
    EXPECT_FALSE(decodes(notQoi));
    EXPECT_FALSE(decodes({}));
    EXPECT_TRUE(EncodeQoi(pixels.data(), 8, 8, 2).empty());
    EXPECT_TRUE(EncodeQoi(pixels.data(), 0, 8, 3).empty());
    EXPECT_FALSE(DecodeQoiAs(stream.data(), stream.size(), 2, decoded, width, height));
}

} // namespace
