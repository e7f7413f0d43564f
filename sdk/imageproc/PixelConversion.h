// Pixel-format conversion of a whole image: the source decoded to working samples, Bayer
// mosaics demosaiced, YUV turned to RGB, and the result written in the target format.
#ifndef ORVAN_IMAGEPROC_PIXELCONVERSION_H
#define ORVAN_IMAGEPROC_PIXELCONVERSION_H

#include "ColourDecoding.h"

#include <Orvan/DemosaicMethod.h>

namespace Orvan {

// Whether the width suits the source format (whole YUV groups).
bool FitsGeometry(const ConversionFormat& source, size_t width);

// Bytes of a source block of that geometry, the padding of its last row not included.
size_t SourceBytes(const ConversionFormat& format, const SourceBlock& source);

// The caller has checked that both formats convert, that the geometry fits the source and that
// both blocks hold it.
void ConvertPixels(const SourceBlock& source, const ConversionFormat& sourceFormat, uint8_t* target,
                   const ConversionFormat& targetFormat, DemosaicMethod method,
                   Kernels kernels = Kernels::Fast);

} // namespace Orvan

#endif
