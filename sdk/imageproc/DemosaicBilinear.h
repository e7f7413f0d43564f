// Bilinear demosaicing: each missing colour is the mean of its nearest measured neighbours.
#ifndef ORVAN_IMAGEPROC_DEMOSAICBILINEAR_H
#define ORVAN_IMAGEPROC_DEMOSAICBILINEAR_H

#include "PixelCanvas.h"

namespace Orvan {

// Rows [y0, y1) of the image; the caller fills alpha.
template <class T>
void DemosaicBilinear(const MosaicView<T>& mosaic, const PixelCanvas<T>& out, size_t y0, size_t y1);

} // namespace Orvan

#endif
