// How the image factory fills in the two colours a Bayer sensor did not measure at each pixel.
#ifndef ORVAN_DEMOSAICMETHOD_H
#define ORVAN_DEMOSAICMETHOD_H

namespace Orvan {

enum class DemosaicMethod {
    // Average of the nearest samples of each colour: fastest, soft edges with colour fringes.
    Bilinear,
    // Linear interpolation corrected by the local gradient of the measured colour: sharper, few
    // fringes, nearly as fast.
    HighQualityLinear,
    // Green interpolated along rows and along columns, and per pixel the direction whose
    // neighbourhood stays most uniform: no zipper artefacts on edges, slowest.
    AdaptiveHomogeneityDirected
};

} // namespace Orvan

#endif
