// The per-format traits classes: one stateless class per format with processing support, each
// forwarding to the layout routine its format's samples are stored in.
#ifndef ORVAN_BUFFER_PIXELFORMAT_H
#define ORVAN_BUFFER_PIXELFORMAT_H

#include "imageproc/ProcessSoftwareLUTImpl.h"
#include "imageproc/SelectBitsAndScaleImpl.h"

#include <Orvan/PixelFormat.h>

namespace Orvan {

// (format, bit-selection layout, look-up-table layout). Coord3D_C16 selects bits and
// Mono10Packed applies tables through the routines that refuse: kept so on purpose.
#define ORVAN_PF_TRAITS(T)                                                                         \
    T(BGR12, 12Bits3Ch, 12Bits3Ch)                                                                 \
    T(BGR12p, 12pBits3Ch, 12pBits3Ch)                                                              \
    T(BGR16, 16Bits3Ch, 16Bits3Ch)                                                                 \
    T(BGR24, 24Bits3Ch, 24Bits3Ch)                                                                 \
    T(BGR8, 8Bits3Ch, 8Bits3Ch)                                                                    \
    T(BGRa16, 16Bits4Ch, 16Bits4Ch)                                                                \
    T(BGRa8, 8Bits4Ch, 8Bits4Ch)                                                                   \
    T(BayerBG8, 8Bits, 8Bits)                                                                      \
    T(BayerBG10, 10Bits, 10Bits)                                                                   \
    T(BayerBG10Packed, 10PackedBits, 10PackedBits)                                                 \
    T(BayerBG10p, 10pBits, 10pBits)                                                                \
    T(BayerBG12, 12Bits, 12Bits)                                                                   \
    T(BayerBG12Packed, 12PackedBits, 12PackedBits)                                                 \
    T(BayerBG12p, 12pBits, 12pBits)                                                                \
    T(BayerBG16, 16Bits, 16Bits)                                                                   \
    T(BayerBG24, 24Bits, 24Bits)                                                                   \
    T(BayerGB8, 8Bits, 8Bits)                                                                      \
    T(BayerGB10, 10Bits, 10Bits)                                                                   \
    T(BayerGB10Packed, 10PackedBits, 10PackedBits)                                                 \
    T(BayerGB10p, 10pBits, 10pBits)                                                                \
    T(BayerGB12, 12Bits, 12Bits)                                                                   \
    T(BayerGB12Packed, 12PackedBits, 12PackedBits)                                                 \
    T(BayerGB12p, 12pBits, 12pBits)                                                                \
    T(BayerGB16, 16Bits, 16Bits)                                                                   \
    T(BayerGB24, 24Bits, 24Bits)                                                                   \
    T(BayerGR8, 8Bits, 8Bits)                                                                      \
    T(BayerGR10, 10Bits, 10Bits)                                                                   \
    T(BayerGR10Packed, 10PackedBits, 10PackedBits)                                                 \
    T(BayerGR10p, 10pBits, 10pBits)                                                                \
    T(BayerGR12, 12Bits, 12Bits)                                                                   \
    T(BayerGR12Packed, 12PackedBits, 12PackedBits)                                                 \
    T(BayerGR12p, 12pBits, 12pBits)                                                                \
    T(BayerGR16, 16Bits, 16Bits)                                                                   \
    T(BayerGR24, 24Bits, 24Bits)                                                                   \
    T(BayerRG8, 8Bits, 8Bits)                                                                      \
    T(BayerRG10, 10Bits, 10Bits)                                                                   \
    T(BayerRG10Packed, 10PackedBits, 10PackedBits)                                                 \
    T(BayerRG10p, 10pBits, 10pBits)                                                                \
    T(BayerRG12, 12Bits, 12Bits)                                                                   \
    T(BayerRG12Packed, 12PackedBits, 12PackedBits)                                                 \
    T(BayerRG12p, 12pBits, 12pBits)                                                                \
    T(BayerRG16, 16Bits, 16Bits)                                                                   \
    T(BayerRG24, 24Bits, 24Bits)                                                                   \
    T(Confidence16, 16Bits, 16Bits)                                                                \
    T(Coord3D_ABC16, 16Bits3Ch, 16Bits3Ch)                                                         \
    T(Coord3D_ABC16s, 16Bits3Ch, 16Bits3Ch)                                                        \
    T(Coord3D_ABCY16, 16Bits4Ch, 16Bits4Ch)                                                        \
    T(Coord3D_ABCY16s, 16Bits4Ch, 16Bits4Ch)                                                       \
    T(Coord3D_C16, NoImpl, 16Bits)                                                                 \
    T(Coord3D_C16s, 16Bits, 16Bits)                                                                \
    T(DualMono8, 8Bits, 8Bits)                                                                     \
    T(DualMono10, 10Bits, 10Bits)                                                                  \
    T(DualMono12, 12Bits, 12Bits)                                                                  \
    T(DualMono16, 16Bits, 16Bits)                                                                  \
    T(DualBayerBG8, 8Bits, 8Bits)                                                                  \
    T(DualBayerBG10, 10Bits, 10Bits)                                                               \
    T(DualBayerBG12, 12Bits, 12Bits)                                                               \
    T(DualBayerBG16, 16Bits, 16Bits)                                                               \
    T(DualBayerGB8, 8Bits, 8Bits)                                                                  \
    T(DualBayerGB10, 10Bits, 10Bits)                                                               \
    T(DualBayerGB12, 12Bits, 12Bits)                                                               \
    T(DualBayerGB16, 16Bits, 16Bits)                                                               \
    T(DualBayerGR8, 8Bits, 8Bits)                                                                  \
    T(DualBayerGR10, 10Bits, 10Bits)                                                               \
    T(DualBayerGR12, 12Bits, 12Bits)                                                               \
    T(DualBayerGR16, 16Bits, 16Bits)                                                               \
    T(DualBayerRG8, 8Bits, 8Bits)                                                                  \
    T(DualBayerRG10, 10Bits, 10Bits)                                                               \
    T(DualBayerRG12, 12Bits, 12Bits)                                                               \
    T(DualBayerRG16, 16Bits, 16Bits)                                                               \
    T(QuadMono8, 8Bits, 8Bits)                                                                     \
    T(QuadMono10, 10Bits, 10Bits)                                                                  \
    T(QuadMono12, 12Bits, 12Bits)                                                                  \
    T(QuadMono16, 16Bits, 16Bits)                                                                  \
    T(QuadBayerBG8, 8Bits, 8Bits)                                                                  \
    T(QuadBayerBG10, 10Bits, 10Bits)                                                               \
    T(QuadBayerBG12, 12Bits, 12Bits)                                                               \
    T(QuadBayerBG16, 16Bits, 16Bits)                                                               \
    T(QuadBayerGB8, 8Bits, 8Bits)                                                                  \
    T(QuadBayerGB10, 10Bits, 10Bits)                                                               \
    T(QuadBayerGB12, 12Bits, 12Bits)                                                               \
    T(QuadBayerGB16, 16Bits, 16Bits)                                                               \
    T(QuadBayerGR8, 8Bits, 8Bits)                                                                  \
    T(QuadBayerGR10, 10Bits, 10Bits)                                                               \
    T(QuadBayerGR12, 12Bits, 12Bits)                                                               \
    T(QuadBayerGR16, 16Bits, 16Bits)                                                               \
    T(QuadBayerRG8, 8Bits, 8Bits)                                                                  \
    T(QuadBayerRG10, 10Bits, 10Bits)                                                               \
    T(QuadBayerRG12, 12Bits, 12Bits)                                                               \
    T(QuadBayerRG16, 16Bits, 16Bits)                                                               \
    T(Mono8, 8Bits, 8Bits)                                                                         \
    T(Mono10, 10Bits, 10Bits)                                                                      \
    T(Mono10Packed, 10PackedBits, NoImpl)                                                          \
    T(Mono10p, 10pBits, 10pBits)                                                                   \
    T(Mono12, 12Bits, 12Bits)                                                                      \
    T(Mono12Packed, 12PackedBits, 12PackedBits)                                                    \
    T(Mono12p, 12pBits, 12pBits)                                                                   \
    T(Mono16, 16Bits, 16Bits)                                                                      \
    T(Mono24, 24Bits, 24Bits)                                                                      \
    T(PolarizeMono8, 8Bits, 8Bits)                                                                 \
    T(PolarizeMono12, 12Bits, 12Bits)                                                              \
    T(PolarizeMono12Packed, 12PackedBits, 12PackedBits)                                            \
    T(PolarizeMono12p, 12pBits, 12pBits)                                                           \
    T(PolarizeMono16, 16Bits, 16Bits)                                                              \
    T(PolarizedAngles_0d_45d_90d_135d_Mono8, 8Bits4Ch, 8Bits4Ch)                                   \
    T(PolarizedAngles_0d_45d_90d_135d_Mono12p, 12pBits4Ch, 12pBits4Ch)                             \
    T(PolarizedAngles_0d_45d_90d_135d_BayerRG8, 8Bits4Ch, 8Bits4Ch)                                \
    T(PolarizedAngles_0d_45d_90d_135d_BayerRG12p, 12pBits4Ch, 12pBits4Ch)                          \
    T(PolarizedAolp_Mono8, 8Bits, 8Bits)                                                           \
    T(PolarizedAolp_Mono12, 12Bits, 12Bits)                                                        \
    T(PolarizedAolp_Mono12p, 12pBits, 12pBits)                                                     \
    T(PolarizedAolp_BayerRG8, 8Bits, 8Bits)                                                        \
    T(PolarizedAolp_BayerRG12, 12Bits, 12Bits)                                                     \
    T(PolarizedAolp_BayerRG12p, 12pBits, 12pBits)                                                  \
    T(PolarizedDolp_Mono8, 8Bits, 8Bits)                                                           \
    T(PolarizedDolp_Mono12, 12Bits, 12Bits)                                                        \
    T(PolarizedDolp_Mono12p, 12pBits, 12pBits)                                                     \
    T(PolarizedDolp_BayerRG8, 8Bits, 8Bits)                                                        \
    T(PolarizedDolp_BayerRG12, 12Bits, 12Bits)                                                     \
    T(PolarizedDolp_BayerRG12p, 12pBits, 12pBits)                                                  \
    T(PolarizedDolpAolp_Mono8, 8Bits2Ch, 8Bits2Ch)                                                 \
    T(PolarizedDolpAolp_Mono12, 12Bits2Ch, 12Bits2Ch)                                              \
    T(PolarizedDolpAolp_Mono12p, 12pBits2Ch, 12pBits2Ch)                                           \
    T(PolarizedDolpAolp_BayerRG8, 8Bits2Ch, 8Bits2Ch)                                              \
    T(PolarizedDolpAolp_BayerRG12, 12Bits2Ch, 12Bits2Ch)                                           \
    T(PolarizedDolpAolp_BayerRG12p, 12pBits2Ch, 12pBits2Ch)                                        \
    T(PolarizedStokes_S0_S1_S2_Mono8, 8Bits3Ch, 8Bits3Ch)                                          \
    T(PolarizedStokes_S0_S1_S2_Mono12p, 12pBits3Ch, 12pBits3Ch)                                    \
    T(PolarizedStokes_S0_S1_S2_Mono16, 16Bits3Ch, 16Bits3Ch)                                       \
    T(PolarizedStokes_S0_S1_S2_BayerRG8, 8Bits3Ch, 8Bits3Ch)                                       \
    T(PolarizedStokes_S0_S1_S2_BayerRG12p, 12pBits3Ch, 12pBits3Ch)                                 \
    T(PolarizedStokes_S0_S1_S2_S3_Mono8, 8Bits4Ch, 8Bits4Ch)                                       \
    T(PolarizedStokes_S0_S1_S2_S3_Mono12p, 12pBits4Ch, 12pBits4Ch)                                 \
    T(PolarizedStokes_S0_S1_S2_S3_Mono16, 16Bits4Ch, 16Bits4Ch)                                    \
    T(PolarizedStokes_S0_S1_S2_S3_BayerRG8, 8Bits4Ch, 8Bits4Ch)                                    \
    T(PolarizedStokes_S0_S1_S2_S3_BayerRG12p, 12pBits4Ch, 12pBits4Ch)                              \
    T(QOI_Mono8, 8Bits, 8Bits)                                                                     \
    T(QOI_BayerGR8, 8Bits, 8Bits)                                                                  \
    T(QOI_BayerRG8, 8Bits, 8Bits)                                                                  \
    T(QOI_BayerGB8, 8Bits, 8Bits)                                                                  \
    T(QOI_BayerBG8, 8Bits, 8Bits)                                                                  \
    T(QOI_RGB8, 8Bits3Ch, 8Bits3Ch)                                                                \
    T(QOI_BGR8, 8Bits3Ch, 8Bits3Ch)                                                                \
    T(QOI_YCbCr8, 8Bits3Ch, 8Bits3Ch)                                                              \
    T(QOI_YCbCr8_CbYCr, 8Bits3Ch, 8Bits3Ch)                                                        \
    T(RGB12, 12Bits3Ch, 12Bits3Ch)                                                                 \
    T(RGB12p, 12pBits3Ch, 12pBits3Ch)                                                              \
    T(RGB16, 16Bits3Ch, 16Bits3Ch)                                                                 \
    T(RGB24, 24Bits3Ch, 24Bits3Ch)                                                                 \
    T(RGB8, 8Bits3Ch, 8Bits3Ch)                                                                    \
    T(RGBa16, 16Bits4Ch, 16Bits4Ch)                                                                \
    T(RGBa8, 8Bits4Ch, 8Bits4Ch)                                                                   \
    T(YCbCr411_16_CbYYCrYY, 16Bits411, 16Bits411)                                                  \
    T(YCbCr411_24_CbYYCrYY, 24Bits411, 24Bits411)                                                  \
    T(YCbCr411_8, 8Bits411, 8Bits411)                                                              \
    T(YCbCr411_8_CbYYCrYY, 8Bits411, 8Bits411)                                                     \
    T(YCbCr422_16_CbYCrY, 16Bits422, 16Bits422)                                                    \
    T(YCbCr422_24_CbYCrY, 24Bits422, 24Bits422)                                                    \
    T(YCbCr422_8, 8Bits422, 8Bits422)                                                              \
    T(YCbCr422_8_CbYCrY, 8Bits422, 8Bits422)                                                       \
    T(YCbCr8, 8Bits3Ch, 8Bits3Ch)                                                                  \
    T(YCbCr8_CbYCr, 8Bits3Ch, 8Bits3Ch)                                                            \
    T(YUV411_8_UYYVYY, 8Bits411, 8Bits411)                                                         \
    T(YUV422_8, 8Bits422, 8Bits422)                                                                \
    T(YUV422_8_UYVY, 8Bits422, 8Bits422)                                                           \
    T(YUV8_UYV, 8Bits3Ch, 8Bits3Ch)

#define ORVAN_DEFINE_PF_TRAITS(name, selectLayout, lutLayout)                                      \
    class PF##name final : public IImplementation {                                                \
    public:                                                                                        \
        IImage* SelectBitsAndScale(IImage* pImage, size_t bits, double scale) override {           \
            return SelectBitsAndScaleImpl::SelectBitsAndScale_##selectLayout(pImage, name, bits,   \
                                                                             scale);               \
        }                                                                                          \
        IImage* ProcessSoftwareLUT(IImage* pImage, uint8_t* pLUT, size_t lutSize) override {       \
            return ProcessSoftwareLUTImpl::ProcessSoftwareLUT_##lutLayout(pImage, pLUT, lutSize);  \
        }                                                                                          \
    };
ORVAN_PF_TRAITS(ORVAN_DEFINE_PF_TRAITS)
#undef ORVAN_DEFINE_PF_TRAITS

} // namespace Orvan

#endif
