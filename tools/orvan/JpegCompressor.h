// JPEG compression of 8-bit grey and RGB pixels for the browser, through TurboJPEG.
#ifndef ORVAN_TOOLS_ORVAN_JPEGCOMPRESSOR_H
#define ORVAN_TOOLS_ORVAN_JPEGCOMPRESSOR_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Orvan {
namespace Cli {

class JpegCompressor {
public:
    JpegCompressor();
    ~JpegCompressor();
    JpegCompressor(const JpegCompressor&) = delete;
    JpegCompressor& operator=(const JpegCompressor&) = delete;

    // Tightly packed rows of 1 (grey) or 3 (RGB) bytes per pixel. Throws ToolError with
    // TurboJPEG's message when it fails.
    std::vector<uint8_t> Compress(const uint8_t* pixels, size_t width, size_t height, int channels);

private:
    void* m_handle;
};

} // namespace Cli
} // namespace Orvan

#endif
