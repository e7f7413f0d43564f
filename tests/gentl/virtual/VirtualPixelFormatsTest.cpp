#include "virtual/VirtualPixelFormats.h"

#include <Orvan/PfncFormatList.h>
#include <gtest/gtest.h>

#include <map>
#include <string>

namespace {

using namespace Orvan::Producer;

// Bytes of a 7 x 3 image (21 pixels, odd, so packed tails are rounded up) for every format the
// cameras must offer, worked out by hand from each layout.
std::map<std::string, size_t> ExpectedBytesOf7x3() {
    std::map<std::string, size_t> expected = {
        {"Mono8", 21},
        {"Mono10", 42},
        {"Mono12", 42},
        {"Mono16", 42},
        {"Mono10p", 27},
        {"Mono12p", 32},
        {"Mono10Packed", 32},
        {"Mono12Packed", 32},
        {"RGB8", 63},
        {"BGR8", 63},
        {"RGBa8", 84},
        {"YCbCr422_8", 42},
        {"QOI_Mono8", 21 * 4 + 22},
        {"QOI_RGB8", 21 * 4 + 22},
    };
    const std::map<std::string, size_t> bayerDepths = {
        {"8", 21},   {"10", 42},  {"12", 42},       {"16", 42},
        {"10p", 27}, {"12p", 32}, {"10Packed", 32}, {"12Packed", 32}};
    for (const char* order : {"GR", "RG", "GB", "BG"})
        for (const auto& [depth, bytes] : bayerDepths)
            expected[std::string("Bayer") + order + depth] = bytes;
    return expected;
}

TEST(VirtualPixelFormats, OffersExactlyTheListedFormatsWithTheirSizes) {
    const auto expected = ExpectedBytesOf7x3();
    EXPECT_EQ(VirtualPixelFormats().size(), expected.size());
    for (const auto& [name, bytes] : expected) {
        const VirtualPixelFormat* format = FindVirtualPixelFormat(name);
        ASSERT_NE(format, nullptr) << name;
        EXPECT_EQ(ImageBytes(*format, 7, 3), bytes) << name;
    }
}

// PFNC puts the bits a pixel occupies in bits 16-23 of the code and marks custom formats with
// bit 31: a check of the table that does not depend on how it was typed in.
TEST(VirtualPixelFormats, CodesCarryTheirPixelSizeAndCustomFlag) {
    for (const VirtualPixelFormat& format : VirtualPixelFormats()) {
        EXPECT_EQ((format.code >> 16) & 0xFF, format.bitsPerPixel) << format.name;
        const bool custom = (format.code & 0x80000000u) != 0;
        EXPECT_EQ(custom, format.packing == PixelPacking::Qoi) << format.name;
    }
}

// The SDK reads these codes back through its own list of PFNC and vendor codes, typed in
// separately from the published document: the two must agree on every format.
TEST(VirtualPixelFormats, CodesAgreeWithTheSdkList) {
    std::map<std::string, uint32_t> sdk;
#define ORVAN_ADD_CODE(name, code) sdk.emplace(#name, code);
    ORVAN_PFNC_STANDARD_FORMATS(ORVAN_ADD_CODE)
    ORVAN_PFNC_VENDOR_FORMATS(ORVAN_ADD_CODE)
#undef ORVAN_ADD_CODE
    for (const VirtualPixelFormat& format : VirtualPixelFormats()) {
        const auto it = sdk.find(format.name);
        ASSERT_NE(it, sdk.end()) << format.name;
        EXPECT_EQ(it->second, format.code) << format.name;
    }
}

TEST(VirtualPixelFormats, LookupsFindEachFormatByCodeAndName) {
    for (const VirtualPixelFormat& format : VirtualPixelFormats()) {
        EXPECT_EQ(FindVirtualPixelFormat(format.code), &format) << format.name;
        EXPECT_EQ(FindVirtualPixelFormat(std::string(format.name)), &format) << format.name;
    }
    EXPECT_EQ(FindVirtualPixelFormat(0u), nullptr);
    EXPECT_EQ(FindVirtualPixelFormat("Mono9"), nullptr);
}

} // namespace
