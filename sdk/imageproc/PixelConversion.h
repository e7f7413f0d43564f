// Pixel-format conversion of a whole image: the source decoded to working samples, Bayer
// mosaics demosaiced, YUV turned to RGB, and the result written in the target format.
#ifndef ORVAN_IMAGEPROC_PIXELCONVERSION_H
#define ORVAN_IMAGEPROC_PIXELCONVERSION_H

#include "ConversionFormat.h"

#include <Orvan/DemosaicMethod.h>

namespace Orvan {

// Whether width and height suit the source format (whole YUV groups); the caller has checked
// that both formats convert and that both blocks hold their geometry.
bool FitsGeometry(const ConversionFormat& source, size_t width, size_t height);

void ConvertPixels(const uint8_t* source, const ConversionFormat& sourceFormat, uint8_t* target,
                   const ConversionFormat& targetFormat, size_t width, size_t height,
                   DemosaicMethod method);

} // namespace Orvan

#endif
