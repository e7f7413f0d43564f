// Adaptive homogeneity-directed demosaicing: green is interpolated once along rows and once
// along columns, red and blue follow from colour differences, and each pixel takes the direction
// whose neighbourhood stays most uniform in luminance and chroma. Edges keep their colour without
// zipper artefacts.
#ifndef ORVAN_IMAGEPROC_DEMOSAICADAPTIVEHOMOGENEITY_H
#define ORVAN_IMAGEPROC_DEMOSAICADAPTIVEHOMOGENEITY_H

#include "PixelCanvas.h"

namespace Orvan {

template <class T>
void DemosaicAdaptiveHomogeneity(const MosaicView<T>& mosaic, const PixelCanvas<T>& out, size_t y0,
                                 size_t y1);

} // namespace Orvan

#endif
