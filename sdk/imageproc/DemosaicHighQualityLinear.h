// Gradient-corrected linear demosaicing (5x5 kernels): the bilinear estimate of a missing colour
// is corrected by the Laplacian of the colour measured at the pixel, which follows edges that
// the mean smears.
#ifndef ORVAN_IMAGEPROC_DEMOSAICHIGHQUALITYLINEAR_H
#define ORVAN_IMAGEPROC_DEMOSAICHIGHQUALITYLINEAR_H

#include "PixelCanvas.h"

namespace Orvan {

template <class T>
void DemosaicHighQualityLinear(const MosaicView<T>& mosaic, const PixelCanvas<T>& out, size_t y0,
                               size_t y1);

} // namespace Orvan

#endif
