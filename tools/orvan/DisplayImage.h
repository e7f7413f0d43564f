// What the browser is shown of a camera image: 8-bit grey for mono formats, 8-bit RGB for colour
// ones (Bayer demosaiced by the image factory). Deeper formats keep their 8 most significant
// bits, as the factory's conversion does.
#ifndef ORVAN_TOOLS_ORVAN_DISPLAYIMAGE_H
#define ORVAN_TOOLS_ORVAN_DISPLAYIMAGE_H

#include "NewestFrame.h"

#include <Orvan/IImage.h>

#include <memory>
#include <string>

namespace Orvan {
namespace Cli {

// The PFNC name of a pixel format code, or its hexadecimal code when it has none.
std::string PixelFormatName(uint64_t pixelFormat);

class DisplayImage {
public:
    // The frame for display, valid until the next call and as long as the frame's pixels.
    // Throws ToolError for a format the image factory cannot convert.
    IImage& From(const RawFrame& frame);
    // 1 or 3 bytes per pixel.
    static int Channels(IImage& image);

private:
    struct Destroy {
        void operator()(IImage* image) const;
    };
    using Owned = std::unique_ptr<IImage, Destroy>;

    Owned m_source; // a view on the frame's pixels
    Owned m_target; // reused while the geometry and target format stay the same
};

} // namespace Cli
} // namespace Orvan

#endif
