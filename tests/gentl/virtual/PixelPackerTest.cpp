#include "virtual/PixelPacker.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace Orvan::Producer;

std::vector<uint8_t> Pack(const char* format, std::vector<uint16_t> samples) {
    std::vector<uint8_t> out;
    PixelPacker packer(*FindVirtualPixelFormat(format), out);
    for (uint16_t sample : samples)
        packer.Put(sample);
    packer.Flush();
    return out;
}

// Byte layouts worked out by hand from the published format descriptions.
TEST(PixelPacker, PacksEachLayoutAsPublished) {
    // p formats: one little-endian bit stream; 0x123 << 12 | 0xABC = 0x123ABC.
    EXPECT_EQ(Pack("Mono12p", {0xABC, 0x123}), (std::vector<uint8_t>{0xBC, 0x3A, 0x12}));
    // 0x2AA << 30 | 0x155 << 20 | 0 << 10 | 0x3FF = 0xAA955003FF.
    EXPECT_EQ(Pack("Mono10p", {0x3FF, 0x000, 0x155, 0x2AA}),
              (std::vector<uint8_t>{0xFF, 0x03, 0x50, 0x95, 0xAA}));
    // GigE Vision Packed: high bytes outside, low bits of the first pixel at bit 0 and of the
    // second at bit 4 of the middle byte.
    EXPECT_EQ(Pack("Mono12Packed", {0xABC, 0x123}), (std::vector<uint8_t>{0xAB, 0x3C, 0x12}));
    EXPECT_EQ(Pack("BayerRG10Packed", {0x2AB, 0x155}), (std::vector<uint8_t>{0xAA, 0x13, 0x55}));
    // Little-endian 16-bit containers.
    EXPECT_EQ(Pack("Mono12", {0xABC}), (std::vector<uint8_t>{0xBC, 0x0A}));
}

TEST(PixelPacker, PadsAnUnfinishedGroupWithZeros) {
    EXPECT_EQ(Pack("Mono12Packed", {0xABC}), (std::vector<uint8_t>{0xAB, 0x0C}));
    EXPECT_EQ(Pack("Mono10p", {0x3FF}), (std::vector<uint8_t>{0xFF, 0x03}));
    EXPECT_EQ(Pack("Mono12p", {0xFFFF}), (std::vector<uint8_t>{0xFF, 0x0F})); // excess bits dropped
}

} // namespace
