#include "SpineTestSupport.h"
#include "buffer/PFNCCustom.h"

#include <Orvan/OrvanApi.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

using namespace Orvan;

namespace {

// Geometry rows; a zero column is a query that must throw.
struct GeometryRow {
    uint64_t code;
    size_t channels, bitsPerChannel, bytesPerStep, pixelsPerStep;
};

const GeometryRow kGeometry[] = {
    {Mono8, 1, 8, 1, 1},
    {BayerBG8, 1, 8, 1, 1},
    {Mono10, 1, 10, 2, 1},
    {BayerGB12, 1, 12, 2, 1},
    {BayerRG16, 1, 16, 2, 1},
    {Mono10p, 1, 10, 5, 4},
    {BayerGR10p, 1, 10, 5, 4},
    {Mono12p, 1, 12, 3, 2},
    {Mono10Packed, 1, 10, 3, 2},
    {BayerBG12Packed, 1, 12, 3, 2},
    {Coord3D_C16, 1, 16, 2, 1},
    {Confidence16, 1, 16, 2, 1},
    {YUV8_UYV, 3, 8, 3, 1},
    {BGR12p, 3, 12, 9, 2},
    {Coord3D_ABC16, 3, 16, 6, 1},
    {RGBa8, 4, 8, 4, 1},
    {BGRa16, 4, 16, 8, 1},
    {YCbCr422_8_CbYCrY, 3, 8, 4, 2},
    {YCbCr411_8, 3, 8, 6, 4},
    // Vendor rows, including the deliberate oddities.
    {PolarizeMono12Packed, 1, 12, 3, 2},
    {PolarizeMono12, 1, 12, 2, 1},
    {Mono24, 1, 24, 3, 1},
    {BayerBG24, 1, 24, 3, 1},
    {PolarizedStokes_S0_S1_S2_Mono8, 3, 8, 3, 3},
    {PolarizedStokes_S0_S1_S2_BayerRG8, 3, 8, 3, 3},
    {PolarizedDolpAolp_Mono12p, 2, 12, 3, 1},
    {PolarizedDolpAolp_Mono12, 2, 0, 0, 0},
    {PolarizedDolpAngle_Mono8, 2, 0, 0, 0},
    {PolarizedDolpAngle_BayerRG16, 2, 0, 0, 0},
    {PolarizedDolp_Mono12, 0, 0, 0, 0},
    {YCbCr411_24_CbYYCrYY, 3, 24, 18, 4},
    {YCbCr422_16_CbYCrY, 3, 16, 8, 2},
    {PolarizedAngles_0d_45d_90d_135d_Mono12p, 4, 12, 6, 1},
    {Coord3D_ABCY16s, 4, 16, 8, 1},
    {RGB24, 3, 24, 9, 1},
    {DualMono8, 2, 0, 0, 0},
    {QuadBayerRG12p, 4, 0, 0, 0},
    {DualBayerGB10Packed, 2, 0, 0, 0},
    {DualMono10_2ch, 0, 0, 0, 0},
    {QuadBayerGR16_4ch, 0, 0, 0, 0},
    // Known to the name table, rejected by every query.
    {RGB12, 0, 0, 0, 0},
    {Mono14, 0, 0, 0, 0},
    {Coord3D_ABC16_Planar, 0, 0, 0, 0},
    {Confidence8, 0, 0, 0, 0},
    {YCbCr16_CbYCr, 0, 0, 0, 0},
    {YCbCr24_CbYCr, 0, 0, 0, 0},
    {QOI_RGB8, 0, 0, 0, 0},
    {CFA_RBGG10p, 0, 0, 0, 0},
    {MorluXYTP128f, 0, 0, 0, 0},
    {PolarizedDolp_Mono16, 0, 0, 0, 0},
    {0, 0, 0, 0, 0},
    {0x12345678, 0, 0, 0, 0},
    // Wider than a code: must not alias Mono8 by truncation.
    {0x100000000ull | Mono8, 0, 0, 0, 0},
};

struct Query {
    const char* name;
    std::function<size_t(uint64_t)> function;
    size_t GeometryRow::*column;
};

const Query kQueries[] = {
    {"GetNumChannels", GetNumChannels, &GeometryRow::channels},
    {"GetBitsPerChannel", GetBitsPerChannel, &GeometryRow::bitsPerChannel},
    {"GetBytesPerStep", GetBytesPerStep, &GeometryRow::bytesPerStep},
    {"GetPixelsPerStep", GetPixelsPerStep, &GeometryRow::pixelsPerStep},
};

std::string NameOf(uint64_t code) {
    return code > UINT32_MAX ? "UnknownPixelFormat"
                             : GetPixelFormatName(static_cast<PfncFormat>(code));
}

} // namespace

