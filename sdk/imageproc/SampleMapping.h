// Runs a per-sample function over an image of a given layout and returns the result as a new
// factory image of the same format and geometry, which the caller releases with
// ImageFactory::Destroy.
#ifndef ORVAN_IMAGEPROC_SAMPLEMAPPING_H
#define ORVAN_IMAGEPROC_SAMPLEMAPPING_H

#include "SampleLayout.h"
#include "core/ErrorTranslation.h"

#include <Orvan/IImage.h>
#include <Orvan/PixelFormat.h>

namespace Orvan {

// The samples the image's geometry asks for; throws when its block is shorter.
size_t CountSamples(IImage& image, SampleStorage storage, const ErrorSite& site);

// A factory image owning a copy of `pixels`, with the geometry and format of `source`.
IImage* NewImageLike(IImage& source, const std::vector<uint8_t>& pixels);

template <class Function>
IImage* MapSamples(IImage& image, SampleLayout layout, const ErrorSite& site, Function function) {
    const size_t samples = CountSamples(image, layout.storage, site);
    std::vector<uint32_t> values =
        ReadSamples(image.GetData(), image.GetSizeFilled(), samples, layout);
    for (uint32_t& value : values)
        value = function(value);
    return NewImageLike(image, WriteSamples(values, layout));
}

} // namespace Orvan

#endif
