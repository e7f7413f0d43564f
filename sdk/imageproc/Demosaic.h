// Demosaicing of rows of a Bayer mosaic into an RGB canvas by one of the three methods, on the
// best instruction set of the processor (or by the reference loops).
#ifndef ORVAN_IMAGEPROC_DEMOSAIC_H
#define ORVAN_IMAGEPROC_DEMOSAIC_H

#include "PixelCanvas.h"

#include <Orvan/DemosaicMethod.h>

namespace Orvan {

// Rows [y0, y1) of the image.
void Demosaic(DemosaicMethod method, const MosaicView<uint8_t>& mosaic,
              const PixelCanvas<uint8_t>& out, size_t y0, size_t y1, Kernels kernels);
void Demosaic(DemosaicMethod method, const MosaicView<uint16_t>& mosaic,
              const PixelCanvas<uint16_t>& out, size_t y0, size_t y1, Kernels kernels);

} // namespace Orvan

#endif