TEST(PixelFormatCatalogue, GeometryQueriesAnswerOrRefuseByTable) {
    for (const GeometryRow& row : kGeometry) {
        for (const Query& query : kQueries) {
            SCOPED_TRACE(std::string(query.name) + " of " + NameOf(row.code));
            const size_t expected = row.*query.column;
            if (expected != 0)
                EXPECT_EQ(query.function(row.code), expected);
            else
                EXPECT_EQ(SpineTest::Message([&] { query.function(row.code); }),
                          "InvalidArgumentException: " + std::string(query.name) +
                              " not implemented for " + NameOf(row.code) + " (PFNCCustom, " +
                              query.name + ")");
        }
    }
}

TEST(PixelFormatCatalogue, PublishedAndDerivedCodesCarryTheirNames) {
    const struct {
        uint64_t code;
        const char* name;
    } rows[] = {
        {0x01080001, "Mono8"},
        {0x010C0059, "BayerRG12p"},
        {0x02100043, "YCbCr422_8_CbYCrY"},
        {0x026000C0, "Coord3D_ABC32f"},
        {0x011000C7, "Confidence16"},
        {0x01100025, "Mono14"},
        {0x010C0004, "Mono10Packed"},
        {0x01200111, "Mono32"},
        {0x0140011F, "Data64f"},
        {0x81080001, "PolarizeMono8"},
        {0x81180500, "Mono24"},
        {0x81180504, "BayerBG24"},
        {0xAA10AAAA, "PolarizedDolp_Mono16"},
        {0xBB10BBBB, "PolarizedDolp_BayerRG16"},
        {0x82804556, "MorluXYTP128f"},
        {0x81081001, "DualMono8"},
        {0x810C3059, "QuadBayerRG12p"},
        {0x810C1004, "DualMono10Packed"},
        {0x81201003, "DualMono10_2ch"},
        {0x81203001, "QuadMono8_4ch"},
        {0x8140302E, "QuadBayerGR16_4ch"},
        {0, "InvalidPixelFormat"},
        {0x12345678, "UnknownPixelFormat"},
        // The tap rule is applied to listed bases only.
        {0x81101025, "UnknownPixelFormat"},
        // A Dual code with the vendor flag missing is just an unknown code.
        {0x01081001, "UnknownPixelFormat"},
    };
    for (const auto& row : rows)
        EXPECT_STREQ(GetPixelFormatName(static_cast<PfncFormat>(row.code)), row.name)
            << std::hex << row.code;
}

TEST(PixelFormatCatalogue, BitsPerPixelIsTheCodeFieldForAnyCode) {
    EXPECT_EQ(GetBitsPerPixel(MorluXYTP128f), 128u);
    EXPECT_EQ(GetBitsPerPixel(0), 0u);
    EXPECT_EQ(GetBitsPerPixel(0x12345678), 0x34u);
    EXPECT_EQ(GetBitsPerPixel(QuadMono8_4ch), 32u);
    EXPECT_EQ(GetBitsPerPixel(0xFFFFFFFFFFFFFFFFull), 0xFFu);
}
