// Which camera pixel formats GStreamer has a name for, and under which media type and format
// name, and which others the image factory converts into one it has: the one place that ties a
// PFNC code to caps.
#ifndef ORVAN_GSTREAMER_PIXELFORMATMAPPING_H
#define ORVAN_GSTREAMER_PIXELFORMATMAPPING_H

#include <cstddef>
#include <cstdint>

namespace Orvan {
namespace Gst {

struct PixelFormatMapping {
    uint64_t pfnc;
    const char* pfncName; // the PixelFormat entry's symbolic name
    const char* media;    // "video/x-raw" or "video/x-bayer"
    const char* format;   // the caps' format field
    size_t bytesPerPixel; // every mapped format is whole bytes per pixel
    size_t widthMultiple; // 4:2:2 formats come in pixel pairs, Bayer ones in 2x2 cells
    // 0 when the camera's images are passed on as they are; else the factory format (Mono8,
    // Mono16, RGB8, BGR8) they are converted into, which the other fields then describe.
    uint64_t convertTo;
};

// Native mappings come first, then the converted ones; a camera format has at most one native
// mapping, and its converted ones in order of preference.

// Every mapping, for the element's template caps.
const PixelFormatMapping* MappingsBegin();
const PixelFormatMapping* MappingsEnd();

// The width step at which rows of this format are whole multiples of four bytes: GStreamer's
// default row stride, so that camera rows are used as they are, with no copy and no meta that
// downstream would have to understand.
size_t AlignedWidthStep(const PixelFormatMapping& mapping);

} // namespace Gst
} // namespace Orvan

#endif
