#include "FactorySystem.h"
#include "FakeImage.h"
#include "SpineTestSupport.h"
#include "buffer/PFNCCustom.h"
#include "buffer/PixelFormat.h"
#include "imageproc/ProcessSoftwareLUTImpl.h"

#include <Orvan/OrvanApi.h>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

using namespace Orvan;

namespace {

using ImagePtr = FactoryImagePtr;

struct TraitsDeleter {
    void operator()(IImplementation* p) const { DestroyPixelFormat(p); }
};
using TraitsPtr = std::unique_ptr<IImplementation, TraitsDeleter>;

// Four pixels whose every stored bit is set: each sample holds the largest value of its depth.
FakeImage SaturatedImage(PfncFormat format) {
    const size_t bytes = 4 * GetBitsPerPixel(format) / 8;
    return FakeImage(format, 4, 1, std::vector<uint8_t>(bytes, 0xFF));
}

// The stored form of samples that keep only their top bit, repeated over the block; it tells
// every layout routine apart from the others.
struct DispatchRow {
    PfncFormat format;
    unsigned depth;
    std::vector<uint8_t> topBitPattern;
};

const DispatchRow kDispatch[] = {
    {Mono8, 8, {0x80}},
    {DualBayerRG8, 8, {0x80}},
    {Mono10, 10, {0x00, 0x02}},
    {PolarizeMono12, 12, {0x00, 0x08}},
    {QuadMono16, 16, {0x00, 0x80}},
    {Confidence16, 16, {0x00, 0x80}},
    {BayerGB24, 24, {0x00, 0x00, 0x80}},
    {Mono10p, 10, {0x00, 0x02, 0x08, 0x20, 0x80}},
    {BayerRG12p, 12, {0x00, 0x08, 0x80}},
    {BayerBG10Packed, 10, {0x80, 0x00, 0x80}},
    {PolarizeMono12Packed, 12, {0x80, 0x00, 0x80}},
    {RGB8, 8, {0x80}},
    {BGR12, 12, {0x00, 0x08}},
    {RGB12p, 12, {0x00, 0x08, 0x80}},
    {Coord3D_ABC16s, 16, {0x00, 0x80}},
    {BGR24, 24, {0x00, 0x00, 0x80}},
    {PolarizedStokes_S0_S1_S2_S3_BayerRG12p, 12, {0x00, 0x08, 0x80}},
    {PolarizedDolpAolp_Mono12, 12, {0x00, 0x08}},
    {PolarizedDolpAolp_BayerRG8, 8, {0x80}},
    {YCbCr411_16_CbYYCrYY, 16, {0x00, 0x80}},
    {YCbCr422_24_CbYCrY, 24, {0x00, 0x00, 0x80}},
    {YUV422_8_UYVY, 8, {0x80}},
    {QOI_BayerGB8, 8, {0x80}},
};

std::vector<uint8_t> Repeat(const std::vector<uint8_t>& pattern, size_t bytes) {
    std::vector<uint8_t> out(bytes);
    for (size_t i = 0; i < bytes; ++i)
        out[i] = pattern[i % pattern.size()];
    return out;
}

std::vector<uint8_t> PixelsOf(IImage& image) {
    return {image.GetData(), image.GetData() + image.GetSizeFilled()};
}

} // namespace

class PixelFormatTraits : public WithOpenSystem {};

