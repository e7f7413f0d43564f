// Per-layout software look-up tables: every sample of depth b is replaced by entry `sample` of a
// table of 2^b entries, each stored little-endian in the bytes a sample of that depth needs (1
// for 8 bits, 2 for 10 to 16, 3 for 24). The result is a new factory image of the same
// format and geometry; the caller releases it with ImageFactory::Destroy.
#ifndef ORVAN_IMAGEPROC_PROCESSSOFTWARELUTIMPL_H
#define ORVAN_IMAGEPROC_PROCESSSOFTWARELUTIMPL_H

#include "SampleLayout.h"

#include <Orvan/IImage.h>

namespace Orvan {
namespace ProcessSoftwareLUTImpl {

// Bytes of a table for samples of `bits` bits.
size_t LutSize(unsigned bits);

#define ORVAN_DECLARE_LUT(suffix, storage, bits)                                                   \
    IImage* ProcessSoftwareLUT_##suffix(IImage* pImage, uint8_t* pLUT, size_t lutSize);
ORVAN_SAMPLE_LAYOUTS(ORVAN_DECLARE_LUT)
#undef ORVAN_DECLARE_LUT

// For formats whose look-up table is not available: always throws.
IImage* ProcessSoftwareLUT_NoImpl(IImage* pImage, uint8_t* pLUT, size_t lutSize);

} // namespace ProcessSoftwareLUTImpl
} // namespace Orvan

#endif
