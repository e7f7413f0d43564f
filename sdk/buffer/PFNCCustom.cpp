#include "PFNCCustom.h"

#include "core/ErrorTranslation.h"

#include <string>

namespace Orvan {

namespace {

// One row of the geometry table; a zero field is a query the format rejects.
struct Geometry {
    size_t channels;
    size_t bitsPerChannel;
    size_t bytesPerStep;
    size_t pixelsPerStep;
};

// The formats the geometry queries know. Formats absent here (most 10/12-bit colour, planar,
// float and 3D formats, the CFA and QOI codes) are rejected by all four queries.
#define ORVAN_PFNC_GEOMETRY(G)                                                                     \
    G(Mono8, 1, 8, 1, 1)                                                                           \
    G(BayerGR8, 1, 8, 1, 1)                                                                        \
    G(BayerRG8, 1, 8, 1, 1)                                                                        \
    G(BayerGB8, 1, 8, 1, 1)                                                                        \
    G(BayerBG8, 1, 8, 1, 1)                                                                        \
    G(Mono10, 1, 10, 2, 1)                                                                         \
    G(BayerGR10, 1, 10, 2, 1)                                                                      \
    G(BayerRG10, 1, 10, 2, 1)                                                                      \
    G(BayerGB10, 1, 10, 2, 1)                                                                      \
    G(BayerBG10, 1, 10, 2, 1)                                                                      \
    G(Mono12, 1, 12, 2, 1)                                                                         \
    G(BayerGR12, 1, 12, 2, 1)                                                                      \
    G(BayerRG12, 1, 12, 2, 1)                                                                      \
    G(BayerGB12, 1, 12, 2, 1)                                                                      \
    G(BayerBG12, 1, 12, 2, 1)                                                                      \
    G(Mono16, 1, 16, 2, 1)                                                                         \
    G(BayerGR16, 1, 16, 2, 1)                                                                      \
    G(BayerRG16, 1, 16, 2, 1)                                                                      \
    G(BayerGB16, 1, 16, 2, 1)                                                                      \
    G(BayerBG16, 1, 16, 2, 1)                                                                      \
    G(Mono10p, 1, 10, 5, 4)                                                                        \
    G(BayerGR10p, 1, 10, 5, 4)                                                                     \
    G(BayerRG10p, 1, 10, 5, 4)                                                                     \
    G(BayerGB10p, 1, 10, 5, 4)                                                                     \
    G(BayerBG10p, 1, 10, 5, 4)                                                                     \
    G(Mono12p, 1, 12, 3, 2)                                                                        \
    G(BayerGR12p, 1, 12, 3, 2)                                                                     \
    G(BayerRG12p, 1, 12, 3, 2)                                                                     \
    G(BayerGB12p, 1, 12, 3, 2)                                                                     \
    G(BayerBG12p, 1, 12, 3, 2)                                                                     \
    G(Mono10Packed, 1, 10, 3, 2)                                                                   \
    G(BayerGR10Packed, 1, 10, 3, 2)                                                                \
    G(BayerRG10Packed, 1, 10, 3, 2)                                                                \
    G(BayerGB10Packed, 1, 10, 3, 2)                                                                \
    G(BayerBG10Packed, 1, 10, 3, 2)                                                                \
    G(Mono12Packed, 1, 12, 3, 2)                                                                   \
    G(BayerGR12Packed, 1, 12, 3, 2)                                                                \
    G(BayerRG12Packed, 1, 12, 3, 2)                                                                \
    G(BayerGB12Packed, 1, 12, 3, 2)                                                                \
    G(BayerBG12Packed, 1, 12, 3, 2)                                                                \
    G(Coord3D_C16, 1, 16, 2, 1)                                                                    \
    G(Confidence16, 1, 16, 2, 1)                                                                   \
    G(RGB8, 3, 8, 3, 1)                                                                            \
    G(BGR8, 3, 8, 3, 1)                                                                            \
    G(YUV8_UYV, 3, 8, 3, 1)                                                                        \
    G(YCbCr8, 3, 8, 3, 1)                                                                          \
    G(YCbCr8_CbYCr, 3, 8, 3, 1)                                                                    \
    G(RGB12p, 3, 12, 9, 2)                                                                         \
    G(BGR12p, 3, 12, 9, 2)                                                                         \
    G(RGB16, 3, 16, 6, 1)                                                                          \
    G(BGR16, 3, 16, 6, 1)                                                                          \
    G(Coord3D_ABC16, 3, 16, 6, 1)                                                                  \
    G(RGBa8, 4, 8, 4, 1)                                                                           \
    G(BGRa8, 4, 8, 4, 1)                                                                           \
    G(RGBa16, 4, 16, 8, 1)                                                                         \
    G(BGRa16, 4, 16, 8, 1)                                                                         \
    G(YUV422_8, 3, 8, 4, 2)                                                                        \
    G(YUV422_8_UYVY, 3, 8, 4, 2)                                                                   \
    G(YCbCr422_8, 3, 8, 4, 2)                                                                      \
    G(YCbCr422_8_CbYCrY, 3, 8, 4, 2)                                                               \
    G(YUV411_8_UYYVYY, 3, 8, 6, 4)                                                                 \
    G(YCbCr411_8, 3, 8, 6, 4)                                                                      \
    G(YCbCr411_8_CbYYCrYY, 3, 8, 6, 4)                                                             \
    G(PolarizeMono8, 1, 8, 1, 1)                                                                   \
    G(PolarizedDolp_Mono8, 1, 8, 1, 1)                                                             \
    G(PolarizedAolp_Mono8, 1, 8, 1, 1)                                                             \
    G(PolarizedDolp_BayerRG8, 1, 8, 1, 1)                                                          \
    G(PolarizedAolp_BayerRG8, 1, 8, 1, 1)                                                          \
    G(PolarizeMono12Packed, 1, 12, 3, 2)                                                           \
    G(PolarizeMono12p, 1, 12, 3, 2)                                                                \
    G(PolarizedDolp_Mono12p, 1, 12, 3, 2)                                                          \
    G(PolarizedAolp_Mono12p, 1, 12, 3, 2)                                                          \
    G(PolarizedDolp_BayerRG12p, 1, 12, 3, 2)                                                       \
    G(PolarizedAolp_BayerRG12p, 1, 12, 3, 2)                                                       \
    G(PolarizeMono16, 1, 16, 2, 1)                                                                 \
    G(PolarizeMono12, 1, 12, 2, 1)                                                                 \
    G(Coord3D_C16s, 1, 16, 2, 1)                                                                   \
    G(Mono24, 1, 24, 3, 1)                                                                         \
    G(BayerGR24, 1, 24, 3, 1)                                                                      \
    G(BayerRG24, 1, 24, 3, 1)                                                                      \
    G(BayerGB24, 1, 24, 3, 1)                                                                      \
    G(BayerBG24, 1, 24, 3, 1)                                                                      \
    G(PolarizedDolpAolp_Mono8, 2, 8, 2, 1)                                                         \
    G(PolarizedDolpAngle_Mono8, 2, 0, 0, 0)                                                        \
    G(PolarizedDolpAolp_BayerRG8, 2, 8, 2, 1)                                                      \
    G(PolarizedDolpAngle_BayerRG8, 2, 0, 0, 0)                                                     \
    G(PolarizedStokes_S0_S1_S2_Mono8, 3, 8, 3, 3)                                                  \
    G(PolarizedDolpAolp_Mono12p, 2, 12, 3, 1)                                                      \
    G(PolarizedDolpAngle_Mono12p, 2, 0, 0, 0)                                                      \
    G(PolarizedStokes_S0_S1_S2_BayerRG8, 3, 8, 3, 3)                                               \
    G(PolarizedDolpAolp_BayerRG12p, 2, 12, 3, 1)                                                   \
    G(PolarizedDolpAngle_BayerRG12p, 2, 0, 0, 0)                                                   \
    G(YCbCr411_16_CbYYCrYY, 3, 16, 12, 4)                                                          \
    G(PolarizedAngles_0d_45d_90d_135d_Mono8, 4, 8, 4, 1)                                           \
    G(PolarizedStokes_S0_S1_S2_S3_Mono8, 4, 8, 4, 1)                                               \
    G(PolarizedDolpAolp_Mono12, 2, 0, 0, 0)                                                        \
    G(PolarizedDolpAngle_Mono16, 2, 0, 0, 0)                                                       \
    G(PolarizedAngles_0d_45d_90d_135d_BayerRG8, 4, 8, 4, 1)                                        \
    G(PolarizedStokes_S0_S1_S2_S3_BayerRG8, 4, 8, 4, 1)                                            \
    G(PolarizedDolpAolp_BayerRG12, 2, 0, 0, 0)                                                     \
    G(PolarizedDolpAngle_BayerRG16, 2, 0, 0, 0)                                                    \
    G(YCbCr422_16_CbYCrY, 3, 16, 8, 2)                                                             \
    G(PolarizedStokes_S0_S1_S2_Mono12p, 3, 12, 9, 2)                                               \
    G(PolarizedStokes_S0_S1_S2_BayerRG12p, 3, 12, 9, 2)                                            \
    G(YCbCr411_24_CbYYCrYY, 3, 24, 18, 4)                                                          \
    G(PolarizedAngles_0d_45d_90d_135d_Mono12p, 4, 12, 6, 1)                                        \
    G(PolarizedStokes_S0_S1_S2_Mono16, 3, 16, 6, 1)                                                \
    G(PolarizedStokes_S0_S1_S2_S3_Mono12p, 4, 12, 6, 1)                                            \
    G(PolarizedAngles_0d_45d_90d_135d_BayerRG12p, 4, 12, 6, 1)                                     \
    G(PolarizedStokes_S0_S1_S2_S3_BayerRG12p, 4, 12, 6, 1)                                         \
    G(Coord3D_ABC16s, 3, 16, 6, 1)                                                                 \
    G(YCbCr422_24_CbYCrY, 3, 24, 12, 2)                                                            \
    G(PolarizedStokes_S0_S1_S2_S3_Mono16, 4, 16, 8, 1)                                             \
    G(Coord3D_ABCY16s, 4, 16, 8, 1)                                                                \
    G(Coord3D_ABCY16, 4, 16, 8, 1)                                                                 \
    G(RGB24, 3, 24, 9, 1)                                                                          \
    G(BGR24, 3, 24, 9, 1)

Geometry LookUpGeometry(uint64_t pixelFormat) {
    switch (pixelFormat) {
#define ORVAN_GEOMETRY_CASE(name, ch, bits, bytes, px)                                             \
    case name:                                                                                     \
        return Geometry{ch, bits, bytes, px};
        ORVAN_PFNC_GEOMETRY(ORVAN_GEOMETRY_CASE)
#undef ORVAN_GEOMETRY_CASE
        // Every multi-tap code reports its tap count as channels and nothing else; the _2ch and
        // _4ch codes are not listed at all.
#define ORVAN_TAP_CASES(base)                                                                      \
    case Dual##base:                                                                               \
        return Geometry{2, 0, 0, 0};                                                               \
    case Quad##base:                                                                               \
        return Geometry{4, 0, 0, 0};
        ORVAN_PFNC_TAP_BASES(ORVAN_TAP_CASES)
#undef ORVAN_TAP_CASES
    default:
        return Geometry{0, 0, 0, 0};
    }
}

// A code wider than 32 bits is not a format: truncating it could alias a listed code.
const char* NameOfWideCode(uint64_t pixelFormat) {
    return pixelFormat > UINT32_MAX ? "UnknownPixelFormat"
                                    : GetPixelFormatName(static_cast<PfncFormat>(pixelFormat));
}

size_t RequireListed(size_t value, const char* query, uint64_t pixelFormat) {
    if (value == 0)
        ThrowLibraryError<GenICam::InvalidArgumentException>(
            std::string(query) + " not implemented for " + NameOfWideCode(pixelFormat),
            ORVAN_SITE("PFNCCustom", query));
    return value;
}

} // namespace

const char* GetPixelFormatName(PfncFormat pixelFormat) {
    switch (static_cast<uint32_t>(pixelFormat)) {
    case InvalidPixelFormat:
        return "InvalidPixelFormat";
#define ORVAN_NAME_CASE(name, code)                                                                \
    case name:                                                                                     \
        return #name;
        ORVAN_PFNC_STANDARD_FORMATS(ORVAN_NAME_CASE)
        ORVAN_PFNC_VENDOR_FORMATS(ORVAN_NAME_CASE)
#undef ORVAN_NAME_CASE
#define ORVAN_TAP_NAME_CASES(base)                                                                 \
    case Dual##base:                                                                               \
        return "Dual" #base;                                                                       \
    case Quad##base:                                                                               \
        return "Quad" #base;
        ORVAN_PFNC_TAP_BASES(ORVAN_TAP_NAME_CASES)
#undef ORVAN_TAP_NAME_CASES
#define ORVAN_WIDE_TAP_NAME_CASES(base)                                                            \
    case Dual##base##_2ch:                                                                         \
        return "Dual" #base "_2ch";                                                                \
    case Quad##base##_4ch:                                                                         \
        return "Quad" #base "_4ch";
        ORVAN_PFNC_WIDE_TAP_BASES(ORVAN_WIDE_TAP_NAME_CASES)
#undef ORVAN_WIDE_TAP_NAME_CASES
    default:
        return "UnknownPixelFormat";
    }
}

size_t GetNumChannels(uint64_t pixelFormat) {
    return RequireListed(LookUpGeometry(pixelFormat).channels, "GetNumChannels", pixelFormat);
}

size_t GetBitsPerChannel(uint64_t pixelFormat) {
    return RequireListed(LookUpGeometry(pixelFormat).bitsPerChannel, "GetBitsPerChannel",
                         pixelFormat);
}

size_t GetBytesPerStep(uint64_t pixelFormat) {
    return RequireListed(LookUpGeometry(pixelFormat).bytesPerStep, "GetBytesPerStep", pixelFormat);
}

size_t GetPixelsPerStep(uint64_t pixelFormat) {
    return RequireListed(LookUpGeometry(pixelFormat).pixelsPerStep, "GetPixelsPerStep",
                         pixelFormat);
}

} // namespace Orvan