TEST_F(PixelFormatTraits, EveryTraitsFormatGetsItsOwnClass) {
    size_t classes = 0;
#define ORVAN_CHECK_TRAITS(name, selectLayout, lutLayout)                                          \
    {                                                                                              \
        TraitsPtr traits(GetPixelFormat(name));                                                    \
        EXPECT_NE(dynamic_cast<PF##name*>(traits.get()), nullptr) << #name;                        \
        static_assert(sizeof(PF##name) == sizeof(void*), "traits carry no state");                 \
        ++classes;                                                                                 \
    }
    ORVAN_PF_TRAITS(ORVAN_CHECK_TRAITS)
#undef ORVAN_CHECK_TRAITS
    EXPECT_EQ(classes, 166u);
}

TEST_F(PixelFormatTraits, FormatsWithoutTraitsAreRefusedByName) {
    const struct {
        PfncFormat format;
        const char* message;
    } rows[] = {
        {Mono14, "pixel format 17825829, Mono14 not implemented"},
        {InvalidPixelFormat, "pixel format 0, InvalidPixelFormat not implemented"},
        {static_cast<PfncFormat>(0x12345678),
         "pixel format 305419896, UnknownPixelFormat not implemented"},
        {DualMono10p, "pixel format 2164920390, DualMono10p not implemented"},
        {PolarizedDolp_Mono16, "pixel format 2853218986, PolarizedDolp_Mono16 not implemented"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(SpineTest::Message([&] { GetPixelFormat(row.format); }), row.message);
    EXPECT_NO_THROW(DestroyPixelFormat(nullptr));
}

TEST_F(PixelFormatTraits, SelectBitsDispatchesToTheFormatsLayout) {
    for (const DispatchRow& row : kDispatch) {
        SCOPED_TRACE(GetPixelFormatName(row.format));
        FakeImage source = SaturatedImage(row.format);
        TraitsPtr traits(GetPixelFormat(row.format));
        ImagePtr result(traits->SelectBitsAndScale(&source, 1, 1.0));
        ASSERT_NE(result, nullptr);
        EXPECT_EQ(PixelsOf(*result), Repeat(row.topBitPattern, source.GetSizeFilled()));
        EXPECT_EQ(result->GetPixelFormat(), static_cast<uint64_t>(row.format));
        EXPECT_EQ(result->GetWidth(), 4u);
        EXPECT_EQ(result->GetHeight(), 1u);
    }
}

TEST_F(PixelFormatTraits, LutDispatchesToTheFormatsLayout) {
    for (const DispatchRow& row : kDispatch) {
        SCOPED_TRACE(GetPixelFormatName(row.format));
        // Every entry holds the top bit of the sample depth, so the result is the same pattern.
        const size_t entryBytes = (row.depth + 7) / 8;
        std::vector<uint8_t> lut(ProcessSoftwareLUTImpl::LutSize(row.depth), 0);
        for (size_t entry = 0; entry < lut.size(); entry += entryBytes)
            lut[entry + (row.depth - 1) / 8] = uint8_t(1u << ((row.depth - 1) % 8));
        FakeImage source = SaturatedImage(row.format);
        TraitsPtr traits(GetPixelFormat(row.format));
        ImagePtr result(traits->ProcessSoftwareLUT(&source, lut.data(), lut.size()));
        EXPECT_EQ(PixelsOf(*result), Repeat(row.topBitPattern, source.GetSizeFilled()));
    }
}

TEST_F(PixelFormatTraits, TheTwoDeliberateGapsReportNotImplemented) {
    FakeImage coord = SaturatedImage(Coord3D_C16);
    TraitsPtr coordTraits(GetPixelFormat(Coord3D_C16));
    EXPECT_EQ(SpineTest::Message([&] { coordTraits->SelectBitsAndScale(&coord, 8, 1.0); }),
              "LogicalErrorException: SelectBitsAndScale not implemented for Coord3D_C16 "
              "(SelectBitsAndScaleImpl, SelectBitsAndScale_NoImpl)");
    std::vector<uint8_t> lut(ProcessSoftwareLUTImpl::LutSize(16));
    EXPECT_NE(ImagePtr(coordTraits->ProcessSoftwareLUT(&coord, lut.data(), lut.size())), nullptr);

    FakeImage packed = SaturatedImage(Mono10Packed);
    TraitsPtr packedTraits(GetPixelFormat(Mono10Packed));
    lut.resize(ProcessSoftwareLUTImpl::LutSize(10));
    EXPECT_EQ(SpineTest::Message(
                  [&] { packedTraits->ProcessSoftwareLUT(&packed, lut.data(), lut.size()); }),
              "LogicalErrorException: ProcessSoftwareLUT not implemented for Mono10Packed "
              "(ProcessSoftwareLUTImpl, ProcessSoftwareLUT_NoImpl)");
    EXPECT_NE(ImagePtr(packedTraits->SelectBitsAndScale(&packed, 10, 1.0)), nullptr);
}
