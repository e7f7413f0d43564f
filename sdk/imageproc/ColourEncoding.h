// The last stage of a conversion: a canvas of working samples written in the target format,
// colour to mono by BT.601 luma, mono to colour by repetition, samples to the target's depth.
#ifndef ORVAN_IMAGEPROC_COLOURENCODING_H
#define ORVAN_IMAGEPROC_COLOURENCODING_H

#include "PixelCanvas.h"

namespace Orvan {

// The target's canvas when the target stores samples of type T at full range (Mono8/RGB8 family
// for uint8_t, Mono16/RGB16 family for uint16_t), so that earlier stages can write into it.
template <class T>
bool CanWriteDirectly(const ConversionFormat& target);
template <class T>
PixelCanvas<T> TargetCanvas(uint8_t* target, size_t width, size_t height,
                            const ConversionFormat& format);

// Writes the whole canvas to `target` in the target format.
template <class T>
void Encode(const PixelCanvas<T>& in, const ConversionFormat& format, uint8_t* target,
            Kernels kernels);

} // namespace Orvan

#endif
